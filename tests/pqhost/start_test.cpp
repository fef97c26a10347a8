// What the program does for how it was started.
#include "host/pqhost/start.h"

#include <gmock/gmock.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::filesystem::path FindNone() { return {}; }
std::filesystem::path FindExample() { return "desktop"; }

TEST(PlanStart, MakesAReportOnTheDesktopAfterADoubleClick) {
  const Start start = PlanStart({}, /*hasOwnConsole=*/true, FindExample);
  EXPECT_THAT(start.arguments, ElementsAre("collect", "--report", "--output", "desktop"));
  EXPECT_TRUE(start.waitsForEnter);
}

TEST(PlanStart, MakesItInTheCurrentFolderWithoutADesktop) {
  const Start start = PlanStart({}, /*hasOwnConsole=*/true, FindNone);
  EXPECT_THAT(start.arguments, ElementsAre("collect", "--report"));
  EXPECT_TRUE(start.waitsForEnter);
}

TEST(PlanStart, ChangesNothingInATerminal) {
  const Start none = PlanStart({}, /*hasOwnConsole=*/false, FindExample);
  EXPECT_THAT(none.arguments, IsEmpty());
  EXPECT_FALSE(none.waitsForEnter);
  const Start some = PlanStart({"check", kOwnWindow}, /*hasOwnConsole=*/false, FindExample);
  EXPECT_THAT(some.arguments, ElementsAre("check", kOwnWindow));
  EXPECT_FALSE(some.waitsForEnter);
}

// A scheduled task has a console of its own, too, and nobody there to press Enter.
TEST(PlanStart, WaitsForNobodyWhoGaveWords) {
  const Start start = PlanStart({"collect", "--report"}, /*hasOwnConsole=*/true, FindExample);
  EXPECT_THAT(start.arguments, ElementsAre("collect", "--report"));
  EXPECT_FALSE(start.waitsForEnter);
}

TEST(PlanStart, KeepsTheWindowThatItOpenedItself) {
  const Start start = PlanStart({"collect", "--report", kOwnWindow}, true, FindExample);
  EXPECT_THAT(start.arguments, ElementsAre("collect", "--report"));
  EXPECT_TRUE(start.waitsForEnter);
}

}  // namespace
}  // namespace host
