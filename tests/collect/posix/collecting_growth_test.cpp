// How the work of each module grows with what the tools print.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/posix/work_growth.h"

namespace host {
namespace {

struct Work {
  const char* module;
  const char* sample;  ///< on which it has most to do
  int times;           ///< so often its reports are repeated
};

void PrintTo(const Work& work, std::ostream* out) { *out << work.module << ' ' << work.sample; }

class CollectingLongReports : public testing::TestWithParam<Work> {};

TEST_P(CollectingLongReports, TakesTwiceTheWorkForTwiceTheLength) {
  if (!test::kCanMeasureGrowth) return;
  const Work& work = GetParam();
  const double growth = test::MeasureGrowth(work.times, [&](int times) {
    return "'" + test::FindBuiltProgram("collect_long_reports").string() + "' " + work.module +
           " " + work.sample + " " + std::to_string(times);
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(OfEachModule, CollectingLongReports,
                         testing::Values(Work{"BMC_Info", "two-socket-server", 2},
                                         Work{"Windows_Related_Info", "two-socket-server", 2},
                                         Work{"sampleModule1", "two-socket-server", 2},
                                         Work{"sampleModule1", "vroc", 20},
                                         Work{"sampleModule2", "two-socket-server", 2},
                                         Work{"AMT_Info", "amt-desktop", 30}));

}  // namespace
}  // namespace host
