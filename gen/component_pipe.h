// ComponentPipe: the components of a walk handed from the walk's thread to the
// generator's, in batches, so that reading the design and writing the deck overlap.
#pragma once

#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "design/bounded_queue.h"
#include "design/spice_block.h"

/// The walk waits while the pipe holds `batches` full batches, so only a few thousand
/// components are ever held at once, however large the design.
class ComponentPipe : public ComponentSink {
 public:
  static constexpr size_t kBatchSize = 512;
  static constexpr size_t kBatches = 8;

  explicit ComponentPipe(size_t batches = kBatches) : batches_(batches) {}

  // ---- the walk's side ----
  SpiceComp& NewComp() override;
  /// False once the generator has stopped reading.
  bool Hand() override;
  /// No more components come: the walk has ended, well or not.
  void Close();

  // ---- the generator's side ----
  /// Fills `batch` with the next components in walk order; false when the walk has ended and
  /// every component has been handed over. The components `batch` held before are dropped.
  bool Next(std::vector<SpiceComp>& batch);
  /// The generator reads no more: a walk waiting on a full pipe goes on and ends.
  void Stop() { batches_.Stop(); }

 private:
  bool Send();

  BoundedQueue<std::vector<SpiceComp>> batches_;
  std::vector<SpiceComp> filling_;  // the walk's side only
  size_t handed_ = 0;               // of filling_, the components handed over
};

/// The thread that fills a pipe: it runs `fill` and closes the pipe, whatever `fill` does; the
/// destructor stops the pipe and waits, so that no path out of a run leaves the thread behind.
class PipeFiller {
 public:
  /// `fill` answers whether the whole walk went well; what it throws counts as not.
  PipeFiller(ComponentPipe& pipe, std::function<bool()> fill);
  ~PipeFiller();
  PipeFiller(const PipeFiller&) = delete;
  PipeFiller& operator=(const PipeFiller&) = delete;
  /// Waits for the thread; true when `fill` went well.
  bool Join();

 private:
  ComponentPipe& pipe_;
  bool filled_ = false;
  std::thread thread_;
};
