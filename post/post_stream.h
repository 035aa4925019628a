// PostProcessStream: the post-process pass run on the deck's text while it is written, so the
// deck is written once instead of written, read back and written again.
#pragma once

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>

#include "post/post_process.h"

/// An ostream that cuts the text written to it into lines, runs them through the pass and hands
/// the rewritten text on to `target` in large pieces. The text that reaches the target is the
/// text PostProcessText would make of the whole deck.
class PostProcessStream : private std::streambuf, public std::ostream {
 public:
  PostProcessStream(PostSettings& settings, std::ostream& target);
  /// The last line (with or without its line end) and everything held go to the target.
  void Finish();

 private:
  static constexpr size_t kHandOnSize = 1 << 20;
  std::streambuf::int_type overflow(std::streambuf::int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  void Feed(std::string_view text);
  void HandOn();

  PostPass pass_;
  std::ostream& target_;
  std::string partial_;  // the start of a line whose end has not come yet
};

/// The same pass on a thread of its own: the text written to this stream goes to the pass in
/// large pieces, and what the pass makes of it comes back and is written to `target` on the
/// writer's thread, so the pass's thread touches neither the target nor the console. The
/// settings are the pass's alone while it runs.
class ThreadedPostStream : private std::streambuf, public std::ostream {
 public:
  ThreadedPostStream(PostSettings& settings, std::ostream& target);
  /// Stops the pass's thread; the text not yet finished is dropped.
  ~ThreadedPostStream() override;
  ThreadedPostStream(const ThreadedPostStream&) = delete;
  ThreadedPostStream& operator=(const ThreadedPostStream&) = delete;
  /// Every line through the pass and into the target; rethrows what the pass threw.
  void Finish();

 private:
  static constexpr size_t kPieceSize = 1 << 20;
  static constexpr size_t kPiecesAhead = 4;
  std::streambuf::int_type overflow(std::streambuf::int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  /// Hands the text held to the pass's thread (waiting while it is kPiecesAhead behind).
  void Send();
  /// Writes what the pass has made so far to the target.
  void WriteDone(std::unique_lock<std::mutex>& lock);
  void Work();

  std::ostream& target_;
  std::string input_;        // the writer's side
  std::ostringstream made_;  // the pass's side
  PostProcessStream pass_;   // writes into made_
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> toPass_;
  std::deque<std::string> done_;
  bool closed_ = false;
  bool finished_ = false;
  std::exception_ptr failure_;
  std::thread worker_;
};
