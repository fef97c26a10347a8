// How the work of parts and verdict grows with a log.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace {

TEST(JudgingALongLog, TakesTwiceTheWorkForTwiceTheEntries) {
  if (!test::kCanMeasureGrowth) return;
  const double growth = test::MeasureGrowth(2000, [](int count) {
    return "'" + test::FindBuiltProgram("judge_many_events").string() + "' " +
           std::to_string(count);
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

}  // namespace
