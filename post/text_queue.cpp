// TextQueue and QueuedLineReader: pieces in, lines out.
#include "post/text_queue.h"

#include <utility>

bool TextQueue::Push(std::string piece) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return pieces_.size() < capacity_ || stopped_; });
  if (stopped_) return false;
  pieces_.push_back(std::move(piece));
  changed_.notify_all();
  return true;
}

bool TextQueue::Pop(std::string& piece) {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return !pieces_.empty() || closed_ || stopped_; });
  if (stopped_ || pieces_.empty()) return false;
  piece = std::move(pieces_.front());
  pieces_.pop_front();
  changed_.notify_all();
  return true;
}

void TextQueue::Close() {
  std::lock_guard<std::mutex> lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

void TextQueue::Stop() {
  std::lock_guard<std::mutex> lock(mutex_);
  stopped_ = true;
  pieces_.clear();
  changed_.notify_all();
}

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
