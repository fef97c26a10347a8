#include "pqmodules/rsamplemodule2/drive_lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

const std::string kRule26(26, '-');
const std::string kRule27(27, '-');
const std::string kRule28(28, '-');

/// A section as storcli prints it: title, underline, empty line, rule, column heads, rule, rows,
/// rule.
std::string Section(const std::string& title, const std::string& rows,
                    const std::string& rule = std::string(77, '-')) {
  return title + "\n========\n\n" + rule + "\nHEADS\n" + rule + "\n" + rows + rule + "\n";
}

/// What a scan says of each line: the lists that take it as a row ("T", "V", "P"), or "-".
std::vector<std::string> Scan(const std::string& text) {
  pq::DriveListScan scan;
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at) + 1;
    const auto isRow = scan.Take(text.substr(at, end - at));
    std::string lists;
    for (std::size_t i = 0; i < isRow.size(); ++i) {
      if (isRow[i]) lists += "TVP"[i];
    }
    lines.push_back(lists.empty() ? "-" : lists);
    at = end;
  }
  return lines;
}

/// All that happens to the one instance of a class: "key=value" of each property, "add", "release".
std::vector<std::string> FillingOf(const std::string& className, const std::string& trace) {
  std::vector<std::string> filling;
  std::istringstream lines(trace);
  nlohmann::json id;
  for (std::string line; std::getline(lines, line);) {
    const nlohmann::json event = nlohmann::json::parse(line);
    const std::string kind = event.at("event");
    if (kind == "instance" && event.at("class") == className) {
      EXPECT_TRUE(id.is_null()) << "more than one instance";
      id = event.at("id");
    } else if (kind == "property" && event.at("id") == id) {
      filling.push_back(std::string(event.at("key")) + "=" + std::string(event.at("value")));
    } else if ((kind == "add" || kind == "release") && event.at("id") == id) {
      filling.push_back(kind);
    }
  }
  return filling;
}

Collected Summary(const std::string& text) {
  return RaidTools().Storcli("/c0 show", text).Collect();
}

const std::string kTopologyRow =
    " 0 0   1   134:3    18  DRIVE Onln  N  557.861 GB dflt N  N   dflt -\n";
const std::string kVirtualRow = "0/0   RAID1 Optl  RW     No      NRWTD -   OFF 557.861 GB boot\n";
const std::string kPhysicalRow =
    "134:2    17 Onln   0 557.861 GB SAS  HDD N   N  512B HX600         U\n";

const std::vector<std::string> kTopologyValues = {
    "DG=0", "Arr=0",           "Row=1",    "EID=134:3", "DID=18", "Type=DRIVE", "State=Onln",
    "BT=N", "Size=557.861 GB", "PDC=dflt", "PI=N",      "SED=N",  "DS3=dflt",   "FSpace=-\n"};
const std::vector<std::string> kVirtualValues = {"DG=0/0",    "TYPE=RAID1",      "State=Optl",
                                                 "Access=RW", "Consist=No",      "Cache=NRWTD",
                                                 "sCC=OFF",   "Size=557.861 GB", "Name=boot\n"};
const std::vector<std::string> kPhysicalValues = {
    "EID=134:2", "DID=17", "State=Onln", "DG=0",      "Size=557.861 GB", "Intf=SAS",
    "Med=HDD",   "SED=N",  "PI=N",       "SeSz=512B", "Model=HX600",     "Sp=U\n"};

TEST(DriveListScan, SkipsTheTitleAndTheFiveLinesBehindIt) {
  EXPECT_THAT(Scan(Section("TOPOLOGY :", "row\nrow\n")),
              ElementsAre("-", "-", "-", "-", "-", "-", "T", "T", "-"));
}

TEST(DriveListScan, GoesThroughAllThreeLists) {
  const std::string text = Section("TOPOLOGY :", "r\n") + "\nVirtual Drives = 1\n" +
                           Section("VD LIST :", "r\n") + Section("PD LIST :", "r\n");
  EXPECT_THAT(Scan(text), ElementsAre("-", "-", "-", "-", "-", "-", "T", "-",  //
                                      "-", "-",                                //
                                      "-", "-", "-", "-", "-", "-", "V", "-",  //
                                      "-", "-", "-", "-", "-", "-", "P", "-"));
}

TEST(DriveListScan, FindsATitleInsideALine) {
  EXPECT_THAT(Scan("## PD LIST : ##\n2\n3\n4\n5\n6\nrow\n").back(), "P");
}

