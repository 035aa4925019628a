// TextQueue: pieces of a deck's text handed from the thread that writes it to the thread of a
// pass; QueuedLineReader: the lines of those pieces, for a pass that pulls its lines.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>

#include "post/probe_pass.h"

/// A queue of at most `capacity` pieces of text. Push waits while it is full and Pop while it
/// is empty, until it is closed (no more pieces: Pop takes the rest, then answers false) or
/// stopped (everything dropped: both answer false from then on).
class TextQueue {
 public:
  explicit TextQueue(size_t capacity) : capacity_(capacity) {}
  /// False when the queue was stopped; the piece is then dropped.
  bool Push(std::string piece);
  /// The next piece; false when there is none and will be none.
  bool Pop(std::string& piece);
  void Close();
  void Stop();

 private:
  const size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::string> pieces_;
  bool closed_ = false;
  bool stopped_ = false;
};

/// Reads the pieces of a queue as the lines of one text, as a text-mode file would: a line ends
/// at "\n" (a "\r" in front of it is dropped), and the text behind the last "\n" is a line too.
class QueuedLineReader : public ProbeLineSource {
 public:
  explicit QueuedLineReader(TextQueue& queue) : queue_(queue) {}
  bool Read(std::string& line) override;

 private:
  TextQueue& queue_;
  std::string piece_;
  size_t pos_ = 0;
  std::string partial_;  // the start of a line whose end is in a later piece
  bool ended_ = false;
};
