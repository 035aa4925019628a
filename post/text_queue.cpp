// QueuedLineReader: pieces of text in, lines out.
#include "post/text_queue.h"

bool QueuedLineReader::Read(std::string& line) {
  while (!ended_) {
    const size_t end = piece_.find('\n', pos_);
    if (end != std::string::npos) {
      if (partial_.empty()) {
        line.assign(piece_, pos_, end - pos_);
      } else {
        partial_.append(piece_, pos_, end - pos_);
        line.swap(partial_);
        partial_.clear();
      }
      pos_ = end + 1;
      if (!line.empty() && line.back() == '\r') line.pop_back();
      return true;
    }
    partial_.append(piece_, pos_, std::string::npos);
    pos_ = 0;
    if (!queue_.Pop(piece_)) {
      piece_.clear();
      ended_ = true;
    }
  }
  // The text behind the last line end.
  if (partial_.empty()) return false;
  line.swap(partial_);
  partial_.clear();
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

std::string_view QueuedLineReader::Ahead() const {
  // A line begun in an earlier piece is read line by line.
  if (!partial_.empty() || pos_ >= piece_.size()) return {};
  return std::string_view(piece_).substr(pos_);
}