TEST(DriveListScan, TakesALineBehindTheEndForNoRow) {
  EXPECT_EQ(Scan(Section("TOPOLOGY :", "") + "row\n").back(), "-");
}

TEST(DriveListScan, EndsEachListAtItsOwnLengthOfRule) {
  EXPECT_EQ(Scan(Section("TOPOLOGY :", "", kRule26)).back(), "-");
  EXPECT_EQ(Scan(Section("VD LIST :", "", kRule27)).back(), "-");
  EXPECT_EQ(Scan(Section("PD LIST :", "", kRule28)).back(), "-");
}

TEST(DriveListScan, TakesAShorterRuleAsARow) {
  EXPECT_EQ(Scan(Section("TOPOLOGY :", "", kRule26.substr(1))).back(), "T");
  EXPECT_EQ(Scan(Section("VD LIST :", "", kRule26)).back(), "V");
  EXPECT_EQ(Scan(Section("PD LIST :", "", kRule27)).back(), "P");
}

TEST(DriveListScan, FindsTheRuleInsideALine) {
  EXPECT_EQ(Scan(Section("PD LIST :", "", std::string("x") + kRule28 + "x")).back(), "-");
}

TEST(DriveListScan, TakesARuleInTheHeadForNoEnd) {
  EXPECT_EQ(Scan(std::string("PD LIST :\n") + kRule28 + "\n" + kRule28 + "\n4\n5\n6\nrow\n").back(),
            "P");
}

TEST(DriveListScan, CountsTheHeadOnceForListsThatAreOpenTogether) {
  // Two titles before the head is over: a head line that the first list counts never reaches the
  // second.
  EXPECT_THAT(Scan("TOPOLOGY :\n2\nVD LIST :\n4\n5\n6\nrow\n"),
              ElementsAre("-", "-", "-", "-", "-", "-", "TV"));
}

TEST(DriveListScan, TakesATitleInsideAnOpenListAsARowOfBoth) {
  EXPECT_THAT(Scan("TOPOLOGY :\n2\n3\n4\n5\n6\nVD LIST :\nrow\n"),
              ElementsAre("-", "-", "-", "-", "-", "-", "TV", "TV"));
}

TEST(DriveListScan, StartsTheHeadOfTheOtherListOnTheLineThatEndsTheFirst) {
  // The rule ends the topology and resets the count, and is at once the first head line of the list
  // that is still open.
  EXPECT_THAT(Scan("TOPOLOGY :\n2\n3\n4\n5\n6\nVD LIST :\n" + kRule28 + "\n2\n3\n4\n5\n6\nrow\n"),
              ElementsAre("-", "-", "-", "-", "-", "-", "TV", "-", "-", "-", "-", "-", "-", "V"));
}

