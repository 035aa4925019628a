// TextQueue: pieces of a deck's text handed from the thread that writes it to the thread of a
// pass; QueuedLineReader: the lines of those pieces, for a pass that pulls its lines.
#pragma once

#include <string>

#include "design/bounded_queue.h"
#include "post/probe_pass.h"

/// Pieces of a deck's text, at most a given number held at a time (see BoundedQueue).
using TextQueue = BoundedQueue<std::string>;

/// Reads the pieces of a queue as the lines of one text, as a text-mode file would: a line ends
/// at "\n" (a "\r" in front of it is dropped), and the text behind the last "\n" is a line too.
class QueuedLineReader : public ProbeLineSource {
 public:
  explicit QueuedLineReader(TextQueue& queue) : queue_(queue) {}
  bool Read(std::string& line) override;
  std::string_view Ahead() const override;
  void Skip(size_t size) override { pos_ += size; }

 private:
  TextQueue& queue_;
  std::string piece_;
  size_t pos_ = 0;
  std::string partial_;  // the start of a line whose end is in a later piece
  bool ended_ = false;
};
