// storcli /c0 show termlog:
//
//   CLI Version = 007.1613.0000.0000 Oct 29, 2020
//   ...
//   Firmware Term Log Information on controller 0:
//   T10: C0:DM_DeviceInserted: tempdevId[51], DevHandle[a],enclHandle 1
//
// Once the marker is known to be there, every line is a row, the tool's own head included: its
// words about the controller belong to the log.

#include "pqmodules/rsamplemodule2/term_log.h"

#include "frame/label_table.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

constexpr StorcliReport kTermLogReport{"/c0 show termlog", "fwtermlog.txt", nullptr};
constexpr std::string_view kMarker = "Firmware Term Log Information";
constexpr Column kLine{"FWTERMLOG", "FW termlog", "one line of the log, as the tool prints it"};

bool ContainsMarker(TextFile* file) {
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    if (Contains(line, kMarker)) return true;
  }
  return false;
}

void AddLines(TextFile* file, RowBuffer& row) {
  std::string_view line;
  for (LineReader lines(file); lines.Next(line);) {
    row.Set(kLine, line);
    row.Commit();
  }
}

}  // namespace

void CollectTermLog(const RaidLogsCollection& collection) {
  auto file = RunStorcli(collection.log, collection.hostFolder, kTermLogReport);
  if (!file) return;
  RowBuffer row(collection.repo, kFwTermLog, "Controller 0 FW Term Log");
  if (ContainsMarker(file.get())) {
    file->Rewind();
    AddLines(file.get(), row);
  }
  file.reset();
}

void DescribeTermLog(ModuleDescription& module) {
  TableDescription table{.className = kFwTermLog,
                         .title = "LSI firmware term log",
                         .commands = {DescribeReport(kTermLogReport)},
                         .isLog = true};
  table.AddColumn(kLine);
  table.leavesOut = {LeaveOutOtherLsiControllers()};
  module.tables.push_back(table);
  module.versionLines.push_back({"storcli", kFwTermLog, kStorcliVersion});
}

}  // namespace pq
