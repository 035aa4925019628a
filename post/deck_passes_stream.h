// DeckPassesStream: the passes of a deck run on its text while the generator writes it (the
// probe pass of a hierarchical deck, then the post-process pass), so the deck is written once.
#pragma once

#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>

#include "post/post_process.h"
#include "post/probe_pass.h"
#include "post/text_queue.h"

/// An ostream whose text goes, in pieces, to the probe pass (when `probeState` is given) and then
/// the post-process pass, each on a thread of its own, the probe pass handing its text on as it
/// goes. What the passes make comes back and is written to `target` on the writer's thread, so
/// the passes' threads touch neither the target nor the console: the probe pass's messages are
/// held for Messages. The text that reaches the target is the one the two passes make of the
/// whole deck, one after the other. The state and settings are the passes' alone while they run.
class DeckPassesStream : private std::streambuf, public std::ostream {
 public:
  DeckPassesStream(ProbePassState* probeState, const PrintSettings& printSettings, PostSettings& postSettings,
                   std::ostream& target);
  /// Stops the passes' thread; the text not yet finished is dropped.
  ~DeckPassesStream() override;
  DeckPassesStream(const DeckPassesStream&) = delete;
  DeckPassesStream& operator=(const DeckPassesStream&) = delete;
  /// Every line through both passes and into the target; rethrows what a pass threw.
  void Finish();
  /// What the probe pass would have printed (its duplicate definitions), once Finish is done.
  std::string Messages() const { return messages_.str(); }

 private:
  // Small pieces, so that the passes keep up with the writer and little is left for them when
  // the last line comes.
  static constexpr size_t kPieceSize = 1 << 17;
  static constexpr size_t kPiecesAhead = 32;

  // A stream buffer that hands each write on whole, as one piece, to `take`: the probe pass's
  // text to the post pass's queue, and the post pass's text back to the writer's thread.
  class PieceForwarder : public std::streambuf {
   public:
    explicit PieceForwarder(std::function<void(std::string)> take) : take_(std::move(take)) {}

   private:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;
    std::function<void(std::string)> take_;
  };

  std::streambuf::int_type overflow(std::streambuf::int_type c) override;
  std::streamsize xsputn(const char* text, std::streamsize size) override;
  /// Hands the text held to the passes (waiting while they are kPiecesAhead pieces behind).
  void Send();
  /// Writes what the passes have made so far to the target.
  void WriteDone();
  void ProbeWork();
  void PostWork(TextQueue& input);
  /// Keeps the first failure of a pass and stops both queues, so that no thread waits on one.
  void Fail();

  ProbePassState* probeState_;
  const PrintSettings& printSettings_;
  PostSettings& postSettings_;
  std::ostream& target_;
  std::string input_;  // the writer's side
  TextQueue toPasses_{kPiecesAhead};
  TextQueue toPost_{kPiecesAhead};  // the probe pass's text, when there is a probe pass
  // The probe pass writes in pieces of its own size; a stopped queue drops them (see Fail).
  PieceForwarder toPostBuffer_{[this](std::string piece) { toPost_.Push(std::move(piece)); }};
  PieceForwarder handBack_{[this](std::string piece) {
    std::lock_guard<std::mutex> lock(mutex_);
    done_.push_back(std::move(piece));
  }};
  std::ostream made_{&handBack_};  // the passes' side
  std::ostringstream messages_;    // the passes' side until Finish
  std::mutex mutex_;
  std::deque<std::string> done_;
  std::exception_ptr failure_;
  std::thread probeWorker_;
  std::thread postWorker_;
};
