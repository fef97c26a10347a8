// How the work of redacting grows with a report, and with the values in it.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace host {
namespace {

TEST(RedactingALongReport, TakesTwiceTheWorkForTwiceTheLines) {
  if (!test::kCanMeasureGrowth) return;
  const double growth = test::MeasureGrowth(500, [](int lines) {
    return "'" + test::FindBuiltProgram("redact_long_report").string() + "' " +
           std::to_string(lines);
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

}  // namespace
}  // namespace host
