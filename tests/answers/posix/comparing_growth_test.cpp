// How the work of a comparison grows with what is compared.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace {

TEST(ComparingLongLogs, TakesTwiceTheWorkForTwiceTheEntries) {
  if (!test::kCanMeasureGrowth) return;
  const double growth = test::MeasureGrowth(2000, [](int entries) {
    return "'" + test::FindBuiltProgram("compare_long_logs").string() + "' " +
           std::to_string(entries);
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

}  // namespace
