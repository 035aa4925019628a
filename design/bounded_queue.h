// BoundedQueue: items handed from one thread to another, at most `capacity` held at a time.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

/// Push waits while the queue is full and Pop while it is empty, until it is closed (no more
/// items: Pop takes the rest, then answers false) or stopped (everything dropped: both answer
/// false from then on).
template <class T>
class BoundedQueue {
 public:
  explicit BoundedQueue(size_t capacity) : capacity_(capacity) {}
  BoundedQueue(const BoundedQueue&) = delete;
  BoundedQueue& operator=(const BoundedQueue&) = delete;

  /// False when the queue was stopped; the item is then dropped.
  bool Push(T item) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return items_.size() < capacity_ || stopped_; });
    if (stopped_) return false;
    items_.push_back(std::move(item));
    changed_.notify_all();
    return true;
  }
  /// The next item; false when there is none and will be none.
  bool Pop(T& item) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return !items_.empty() || closed_ || stopped_; });
    if (stopped_ || items_.empty()) return false;
    item = std::move(items_.front());
    items_.pop_front();
    changed_.notify_all();
    return true;
  }
  void Close() {
    std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }
  void Stop() {
    std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    items_.clear();
    changed_.notify_all();
  }

 private:
  const size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<T> items_;
  bool closed_ = false;
  bool stopped_ = false;
};
