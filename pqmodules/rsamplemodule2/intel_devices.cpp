// rstcli64 -I or IntelVROCCli -I:
//
//   --END DEVICE INFORMATION--
//
//   ID:                     0-4-0-0
//   Type:                   Disk
//   Disk Type:              PCIE SSD
//   ...
//   Model:                  ACME 4600
//
//   --ARRAY INFORMATION--
//
//   Name:                   Array_0000
//   Size:                   1863 GB
//   ...

#include "pqmodules/rsamplemodule2/intel_devices.h"

#include <span>

#include "frame/labelled_columns.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/intel_report.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

constexpr IntelReportLog kReportLog{
    .commandLevel = kDetail, .exitCodeErrorNumber = false, .reportPath = true};

constexpr std::string_view kTypeLabel = "Type:";
constexpr LabelledColumn kEndDeviceColumns[] = {
    {"ID:", 3, {"ID", "ID", "place of the drive: controller, port and so on, as in 0-4-0-0"}},
    {kTypeLabel, 5, {"Type", "Type", "kind of device, such as Disk"}},
    {"State:", 6, {"State", "State", "state of the device, such as Normal"}},
    {"Size:", 5, {"Size", "Size", "capacity with its unit"}},
    {"System Disk:", 12, {"SystemDisk", "System Disk", "whether Windows starts from it"}},
    {"Usage:", 6, {"Usage", "Usage", "what it is used for, such as Array member or Pass-through"}},
    {"Serial Number:", 14, {"SerialNumber", "Serial Number", "serial number of the drive"}},
    {"Model:", 6, {"Model", "Model", "model of the drive"}, true},
};
const LabelledColumns kEndDeviceFacts(kEndDeviceColumns);

// Taken instead of "Type:". The value begins 10 characters after the "Type:" inside: five of the
// blanks that the tool pads with are left out, and so are four letters of a word after one blank.
constexpr LabelledColumn kDiskType{
    "Disk Type:", 5 + 10, {"DiskType", "Disk Type", "kind of drive, such as PCIE SSD"}};

/// The value of a line at a place in its block: after the label that the tool prints there.
struct BlockColumn {
  std::size_t valueAt;  ///< from the line's start
  Column column;
};

/// A block that begins with a marker line. Its columns are on the lines from the third on.
struct Block {
  std::string_view marker;
  std::span<const BlockColumn> columns;
};
constexpr std::size_t kFirstColumnLine = 3;

constexpr BlockColumn kArrayColumns[] = {
    {5, {"Name", "Name", "name of the array"}},
    {5, {"Size", "Size", "capacity of its drives together, with the unit"}},
    {5, {"Free", "Free", "capacity that no volume uses, with the unit"}},
    {10, {"NumDisks", "Num Disks", "how many drives it has", ValueKind::kNumber}},
    {9, {"NumVols", "Num Vols", "how many volumes are on it", ValueKind::kNumber}},
    {12, {"WriteCache", "Write Cache", "whether the drives' write cache is on"}},
};
constexpr Block kArrayBlock{"ARRAY INFORMATION", kArrayColumns};

constexpr BlockColumn kVolumeColumns[] = {
    {5, {"Name", "Name", "name of the volume"}},
    {11, {"RaidLevel", "Raid Level", "RAID level"}},
    {5, {"Size", "Size", "capacity with its unit"}},
    {11, {"StripeSize", "StripeSize", "data written to a drive at a time, with the unit"}},
    {10, {"NumDisks", "Num Disks", "how many drives it is on", ValueKind::kNumber}},
    {6, {"State", "State", "state of the volume, such as Normal or Degraded"}},
    {7, {"System", "System", "whether Windows starts from it"}},
    {12, {"Initialized", "Initialized", "whether its redundant data have been written"}},
    {13, {"CachePolicy", "Cache Policy", "how writes are cached"}},
};
constexpr Block kVolumeBlock{"VOLUME INFORMATION", kVolumeColumns};

LabelledFact ReadEndDeviceFact(std::string_view line) {
  LabelledFact fact = kEndDeviceFacts.FindIn(line);
  if (fact && fact.source->label == kTypeLabel) {
    const std::size_t diskType = line.find(kDiskType.label);
    if (diskType != std::string_view::npos) {
      fact = {&kDiskType, GetTextFrom(line, diskType + kDiskType.valueAt)};
    }
  }
  return fact;
}

/// Every line from the marker on counts: lines further down can still fill a column.
void AddEndDevices(TextFile* file, RowBuffer& row) {
  bool inSection = false;
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    inSection = inSection || Contains(line, "END DEVICE");
    if (inSection) Fill(row, ReadEndDeviceFact(line));
  }
}

void AddBlocks(TextFile* file, const Block& block, RowBuffer& row) {
  std::size_t lineInBlock = 0;  // From 1; 0 before the first block.
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    if (Contains(line, block.marker)) {
      lineInBlock = 1;
      continue;
    }
    if (lineInBlock == 0) continue;
    const std::size_t place = ++lineInBlock - kFirstColumnLine;
    if (place >= block.columns.size()) continue;
    row.Set(block.columns[place].column, GetTextFrom(line, block.columns[place].valueAt));
    if (place + 1 == block.columns.size()) row.Commit();
  }
}

}  // namespace

void CollectIntelDevices(const RaidLogsCollection& collection) {
  auto file = RunIntelReport(collection.log, collection.hostFolder, kReportLog);
  if (!file) return;
  RowBuffer endDevice(collection.repo, kEndDeviceInfo, "End Device Info");
  RowBuffer array(collection.repo, kArray, "Array Info");
  RowBuffer volume(collection.repo, kVolume, "Volume Info");
  AddEndDevices(file.get(), endDevice);
  file->Rewind();
  AddBlocks(file.get(), kArrayBlock, array);
  file->Rewind();
  AddBlocks(file.get(), kVolumeBlock, volume);
  file.reset();
}

void DescribeIntelDevices(ModuleDescription& module) {
  TableDescription endDevices{.className = kEndDeviceInfo,
                              .title = "Intel RST end devices",
                              .commands = ListIntelCommands(),
                              .commandsAreAlternatives = true};
  for (const LabelledColumn& fact : kEndDeviceColumns) {
    endDevices.AddColumn(fact.column);
    if (fact.label == kTypeLabel) endDevices.AddColumn(kDiskType.column);
  }
  endDevices.EndRowsAt(std::rbegin(kEndDeviceColumns)->label);
  module.tables.push_back(endDevices);
  const auto describe = [&](const char* className, const char* title, const Block& block) {
    TableDescription table{.className = className,
                           .title = title,
                           .commands = ListIntelCommands(),
                           .commandsAreAlternatives = true};
    for (const BlockColumn& column : block.columns) table.AddColumn(column.column);
    module.tables.push_back(table);
  };
  describe(kArray, "Intel RST arrays", kArrayBlock);
  describe(kVolume, "Intel RST volumes", kVolumeBlock);
  for (const ToolDescription& tool : DescribeIntelTools()) module.tools.push_back(tool);
  ExplainNoIntelController(module, {kEndDeviceInfo, kArray, kVolume});
}

}  // namespace pq