TEST(DriveListScan, EndsALaterListBesideAnOpenEarlierOneOnce) {
  // 26 dashes end the topology; the virtual drives go on with a new head.
  EXPECT_THAT(Scan("TOPOLOGY :\nVD LIST :\n3\n4\n5\n6\n" + kRule26 + "\n2\n3\n4\n5\n6\nrow\n"),
              ElementsAre("-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "-", "V"));
}

TEST(DriveListScan, OpensAListAgainAtItsNextTitle) {
  const std::string once = Section("PD LIST :", "row\n");
  EXPECT_THAT(Scan(once + once), ElementsAre("-", "-", "-", "-", "-", "-", "P", "-",  //
                                             "-", "-", "-", "-", "-", "-", "P", "-"));
}

TEST(DriveListScan, DoesNotTakeAJbodListForAList) {
  EXPECT_EQ(Scan(Section("JBOD LIST :", "row\n"))[6], "-");
}

TEST(DriveSize, JoinsNumberAndUnitWithOneBlank) {
  EXPECT_EQ(pq::JoinSize("557.861", "GB"), "557.861 GB");
}

TEST(DriveSize, HasAtMost19Characters) {
  EXPECT_EQ(pq::JoinSize("1234567890123456", "GB"), "1234567890123456 GB");
  EXPECT_EQ(pq::JoinSize("12345678901234567", "GB"), "12345678901234567 G");
  EXPECT_EQ(pq::JoinSize("1234567890123456789", "GB"), "1234567890123456789");
  EXPECT_EQ(pq::JoinSize("12345678901234567890", "GB"), "1234567890123456789");
}

TEST(DriveLists, ReadsARowOfEachList) {
  const Collected collected =
      Summary(Section("TOPOLOGY :", kTopologyRow) + Section("VD LIST :", kVirtualRow) +
              Section("PD LIST :", kPhysicalRow));
  EXPECT_THAT(collected.Rows("TINFO"), ElementsAre(kTopologyValues));
  EXPECT_THAT(collected.Rows("VINFO"), ElementsAre(kVirtualValues));
  EXPECT_THAT(collected.Rows("PINFO"), ElementsAre(kPhysicalValues));
}

TEST(DriveLists, AddsNothingForASixteenthTopologyColumn) {
  const auto rows =
      Summary(
          Section("TOPOLOGY :",
                  " 0 0   1   134:3    18  DRIVE Onln  N  557.861 GB dflt N  N   dflt -      N\n"))
          .Rows("TINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].back(), "FSpace=-");
  EXPECT_THAT(rows[0], SizeIs(14));
}

TEST(DriveLists, AddsNothingForATypeColumnBehindPhysicalDrives) {
  const auto rows =
      Summary(Section("PD LIST :",
                      "134:2    17 Onln   0 557.861 GB SAS  HDD N   N  512B HX600         U  -\n"))
          .Rows("PINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].back(), "Sp=U");
}

TEST(DriveLists, ReadsRaid10RowsByPosition) {
  const auto rows =
      Summary(Section("TOPOLOGY :",
                      " 2 -   -   -        -   RAID10 Dgrd  Y    6.980 TB dsbl N  N   dflt N\n"))
          .Rows("TINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0], AllOf(Contains("Type=RAID10"), Contains("State=Dgrd"),
                             Contains("Size=6.980 TB"), Contains("FSpace=N\n")));
}

TEST(DriveLists, ReadsAVirtualDriveNameUpToItsFirstBlank) {
  const auto rows =
      Summary(Section("VD LIST :",
                      "1/1   RAID6 Optl  RW     Yes     RAWBD -   ON   54.570 TB Backup vault\n"))
          .Rows("VINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].back(), "Name=Backup");
}

TEST(DriveLists, AddsNoVirtualDriveWithoutAName) {
  const Collected collected =
      Summary(Section("VD LIST :", "1/2   RAID6 Optl  RO     No      NRWTD -   ON    3.637 TB\n"));
  EXPECT_THAT(collected.Rows("VINFO"), IsEmpty());
  EXPECT_THAT(collected.trace, HasSubstr(R"("key":"Size","label":"Size","value":"3.637 TB\n")"));
}

TEST(DriveLists, TakesALineEndBehindBlanksAsTheNameOfANamelessVirtualDrive) {
  const auto rows =
      Summary(Section("VD LIST :", "0/0   RAID5 Optl  RW     No      RWBD  -   ON  1.089 TB \n"))
          .Rows("VINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].back(), "Name=\n");
}

TEST(DriveLists, ShiftsAVirtualDriveWithoutTheCacheCadeColumn) {
  const auto rows =
      Summary(
          Section("VD LIST :", "0/0   RAID1 Optl  RW     Yes     NRWBD ON  446.625 GB boot disk\n"))
          .Rows("VINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0], ElementsAre("DG=0/0", "TYPE=RAID1", "State=Optl", "Access=RW", "Consist=Yes",
                                   "Cache=NRWBD", "sCC=446.625", "Size=GB boot", "Name=disk\n"));
}

TEST(DriveLists, ShiftsThePhysicalColumnsBehindAModelWithBlanks) {
  const auto rows =
      Summary(Section("PD LIST :",
                      "69:0     12 Onln   0 446.625 GB SATA SSD N   N  512B KORVA NS480M2 U  -\n"))
          .Rows("PINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0], AllOf(Contains("Model=KORVA"), Contains("Sp=NS480M2")));
}

TEST(DriveLists, ReadsADriveWithoutEnclosure) {
  const auto rows =
      Summary(Section("PD LIST :",
                      " :26      9 JBOD  -  894.253 GB SATA SSD -   -  512B NS960         U\n"))
          .Rows("PINFO");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0], AllOf(Contains("EID=:26"), Contains("DG=-"), Contains("Sp=U\n")));
}

TEST(DriveLists, ReadsTheListOfAnAdapterWithoutTopologyAndVirtualDrives) {
  const Collected collected =
      Summary("Function Number = 0\nPhysical Drives = 1\n\n" + Section("PD LIST :", kPhysicalRow));
  EXPECT_THAT(collected.Rows("TINFO"), IsEmpty());
  EXPECT_THAT(collected.Rows("VINFO"), IsEmpty());
  EXPECT_THAT(collected.Rows("PINFO"), ElementsAre(kPhysicalValues));
}

TEST(DriveLists, LeavesOutAJbodListBehindThePhysicalDrives) {
  EXPECT_THAT(
      Summary(Section("PD LIST :", kPhysicalRow) + "\n" + Section("JBOD LIST :", kPhysicalRow))
          .Rows("PINFO"),
      SizeIs(1));
}

TEST(DriveLists, ReadsAShortRuleAsARowOfOneToken) {
  const Collected collected = Summary(Section("PD LIST :", kPhysicalRow, kRule27));
  EXPECT_THAT(collected.Rows("PINFO"), SizeIs(1));
  EXPECT_THAT(collected.trace,
              HasSubstr(R"("key":"EID","label":"EID Slt","value":")" + kRule27 + R"(\n")"));
}

TEST(DriveLists, AddsNoRowForATopologyWithoutItsLastColumn) {
  const Collected collected = Summary(Section(
      "TOPOLOGY :", " 0 0   1   134:3    18  DRIVE Onln  N  557.861 GB dflt N  N   dflt\n"));
  EXPECT_THAT(collected.Rows("TINFO"), IsEmpty());
  EXPECT_THAT(collected.trace, HasSubstr(R"("label":"Dimmer Switch 3","value":"dflt\n")"));
}

TEST(DriveLists, SetsNoSizeWithoutItsUnit) {
  const Collected collected = Summary(Section("PD LIST :", "134:2    17 Onln   0 557.861\n"));
  EXPECT_THAT(collected.trace, HasSubstr(R"("label":"DriveGroup","value":"0")"));
  EXPECT_THAT(collected.trace, Not(HasSubstr("557.861")));
}

// A whole row sets every column, so nothing that was carried is left to see in it; but both are set
// in one instance, and only the whole row is added.
TEST(DriveLists, CarriesColumnsOfAShortRowIntoTheNext) {
  const Collected collected = Summary(Section(
      "VD LIST :", "1/1   RAID6 Optl  RO     No      NRWTD -   ON    3.637 TB\n" + kVirtualRow));
  std::vector<std::string> expected = {"DG=1/1",    "TYPE=RAID6",     "State=Optl",
                                       "Access=RO", "Consist=No",     "Cache=NRWTD",
                                       "sCC=ON",    "Size=3.637 TB\n"};
  expected.insert(expected.end(), kVirtualValues.begin(), kVirtualValues.end());
  expected.push_back("add");
  expected.push_back("release");
  EXPECT_THAT(FillingOf("VINFO", collected.trace), ElementsAreArray(expected));
}

TEST(DriveLists, ReadsARowOfAnEmptyLineAsItsLineEnd) {
  EXPECT_THAT(Summary(Section("PD LIST :", "\n")).trace,
              HasSubstr(R"("label":"EID Slt","value":"\n")"));
}

TEST(DriveLists, ReadsALineThatEndsTheFileWithoutALineEnd) {
  const std::string cut = Section("PD LIST :", "");
  const Collected collected =
      Summary(cut.substr(0, cut.size() - 78) + kPhysicalRow.substr(0, kPhysicalRow.size() - 1));
  ASSERT_THAT(collected.Rows("PINFO"), SizeIs(1));
  EXPECT_EQ(collected.Rows("PINFO")[0].back(), "Sp=U");
}

TEST(DriveLists, ReadsCrLfAsOneLineEnd) {
  std::string stored;
  for (const char c : Section("PD LIST :", kPhysicalRow)) {
    if (c == '\n') stored += '\r';
    stored += c;
  }
  EXPECT_THAT(Summary(stored).Rows("PINFO"), ElementsAre(kPhysicalValues));
}

TEST(DriveLists, LogsItsCommandAsTheRaidPath) {
  EXPECT_THAT(
      Summary("").LogTexts(),
      Contains(
          R"(3 raid raw path:/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show > "C:\Halyard\logs\c0_showall.txt"")"));
}

TEST(DriveLists, AddsNothingWhenStorcliCannotStart) {
  const Collected collected = RaidTools().RefuseStart("storcli.exe", "/c0 show", 5).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"TINFO")")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("SAS2IR_windows_x64")));
}

TEST(DriveLists, AddsNothingWhenTheSummaryCannotBeOpened) {
  const Collected collected = RaidTools()
                                  .Storcli("/c0 show", Section("PD LIST :", kPhysicalRow))
                                  .RefuseReport("c0_showall.txt")
                                  .Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open raid log file"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"PINFO")")));
}

}  // namespace
