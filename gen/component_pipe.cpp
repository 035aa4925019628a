// ComponentPipe: component batches between two threads; PipeFiller: the thread that fills them.
#include "gen/component_pipe.h"

#include "design/stage_thread.h"

#include <utility>

SpiceComp& ComponentPipe::NewComp() {
  // Reserved whole, so that no component moves while the batch fills.
  if (filling_.empty()) filling_.reserve(kBatchSize);
  filling_.resize(handed_);
  return filling_.emplace_back();
}

bool ComponentPipe::Hand() {
  ++handed_;
  return handed_ < kBatchSize || Send();
}

bool ComponentPipe::Send() {
  const bool taken = batches_.Push(std::move(filling_));
  filling_ = std::vector<SpiceComp>();
  handed_ = 0;
  return taken;
}

void ComponentPipe::Close() {
  filling_.resize(handed_);
  if (!filling_.empty()) Send();
  batches_.Close();
}

bool ComponentPipe::Next(std::vector<SpiceComp>& batch) {
  // The components written go here, outside the queue's lock.
  batch.clear();
  return batches_.Pop(batch);
}

PipeFiller::PipeFiller(ComponentPipe& pipe, std::function<bool()> fill) : pipe_(pipe) {
  thread_ = StartStage([this, fill = std::move(fill)] {
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
