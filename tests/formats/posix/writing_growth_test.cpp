// How the work of each format grows with what it writes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/formats/formats.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace host {
namespace {

class WritingALongTable : public testing::TestWithParam<const char*> {};

TEST_P(WritingALongTable, TakesTwiceTheWorkForTwiceTheRows) {
  if (!test::kCanMeasureGrowth) return;
  // Of fewer rows the work would be a tenth of what every run does, and the allocator's moods
  // count.
  const double growth = test::MeasureGrowth(1000, [](int rows) {
    return "'" + test::FindBuiltProgram("write_long_table").string() + "' " + GetParam() + " " +
           std::to_string(rows);
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

std::vector<const char*> ListNames() {
  std::vector<const char*> names;
  for (const Format& format : Formats()) names.push_back(format.name);
  return names;
}

INSTANTIATE_TEST_SUITE_P(InEachFormat, WritingALongTable, testing::ValuesIn(ListNames()));

}  // namespace
}  // namespace host
