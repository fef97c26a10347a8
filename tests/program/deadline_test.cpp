#include "host/program/deadline.h"

#include <gtest/gtest.h>

#include <atomic>

namespace host {
namespace {

TEST(Deadline, GivesUpWhileTheWorkStillRuns) {
  std::atomic<bool> gaveUp = false;
  const Deadline deadline(std::chrono::milliseconds(1), [&] { gaveUp = true; });
  while (!gaveUp) std::this_thread::yield();
}

TEST(Deadline, LeavesWorkAloneThatIsDone) {
  bool gaveUp = false;
  const auto begin = std::chrono::steady_clock::now();
  {
    const Deadline deadline(std::chrono::minutes(5), [&] { gaveUp = true; });
  }
  EXPECT_FALSE(gaveUp);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::minutes(1));
}

}  // namespace
}  // namespace host
