#include "host/answers/parts/header_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/answers/parts/report_lines.h"

namespace {

using host::TableHeads;
using host::TableScan;

TEST(ReportLines, EndWithAnyLineEnd) {
  host::ReportLines lines("a\nb\r\nc\rd\n\ne");
  std::vector<std::string> seen;
  for (host::ReportLine line; lines.Next(line);) {
    seen.push_back(std::to_string(line.number) + std::string(line.text));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"1a", "2b", "3c", "4d", "5", "6e"}));
}

TEST(ReportLines, HaveALabelAndAValueWhereverItBegins) {
  const auto near = host::SplitLabel("BBU  = Yes ", '=');
  ASSERT_TRUE(near);
  EXPECT_EQ(near->label, "BBU");
  EXPECT_EQ(near->value, "Yes");
  EXPECT_EQ(host::SplitLabel("   Status            : Optimal : x", ':')->value, "Optimal : x");
  EXPECT_EQ(host::SplitLabel("Serial Number =", '=')->value, "");
  EXPECT_FALSE(host::SplitLabel("= 1", '='));
  EXPECT_FALSE(host::SplitLabel("no label", '='));
}

constexpr char kDriveHeads[] =
    "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model             Sp Type";

TEST(TableHeads, LeaveTheWordsThatAreOverToTheWideColumn) {
  const TableHeads heads(kDriveHeads);
  const auto cells = heads.DealWords(
      "69:23    43 JBOD  -   3.638 TB SATA HDD N   N  4 KB BK4000DM  004-2CV1 D  -", "Model");
  ASSERT_TRUE(cells);
  EXPECT_EQ((*cells)["EID:Slt"], "69:23");
  EXPECT_EQ((*cells)["Size"], "3.638 TB");
  EXPECT_EQ((*cells)["SeSz"], "4 KB");
  EXPECT_EQ((*cells)["Model"], "BK4000DM  004-2CV1");
  EXPECT_EQ((*cells)["Sp"], "D");
  EXPECT_EQ((*cells)["Type"], "-");
  EXPECT_EQ((*cells)["No such head"], "");
}

TEST(TableHeads, TakeARowWithoutItsWideCellAndNoneWithFewer) {
  const TableHeads heads("DG/VD TYPE  Size Name");
  EXPECT_EQ((*heads.DealWords("0/0 RAID5 1.089 TB", "Name"))["Name"], "");
  EXPECT_FALSE(heads.DealWords("0/0 RAID5", "Name"));
  EXPECT_FALSE(heads.DealWords("0/0 RAID5 1.089 TB Boot disk", ""));
  EXPECT_TRUE(heads.DealWords("0/0 RAID5 - Boot", ""));
}

TEST(TableHeads, KnowHeadsOfTwoWords) {
  const TableHeads heads("EID:Slt Model     Sp LU/NS Count Alt-EID");
  const auto cells = heads.DealWords("52:0 ST 8000 -  1 -", "Model");
  ASSERT_TRUE(cells);
  EXPECT_EQ((*cells)["Model"], "ST 8000");
  EXPECT_EQ((*cells)["LU/NS Count"], "1");
}

TEST(TableHeads, CutARowWithEmptyCells) {
  const TableHeads heads(
      "EID State DeviceType        Slots PD Multipath PS Fans ProdID           ");
  const auto cells =
      heads.CutBelowHeads(" 52 OK    Logical Enclosure    24 10 No              0 Virtual SES");
  EXPECT_EQ(cells["EID"], "52");
  EXPECT_EQ(cells["DeviceType"], "Logical Enclosure");
  EXPECT_EQ(cells["Slots"], "24");
  EXPECT_EQ(cells["PD"], "10");
  EXPECT_EQ(cells["Multipath"], "No");
  EXPECT_EQ(cells["PS"], "");
  EXPECT_EQ(cells["Fans"], "0");
  EXPECT_EQ(cells["ProdID"], "Virtual SES");
}

TEST(TableHeads, CutNoLongWordWhereTheNextHeadBegins) {
  const TableHeads heads("EID State DeviceType  Slots");
  const auto cells = heads.CutBelowHeads(" 52 Unsupported Enclosure   24");
  EXPECT_EQ(cells["State"], "Unsupported");
  EXPECT_EQ(cells["DeviceType"], "Enclosure");
  EXPECT_EQ(cells["Slots"], "24");
}

TEST(TableHeads, GiveAWordThatBeginsBetweenTwoOfThemToTheOneItReaches) {
  const TableHeads heads("EID  State Slots");
  const auto cells = heads.CutBelowHeads("52  Okay  1024");
  EXPECT_EQ(cells["EID"], "52");
  EXPECT_EQ(cells["State"], "Okay");
  EXPECT_EQ(cells["Slots"], "1024");
}

// Otherwise a report of some megabytes keeps a collection busy for hours.
TEST(TableHeads, AreNotAsManyAsALongLineHasWords) {
  std::string line;
  for (int i = 0; i < 100; ++i) line += "H" + std::to_string(i) + " ";
  const TableHeads heads(line);
  EXPECT_TRUE(heads.Has("H63"));
  EXPECT_FALSE(heads.Has("H64"));
}

TEST(TableScan, FindsTitlesHeadsAndRows) {
  TableScan scan;
  std::vector<std::string> seen;
  for (const char* line :
       {"PD LIST :", "=======", "", "----------------", "EID:Slt DID", "----------------",
        "69:0     12", "69:1     13", "----------------", "EID=Enclosure"}) {
    const auto kind = scan.Take(line);
    if (kind == TableScan::LineKind::kTitle) seen.push_back("title " + std::string(scan.Title()));
    if (kind == TableScan::LineKind::kHeads) seen.push_back("heads");
    if (kind == TableScan::LineKind::kRow) seen.push_back(line);
  }
  EXPECT_EQ(seen,
            (std::vector<std::string>{"title PD LIST", "heads", "69:0     12", "69:1     13"}));
}

// A report that is cut off loses the rule below its last row.
TEST(TableScan, EndsATableAtTheNextTitle) {
  TableScan scan;
  for (const char* line : {"VD LIST :", "------------", "DG/VD", "------------", "0/0"}) {
    scan.Take(line);
  }
  EXPECT_EQ(scan.Take("PD LIST :"), TableScan::LineKind::kTitle);
  EXPECT_EQ(scan.Take("anything"), TableScan::LineKind::kOther);
}

}  // namespace
