// StartStage: the threads of the streamed runs' pipelines, each started away from the core of
// the thread that starts it.
//
// A new thread begins on its creator's core, and on a small machine the scheduler can leave it
// there, sharing that core with its creator, for tens of milliseconds while another core idles;
// a pipeline whose stages are started one from the other then runs on one core for a good part
// of a short run. A stage therefore moves to a core other than its creator's as it begins, and
// is free to go anywhere from there: the scheduler then moves it only when the load asks for it.
#pragma once

#include <sched.h>

#include <optional>
#include <thread>
#include <utility>

/// The cores the process may run on, the caller's own left out; none when that leaves no core
/// (one core, or the answer is not known).
std::optional<cpu_set_t> CoresBesideThisOne();
/// Moves the calling thread onto `cores`, then lets it run on every core the process may use.
void MoveToOtherCore(const cpu_set_t& cores);

/// A thread running `work`, begun on a core other than the caller's when there is one.
template <class Work>
std::thread StartStage(Work&& work) {
  return std::thread([cores = CoresBesideThisOne(), work = std::forward<Work>(work)]() mutable {
    if (cores) MoveToOtherCore(*cores);
    work();
  });
}
