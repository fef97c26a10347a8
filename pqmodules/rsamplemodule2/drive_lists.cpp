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
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

// A summary, although the file is named like the full report.
constexpr StorcliReport kListsReport{"/c0 show", "c0_showall.txt", "raid raw path:"};

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
constexpr int kListHeadLines = 6;

/// Room of a size such as "557.861 GB", without the terminator.
constexpr std::size_t kSizeLength = 19;

constexpr TokenColumn kTopology[] = {
    {1, {"DG", "Disk Group Index", "number of the drive group, or a dash", ValueKind::kNumber}},
    {2, {"Arr", "Array Index", "number of the array in the group", ValueKind::kNumber}},
    {3, {"Row", "Row Index", "number of the drive in the array", ValueKind::kNumber}},
    {4, {"EID", "EID Slot", "enclosure and slot of the drive, as in 134:1"}},
    {5, {"DID", "Device ID", "the controller's number of the drive", ValueKind::kNumber}},
    {6, {"Type", "Type", "DRIVE, or the RAID level of a group or an array"}},
    {7, {"State", "State", "Onln: online, Optl: optimal, Dgrd: degraded, and so on"}},
    {8, {"BT", "Background Task Active", "whether a rebuild or the like is running (Y, N)"}},
    {9, {"Size", "Size", "capacity with its unit"}, true},
    {11, {"PDC", "PD Cache", "cache of the drives: enabled, disabled or as they come (dflt)"}},
    {12, {"PI", "Protection Info", "whether data carry protection information (Y, N)"}},
    {13, {"SED", "Self Encrypting Drive", "whether drives encrypt by themselves (Y, N)"}},
    {14, {"DS3", "Dimmer Switch 3", "power saving of the drives"}},
    {15, {"FSpace", "Free Space Present", "whether the group has room for more volumes (Y, N)"}},
};

// Token 7, the CacheCade state, has no column.
constexpr TokenColumn kVirtualDrives[] = {
    {1, {"DG", "DG/VD", "drive group and number of the virtual drive"}},
    {2, {"TYPE", "TYPE", "RAID level"}},
    {3, {"State", "State", "Optl: optimal, Dgrd: degraded, OfLn: offline, and so on"}},
    {4, {"Access", "Access", "RW: read and write, RO: read only, and so on"}},
    {5, {"Consist", "Consist", "whether its redundant data are consistent (Yes, No)"}},
    {6, {"Cache", "Cache", "read-ahead, write and I/O policy, as in RWBD"}},
    {8, {"sCC", "sCC", "whether consistency checks are scheduled (ON, OFF)"}},
    {9, {"Size", "Size", "capacity with its unit"}, true},
    {11, {"Name", "Name", "name that it was given"}},
};

constexpr TokenColumn kPhysicalDrives[] = {
    {1, {"EID", "EID Slt", "enclosure and slot of the drive, as in 134:1"}},
    {2, {"DID", "Device ID", "the controller's number of the drive", ValueKind::kNumber}},
    {3, {"State", "State", "Onln: online, UGood: unconfigured, GHS: hot spare, Failed, and so on"}},
    {4, {"DG", "DriveGroup", "number of its drive group, or a dash", ValueKind::kNumber}},
    {5, {"Size", "Size", "capacity with its unit"}, true},
    {7, {"Intf", "Intf", "interface, such as SAS, SATA or NVMe"}},
    {8, {"Med", "Med", "medium: HDD or SSD"}},
    {9, {"SED", "SED", "whether it encrypts by itself (Y, N)"}},
    {10, {"PI", "PI", "whether it can carry protection information (Y, N)"}},
    {11, {"SeSz", "SeSz", "size of a sector, in bytes"}},
    {12, {"Model", "Model", "model of the drive"}},
    {13, {"Sp", "Spun", "whether it is spun up (U) or down (D)"}},
};

/// The rows of one list.
struct ListRows {
  std::span<const TokenColumn> columns;
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
      if (Contains(line, kLists[i].title)) inList[i] = true;
    }
  }
  std::array<bool, kDriveListCount> isRow{};
  for (std::size_t i = 0; i < kDriveListCount; ++i) {
    if (!inList[i]) continue;
    if (headLines < kListHeadLines) {
      ++headLines;
      break;  // A head line is done with, whichever lists are open.
    }
    if (Contains(line, kLists[i].endRule)) {
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
  auto file = RunStorcli(collection.log, collection.hostFolder, kListsReport);
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
  file.reset();
}

void DescribeDriveLists(ModuleDescription& module) {
  const auto describe = [&](const char* className, const char* title,
                            std::span<const TokenColumn> tokens) {
    TableDescription table{
        .className = className, .title = title, .commands = {DescribeReport(kListsReport)}};
    for (const TokenColumn& token : tokens) table.AddColumn(token.column);
    table.leavesOut = {LeaveOutOtherLsiControllers(),
                       {.text = "A line with fewer words than the table has columns, such as that "
                                "of a volume without a name, is no row."}};
    module.tables.push_back(table);
  };
  describe(kTInfo, "LSI topology", kTopology);
  describe(kVInfo, "LSI virtual drives", kVirtualDrives);
  describe(kPInfo, "LSI physical drives", kPhysicalDrives);
}

}  // namespace pq
