#include "host/pqhost/collection_progress.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>

#include "host/text/screen_text.h"

namespace host {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr char kWipe[] = "\r\x1b[K";
constexpr char kStorcli[] = "/c \"\"C:\\H\\storcli.exe\" /c0 show > \"C:\\l\\x.txt\"\"";

TEST(CollectionProgress, ShowsModuleAndTool) {
  std::ostringstream out;
  {
    CollectionProgress progress(out, 80);
    progress.Module("sampleModule1", "");
    progress.OnProcess("cmd.exe", kStorcli, false, false);
  }
  EXPECT_THAT(out.str(), HasSubstr("s  sampleModule1: storcli.exe (0.0 s)"));
}

TEST(CollectionProgress, CountsTheModules) {
  std::ostringstream out;
  CollectionProgress progress(out, 80);
  progress.Plan(5);
  progress.Module("sampleModule1", "");
  progress.Module("sampleModule2", "");
  EXPECT_THAT(out.str(), EndsWith("s  2 of 5  sampleModule2"));
}

TEST(CollectionProgress, ForgetsAToolThatHasEnded) {
  std::ostringstream out;
  CollectionProgress progress(out, 80);
  progress.Module("sampleModule1", "");
  progress.OnProcess("cmd.exe", kStorcli, false, false);
  progress.OnProcessEnd(0);
  EXPECT_THAT(out.str(), EndsWith("s  sampleModule1"));
}

TEST(CollectionProgress, WipesItselfOffInTheEnd) {
  std::ostringstream out;
  {
    CollectionProgress progress(out, 80);
    progress.Module("sampleModule1", "");
  }
  EXPECT_THAT(out.str(), EndsWith(kWipe));
}

TEST(CollectionProgress, WritesNothingWhenNothingHappened) {
  std::ostringstream out;
  { const CollectionProgress progress(out, 80); }
  EXPECT_EQ(out.str(), "");
}

TEST(CollectionProgress, FitsTheTerminal) {
  std::ostringstream out;
  {
    CollectionProgress progress(out, 16);
    progress.Module("a_module_with_a_long_name", "");
  }
  const std::string text = out.str();
  const std::string line = text.substr(4, text.rfind(kWipe) - 4);
  EXPECT_LT(MeasureWidth(line), 16U) << line;
}

TEST(CollectionProgress, MakesRoomForAPrompt) {
  std::ostringstream out;
  CollectionProgress progress(out, 80);
  progress.Module("AMT_Info", "");
  progress.OnConsole("Please input");
  EXPECT_THAT(out.str(), EndsWith(kWipe));
}

TEST(CollectionProgress, NeverShowsWhatATerminalWouldObey) {
  std::ostringstream out;
  CollectionProgress progress(out, 80);
  progress.Module("m\x1b[2J", "");
  progress.OnProcess("cmd.exe", "/c t\x9b\x1b[2J.exe", false, false);
  EXPECT_THAT(out.str(), Not(HasSubstr("\x1b[2J")));
  EXPECT_THAT(out.str(), HasSubstr("m\\x1b[2J"));
}

}  // namespace
}  // namespace host
