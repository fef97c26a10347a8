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

#include "frame/labelled_columns.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/intel_report.h"

namespace pq {
namespace {

constexpr IntelReportLog kReportLog{
    .commandLevel = kDetail, .exitCodeErrorNumber = false, .reportPath = true};

const LabelledColumns kEndDeviceFacts{
    {"ID:", 3, {"ID", "ID"}},
    {"Type:", 5, {"Type", "Type"}},
    {"State:", 6, {"State", "State"}},
    {"Size:", 5, {"Size", "Size"}},
    {"System Disk:", 12, {"SystemDisk", "System Disk"}},
    {"Usage:", 6, {"Usage", "Usage"}},
    {"Serial Number:", 14, {"SerialNumber", "Serial Number"}},
    {"Model:", 6, {"Model", "Model"}, true},
};

// Taken instead of "Type:". The value begins 10 characters after the "Type:" inside: five of the
// blanks that the tool pads with are left out, and so are four letters of a word behind one blank.
const LabelledColumn kDiskType{"Disk Type:", 5 + 10, {"DiskType", "Disk Type"}};

/// The value of a line at a place in its block: behind the label that the tool prints there.
struct BlockColumn {
  std::size_t valueAt;  ///< from the line's start
  Column column;
};

/// A block that begins with a marker line. Its columns stand on the lines from the third on.
struct Block {
  std::string_view marker;
  std::vector<BlockColumn> columns;
};
constexpr std::size_t kFirstColumnLine = 3;

const Block kArrayBlock{"ARRAY INFORMATION",
                        {
                            {5, {"Name", "Name"}},
                            {5, {"Size", "Size"}},
                            {5, {"Free", "Free"}},
                            {10, {"NumDisks", "Num Disks"}},
                            {9, {"NumVols", "Num Vols"}},
                            {12, {"WriteCache", "Write Cache"}},
                        }};

const Block kVolumeBlock{"VOLUME INFORMATION",
                         {
                             {5, {"Name", "Name"}},
                             {11, {"RaidLevel", "Raid Level"}},
                             {5, {"Size", "Size"}},
                             {11, {"StripeSize", "StripeSize"}},
                             {10, {"NumDisks", "Num Disks"}},
                             {6, {"State", "State"}},
                             {7, {"System", "System"}},
                             {12, {"Initialized", "Initialized"}},
                             {13, {"CachePolicy", "Cache Policy"}},
                         }};

LabelledFact ReadEndDeviceFact(std::string_view line) {
  LabelledFact fact = kEndDeviceFacts.FindIn(line);
  if (fact && fact.source->label == "Type:") {
    const std::size_t diskType = line.find(kDiskType.label);
    if (diskType != std::string_view::npos) {
      fact = {&kDiskType, TextFrom(line, diskType + kDiskType.valueAt)};
    }
  }
  return fact;
}

/// Every line from the marker on counts: what the tool prints further down can still fill a column.
void AddEndDevices(TextFile* file, RowBuffer& row) {
  bool inSection = false;
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    inSection = inSection || Holds(line, "END DEVICE");
    if (inSection) Fill(row, ReadEndDeviceFact(line));
  }
}

void AddBlocks(TextFile* file, const Block& block, RowBuffer& row) {
  std::size_t lineInBlock = 0;  // From 1; 0 before the first block.
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    if (Holds(line, block.marker)) {
      lineInBlock = 1;
      continue;
    }
    if (lineInBlock == 0) continue;
    const std::size_t place = ++lineInBlock - kFirstColumnLine;
    if (place >= block.columns.size()) continue;
    row.Set(block.columns[place].column, TextFrom(line, block.columns[place].valueAt));
    if (place + 1 == block.columns.size()) row.Commit();
  }
}

}  // namespace

void CollectIntelDevices(const RaidLogsCollection& collection) {
  const auto file = RunIntelReport(collection.log, collection.hostFolder, kReportLog);
  if (!file) return;
  RowBuffer endDevice(collection.repo, kEndDeviceInfo, "End Device Info");
  RowBuffer array(collection.repo, kArray, "Array Info");
  RowBuffer volume(collection.repo, kVolume, "Volume Info");
  AddEndDevices(file.get(), endDevice);
  file->Rewind();
  AddBlocks(file.get(), kArrayBlock, array);
  file->Rewind();
  AddBlocks(file.get(), kVolumeBlock, volume);
}

TableSources DescribeIntelDevices() {
  TableSource endDevices{kEndDeviceInfo, IntelReportCommands(), {}};
  for (const Column& column : ColumnsOf(kEndDeviceFacts)) {
    endDevices.columns.push_back(column);
    if (column.key == "Type") endDevices.columns.push_back(kDiskType.column);
  }
  const auto describe = [](const std::string& className, const Block& block) {
    TableSource source{className, IntelReportCommands(), {}};
    for (const BlockColumn& column : block.columns) source.columns.push_back(column.column);
    return source;
  };
  return {std::move(endDevices), describe(kArray, kArrayBlock), describe(kVolume, kVolumeBlock)};
}

}  // namespace pq
