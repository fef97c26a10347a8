// storcli /c0 show:
//
//   PD LIST :
//   =======
//
//   -------------------------------------------------------------------------
//   EID:Slt DID State DG       Size Intf Med SED PI SeSz Model            Sp
//   -------------------------------------------------------------------------
//   134:1    16 Onln   1 371.597 GB SAS  SSD N   N  512B PX05SVB040       U
//   -------------------------------------------------------------------------

#include "pqmodules/rsamplemodule2/drive_lists.h"

#include <algorithm>

#include "frame/label_table.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

// A summary, although the file is named like the full report.
constexpr StorcliReport kReport{"/c0 show", "c0_showall.txt", "raid raw path:"};

struct DriveList {
  std::string_view title;
  std::string_view endRule;
};
constexpr std::string_view kRule = "----------------------------";
constexpr std::array<DriveList, kDriveListCount> kLists{{
    {"TOPOLOGY :", kRule.substr(0, 26)},
    {"VD LIST :", kRule.substr(0, 27)},
    {"PD LIST :", kRule.substr(0, 28)},
}};

const LabelTable kTitles({kLists[0].title, kLists[1].title, kLists[2].title});

/// The title, its underline, an empty line, a rule, the column heads and a rule.
constexpr int kHeadLines = 6;

/// Room of a size such as "557.861 GB", without the terminator.
constexpr std::size_t kSizeLength = 19;

const std::vector<TokenColumn> kTopology{
    {1, {"DG", "Disk Group Index"}},  {2, {"Arr", "Array Index"}},
    {3, {"Row", "Row Index"}},        {4, {"EID", "EID Slot"}},
    {5, {"DID", "Device ID"}},        {6, {"Type", "Type"}},
    {7, {"State", "State"}},          {8, {"BT", "Background Task Active"}},
    {9, {"Size", "Size"}, true},      {11, {"PDC", "PD Cache"}},
    {12, {"PI", "Protection Info"}},  {13, {"SED", "Self Encrypting Drive"}},
    {14, {"DS3", "Dimmer Switch 3"}}, {15, {"FSpace", "Free Space Present"}},
};

// Token 7, the CacheCade state, has no column.
const std::vector<TokenColumn> kVirtualDrives{
    {1, {"DG", "DG/VD"}},      {2, {"TYPE", "TYPE"}},       {3, {"State", "State"}},
    {4, {"Access", "Access"}}, {5, {"Consist", "Consist"}}, {6, {"Cache", "Cache"}},
    {8, {"sCC", "sCC"}},       {9, {"Size", "Size"}, true}, {11, {"Name", "Name"}},
};

const std::vector<TokenColumn> kPhysicalDrives{
    {1, {"EID", "EID Slt"}},   {2, {"DID", "Device ID"}},   {3, {"State", "State"}},
    {4, {"DG", "DriveGroup"}}, {5, {"Size", "Size"}, true}, {7, {"Intf", "Intf"}},
    {8, {"Med", "Med"}},       {9, {"SED", "SED"}},         {10, {"PI", "PI"}},
    {11, {"SeSz", "SeSz"}},    {12, {"Model", "Model"}},    {13, {"Sp", "Spun"}},
};

/// The rows of one list.
struct ListRows {
  const std::vector<TokenColumn>& columns;
  RowBuffer row;

  void Take(std::string_view line) {
    const bool isWhole = ReadDriveRow(
        line, columns,
        [this](const Column& column, std::string_view value) { row.Set(column, value); });
    if (isWhole) row.Commit();
  }
};

}  // namespace

std::array<bool, kDriveListCount> DriveListScan::Take(std::string_view line) {
  if (kTitles.FindIn(line)) {  // A line can hold more than one.
    for (std::size_t i = 0; i < kDriveListCount; ++i) {
      if (Holds(line, kLists[i].title)) inList[i] = true;
    }
  }
  std::array<bool, kDriveListCount> isRow{};
  for (std::size_t i = 0; i < kDriveListCount; ++i) {
    if (!inList[i]) continue;
    if (headLines < kHeadLines) {
      ++headLines;
      break;  // A head line is done with, whichever lists are open.
    }
    if (Holds(line, kLists[i].endRule)) {
      inList[i] = false;
      headLines = 0;
    } else {
      isRow[i] = true;
    }
  }
  return isRow;
}

std::string JoinSize(std::string_view number, std::string_view unit) {
  std::string size(number);
  size += ' ';
  size += unit;
  size.resize(std::min(size.size(), kSizeLength));
  return size;
}

void CollectDriveLists(const RaidLogsCollection& collection) {
  const auto file = RunStorcli(collection, kReport);
  if (!file) return;
  std::array<ListRows, kDriveListCount> lists{{
      {kTopology, {collection.repo, kTInfo, "Controller 0 TOPOLOGY INFO"}},
      {kVirtualDrives, {collection.repo, kVInfo, "Controller 0 Virtual Drive List"}},
      {kPhysicalDrives, {collection.repo, kPInfo, "Controller 0 Physical Drive List"}},
  }};
  DriveListScan scan;
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    const auto isRow = scan.Take(line);
    for (std::size_t i = 0; i < kDriveListCount; ++i) {
      if (isRow[i]) lists[i].Take(line);
    }
  }
}

TableSources DescribeDriveLists() {
  const auto describe = [](const std::string& className, const std::vector<TokenColumn>& tokens) {
    TableSource source{className, {CommandOf(kReport)}, {}};
    for (const TokenColumn& token : tokens) source.columns.push_back(token.column);
    return source;
  };
  return {describe(kTInfo, kTopology), describe(kVInfo, kVirtualDrives),
          describe(kPInfo, kPhysicalDrives)};
}

}  // namespace pq
