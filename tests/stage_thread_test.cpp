// Pipeline stages begin away from their creator's core and are then free to run anywhere.
#include <gtest/gtest.h>

#include <pthread.h>
#include <sched.h>

#include "design/stage_thread.h"

namespace {

cpu_set_t CoresOfThisThread() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  pthread_getaffinity_np(pthread_self(), sizeof cores, &cores);
  return cores;
}

TEST(StageThread, RunsItsWorkAndKeepsEveryCoreOpen) {
  const cpu_set_t before = CoresOfThisThread();
  int ran = 0;
  cpu_set_t inStage;
  std::thread stage = StartStage([&] {
    ++ran;
    inStage = CoresOfThisThread();
  });
  stage.join();
  EXPECT_EQ(ran, 1);
  // A stage left on some cores only would keep them busy however the load changes.
  EXPECT_TRUE(CPU_EQUAL(&inStage, &before));
  const cpu_set_t after = CoresOfThisThread();
  EXPECT_TRUE(CPU_EQUAL(&before, &after));
}

TEST(StageThread, LeavesTheCallersCoreOutWhenThereIsAnother) {
  const auto others = CoresBesideThisOne();
  const cpu_set_t all = CoresOfThisThread();
  if (CPU_COUNT(&all) < 2) {
    EXPECT_FALSE(others.has_value());
    return;
  }
  ASSERT_TRUE(others.has_value());
  EXPECT_EQ(CPU_COUNT(&*others), CPU_COUNT(&all) - 1);
}

}  // namespace
