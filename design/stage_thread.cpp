// Where a pipeline stage begins: on a core beside its creator's.
#include "design/stage_thread.h"

#include <pthread.h>

namespace {

bool ProcessCores(cpu_set_t& cores) {
  CPU_ZERO(&cores);
  return sched_getaffinity(0, sizeof cores, &cores) == 0;
}

}  // namespace

std::optional<cpu_set_t> CoresBesideThisOne() {
  cpu_set_t cores;
  const int here = sched_getcpu();
  if (here < 0 || !ProcessCores(cores) || !CPU_ISSET(here, &cores)) return std::nullopt;
  CPU_CLR(here, &cores);
  if (CPU_COUNT(&cores) == 0) return std::nullopt;
  return cores;
}

void MoveToOtherCore(const cpu_set_t& cores) {
  // The first call moves the thread at once; the second only widens where it may go later.
  cpu_set_t all;
  if (!ProcessCores(all)) return;
  pthread_setaffinity_np(pthread_self(), sizeof cores, &cores);
  pthread_setaffinity_np(pthread_self(), sizeof all, &all);
}
