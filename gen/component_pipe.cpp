// ComponentPipe: a bounded queue of component batches between two threads.
#include "gen/component_pipe.h"

#include <utility>

bool ComponentPipe::Take(SpiceComp&& comp) {
  if (filling_.capacity() == 0) filling_.reserve(kBatchSize);
  filling_.push_back(std::move(comp));
  if (filling_.size() < kBatchSize) return true;
  Send();
  std::lock_guard<std::mutex> lock(mutex_);
  return !stopped_;
}

void ComponentPipe::Send() {
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return full_.size() < kBatches || stopped_; });
  if (!stopped_) full_.push_back(std::move(filling_));
  filling_.clear();
  if (!spare_.empty()) {
    filling_ = std::move(spare_.back());
    spare_.pop_back();
  }
  changed_.notify_all();
}

void ComponentPipe::Close() {
  if (!filling_.empty()) Send();
  std::lock_guard<std::mutex> lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

bool ComponentPipe::Next(std::vector<SpiceComp>& batch) {
  batch.clear();
  std::unique_lock<std::mutex> lock(mutex_);
  if (batch.capacity() != 0) spare_.push_back(std::move(batch));
  batch = std::vector<SpiceComp>();
  changed_.wait(lock, [this] { return !full_.empty() || closed_; });
  if (full_.empty()) return false;
  batch = std::move(full_.front());
  full_.pop_front();
  changed_.notify_all();
  return true;
}

void ComponentPipe::Stop() {
  std::lock_guard<std::mutex> lock(mutex_);
  stopped_ = true;
  full_.clear();
  changed_.notify_all();
}

PipeFiller::PipeFiller(ComponentPipe& pipe, std::function<bool()> fill) : pipe_(pipe) {
  thread_ = std::thread([this, fill = std::move(fill)] {
    try {
      filled_ = fill();
    } catch (...) {
      filled_ = false;
    }
    pipe_.Close();
  });
}

PipeFiller::~PipeFiller() {
  pipe_.Stop();
  if (thread_.joinable()) thread_.join();
}

bool PipeFiller::Join() {
  if (thread_.joinable()) thread_.join();
  return filled_;
}
