// Names and places of a report with its recording.
#include "host/pqhost/report_place.h"

#include <gmock/gmock.h>

#include "host/text/path_text.h"
#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

std::string MakeExampleName() { return "NODE31-2026-11-18T0941"; }

std::string NameAtExampleTime(std::string_view machine) {
  const LocalTime time = *ParseIsoTime("2026-11-18T09:41:12+01:00");
  return NameCollection(machine, time);
}

TEST(NameCollection, IsMachineAndItsTime) {
  EXPECT_EQ(NameAtExampleTime("NODE31"), "NODE31-2026-11-18T0941");
}

TEST(NameCollection, HasOnlyCharactersThatEveryShellTakes) {
  EXPECT_EQ(NameAtExampleTime("a b/c\\d:\xC3\xA4$(x)"), "a-b-c-d-----x--2026-11-18T0941");
  EXPECT_EQ(NameAtExampleTime("--../x"), "x-2026-11-18T0941");
  EXPECT_EQ(NameAtExampleTime("\xE6\xBC\xA2"), "server-2026-11-18T0941");
  EXPECT_EQ(NameAtExampleTime(std::string(500, 'n')), std::string(40, 'n') + "-2026-11-18T0941");
}

class ReportPlaceTest : public testing::Test {
 protected:
  std::string Choose(const std::string& given) {
    const ReportPlace place = ChooseReportPlace({folder / given}, MakeExampleName);
    return PathText(place.report.lexically_relative(folder.Path())) + " " +
           PathText(place.recording.lexically_relative(folder.Path()));
  }

  test::TemporaryFolder folder;
};

TEST_F(ReportPlaceTest, IsNamedAsTheUserSays) {
  for (const char* given : {"one", "one.html", "one.zip", "one.ZIP"}) {
    EXPECT_EQ(Choose(given), "one.html one.zip") << given;
  }
  EXPECT_EQ(Choose("one.two"), "one.two.html one.two.zip");
}

TEST_F(ReportPlaceTest, IsNeverOneThatIsThereAlready) {
  folder.Write("one.zip", "");
  try {
    Choose("one");
    FAIL();
  } catch (const UsageError& error) {
    EXPECT_THAT(error.what(), AllOf(HasSubstr("one.zip is there already"), HasSubstr("--output")));
  }
}

TEST_F(ReportPlaceTest, IsNamedAfterMachineAndTimeInAFolder) {
  EXPECT_EQ(Choose(""), "NODE31-2026-11-18T0941.html NODE31-2026-11-18T0941.zip");
}

TEST_F(ReportPlaceTest, IsNumberedWhereOneOfTheTwoIsThere) {
  folder.Write("NODE31-2026-11-18T0941.html", "");
  folder.Write("NODE31-2026-11-18T0941-2.zip", "");
  EXPECT_EQ(Choose(""), "NODE31-2026-11-18T0941-3.html NODE31-2026-11-18T0941-3.zip");
}

TEST_F(ReportPlaceTest, IsNoFolderThatIsNotThere) { EXPECT_THROW(Choose("none/"), UsageError); }

TEST(ChooseReportPlace, IsTheCurrentFolderUnlessGiven) {
  EXPECT_EQ(ChooseReportPlace({}, MakeExampleName).report, "NODE31-2026-11-18T0941.html");
  EXPECT_EQ(ChooseRecordingPlace(MakeExampleName), "NODE31-2026-11-18T0941.zip");
}

}  // namespace
}  // namespace host
