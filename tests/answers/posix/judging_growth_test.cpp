// How the work of parts and verdict grows with a log, and with a group of drives.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace {

/// How many times as much work it is to judge a machine with twice as many parts of `kind`.
double MeasureGrowthOf(const std::string& kind, int count) {
  return test::MeasureGrowth(count, [&](int times) {
    return "'" + test::FindBuiltProgram("judge_many_parts").string() + "' " + kind + " " +
           std::to_string(times);
  });
}

TEST(JudgingALongLog, TakesTwiceTheWorkForTwiceTheEntries) {
  if (!test::kCanMeasureGrowth) return;
  EXPECT_LT(MeasureGrowthOf("events", 2000), test::kLinearGrowth);
}

// Sorting takes a little more than twice the work, comparing each with each four times.
TEST(JudgingALargeGroup, TakesAboutTwiceTheWorkForTwiceTheDrivesAndVolumes) {
  if (!test::kCanMeasureGrowth) return;
  EXPECT_LT(MeasureGrowthOf("group", 500), 2.5);
}

}  // namespace
