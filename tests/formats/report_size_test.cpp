// What a report leaves out of a collection that is too large for a browser.
#include "host/formats/report_size.h"

#include <gmock/gmock.h>

#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::MadeCollection;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

MadeCollection& AddRows(MadeCollection& made, int count, const std::string& value) {
  for (int i = 0; i < count; ++i) made.Row({{"Line", value}});
  return made;
}

TEST(ReportSize, LeavesWhatFitsWhole) {
  MadeCollection made;
  AddRows(made.Table("A"), 3, "text");
  EXPECT_THAT(FitIntoReport(made.Get(), 24), ElementsAre(ShownPart{}));
  EXPECT_THAT(DescribeReportCuts(made.Get()), IsEmpty());
}

TEST(ReportSize, TakesTheOldestRowsOfTheLargestTables) {
  MadeCollection made;
  AddRows(made.Table("A"), 3, "text");
  AddRows(made.Table("B"), 200, "123456");
  AddRows(made.Table("C"), 300, "123456");
  // Of 1024 bytes A takes 24; each row of the others takes ten.
  EXPECT_THAT(FitIntoReport(made.Get(), 1024),
              ElementsAre(ShownPart{}, ShownPart{150, 500}, ShownPart{250, 500}));
}

TEST(ReportSize, KeepsAtLeastTheNewestRow) {
  MadeCollection made;
  AddRows(made.Table("A"), 200, std::string(1000, 'x'));
  EXPECT_THAT(FitIntoReport(made.Get(), 100), ElementsAre(ShownPart{199, 100}));
}

TEST(ReportSize, TakesTheBeginningOfALargeFile) {
  MadeCollection made;
  made.Table("A").FileRow(std::string(1000, 'x'), "large.txt").FileRow("small", "small.txt");
  const std::vector<ShownPart> parts = FitIntoReport(made.Get(), 500);
  EXPECT_EQ(parts[0].firstRow, 0U);
  EXPECT_LT(parts[0].mostValueBytes, 500U);
  EXPECT_GT(parts[0].mostValueBytes, 400U);
}

TEST(ReportSize, CountsWhatThePageEscapes) {
  MadeCollection made;
  AddRows(made.Table("A"), 1, "<\x01\"a");
  EXPECT_THAT(FitIntoReport(made.Get(), 6 + 6 + 2 + 1 + 4), ElementsAre(ShownPart{}));
  EXPECT_THAT(FitIntoReport(made.Get(), 6 + 6 + 2 + 1 + 3), ElementsAre(ShownPart{0, 18}));
}

TEST(ReportSize, CutsBetweenCharacters) {
  EXPECT_EQ(CutToEnd("abcdef", 100), "abcdef");
  EXPECT_EQ(CutToEnd("abcdef", 6), "abcdef");
  EXPECT_EQ(CutToEnd("abcdef", 3), "def");
  EXPECT_EQ(CutToEnd("a<b", 6), "b");
  EXPECT_EQ(CutToEnd("a<b", 7), "<b");
  EXPECT_EQ(CutToEnd("\xC3\xA4\xC3\xB6", 3), "\xC3\xB6");
  EXPECT_EQ(CutToEnd("", 0), "");
  EXPECT_EQ(CutToEnd("abc", 0), "");
}

/// 138 MB on the page.
TEST(ReportSize, IsToldAndHeldByTheReport) {
  MadeCollection made;
  std::string file;
  file.assign(23'000'000, '<');
  made.Table("A").FileRow(file + "newest", "large.txt");
  EXPECT_THAT(FindFormat("html")->describeCuts(made.Get()),
              ElementsAre(HasSubstr("A: the report, which would be too large for a browser, shows "
                                    "of each value the last 134217")));
  const std::string page = made.As("html");
  EXPECT_LT(page.size(), kMostReportBytes + (1 << 20));
  EXPECT_GT(page.size(), kMostReportBytes - (1 << 20));
  EXPECT_NE(page.find("u003cnewest\""), std::string::npos);
}

}  // namespace
}  // namespace host
