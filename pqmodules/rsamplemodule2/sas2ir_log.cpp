// sas2ircu uploads the adapter's binary log into the working folder; SAS2IR_windows_x64 prints it:
//
//   Time: 00:00:12.345
//   LogSequence: 41
//   ...
//   Locale: 0x0020

#include "pqmodules/rsamplemodule2/sas2ir_log.h"

#include "frame/labelled_columns.h"
#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

constexpr char kUploadTool[] = "\\utilities\\lsi\\sas2ircu.exe";
constexpr char kUploadArguments[] = "0 logir upload";
constexpr char kUploadedLog[] = "logir.log";
constexpr char kDecoder[] = "\\pq_tools\\SAS2IR_windows_x64.exe";
constexpr char kDecodedName[] = "ir.txt";

// Only the time skips the blank after its label; all other values keep it.
constexpr LabelledColumn kDeviceFactColumns[] = {
    {"Time:", 6, {"Time", "Time", "when it happened, since the adapter started"}},
    {"LogSequence:", 12, {"LogSequence", "LogSequence", "number of the entry", ValueKind::kNumber}},
    {"LogEntryQualifier:",
     18,
     {"LogEntryQualifier", "LogEntryQualifier", "what kind of entry it is, as a number",
      ValueKind::kNumber}},
    {"LogEntryDescription:",
     20,
     {"LogEntryDescription", "LogEntryDescription", "that kind in words"}},
    {"LogEntryValue:", 14, {"LogEntryValue", "LogEntryValue", "value that the entry carries"}},
    {"vf_id:", 6, {"vfid", "vf_id", "virtual function concerned, as a number", ValueKind::kNumber}},
    {"vp_id:", 6, {"vpid", "vp_id", "virtual port concerned, as a number", ValueKind::kNumber}},
    {"LogCode:", 8, {"LogCode", "LogCode", "what the firmware reports, in hexadecimal"}},
    {"LogDataDescription:",
     19,
     {"LogDataDescription", "LogDataDescription", "what the data of the entry are"}},
    {"LogDataValue:", 13, {"LogDataValue", "LogDataValue", "data of the entry"}},
    {"LogClass:", 9, {"LogClass", "LogClass", "how grave it is", ValueKind::kNumber}},
    {"ArgumentType:",
     13,
     {"ArgumentType", "ArgumentType", "what the entry is about, such as a drive",
      ValueKind::kNumber}},
    {"Locale:", 7, {"Locale", "Locale", "part of the adapter concerned, as bits"}, true},
};
const LabelledColumns kDeviceFacts(kDeviceFactColumns);

constexpr Sentence kNoLog = "Failed to open ir log file";

/// Leaves logir.log in the host's working folder; when that is read-only, there is nothing to
/// decode and nobody to tell.
void UploadLog(const RaidLogsCollection& collection) {
  const std::string command =
      "\"" + collection.hostFolder + kUploadTool + "\" " + kUploadArguments + " > " + kUploadedLog;
  collection.log(kProgress, "cmdline_sas raw path:", command);
  Machine().RunSystem(command);
}

std::unique_ptr<TextFile> DecodeLog(const RaidLogsCollection& collection) {
  const std::string path = GetLogFolder() + kDecodedName;
  const std::string command =
      BuildReportCommand(collection.hostFolder + kDecoder, kUploadedLog, path);
  collection.log(kProgress, "irlog2 raw path:", command);
  if (!RunLogged(collection.log, command)) return nullptr;
  collection.log(kProgress, "3irlog raw path:", DoubleBackslashes(path));
  return OpenReport(collection.log, path, kNoLog);
}

}  // namespace

void CollectSas2IrLog(const RaidLogsCollection& collection) {
  UploadLog(collection);
  auto file = DecodeLog(collection);
  if (!file) return;
  RowBuffer row(collection.repo, kSas2IrLog, "LSI SAS2308 Log");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) Fill(row, kDeviceFacts.FindIn(line));
  file.reset();
}

void DescribeSas2IrLog(ModuleDescription& module) {
  TableDescription table{
      .className = kSas2IrLog,
      .title = "LSI SAS2 controller log",
      .commands = {{kUploadTool, kUploadArguments, {}}, {kDecoder, kUploadedLog, kDecodedName}},
      .isLog = true};
  for (const LabelledColumn& fact : kDeviceFactColumns) table.AddColumn(fact.column);
  table.EndRowsAt(std::rbegin(kDeviceFactColumns)->label);
  table.leavesOut = {
      {.text = "Only controller 0 is read."},
      {.text = std::string("`") + kUploadedLog +
               "`, the log as the controller gave it, stays in the host's working folder.",
       .note = std::string(kUploadedLog) +
               ", the log as the controller gave it, stays in the host's working folder",
       .sign = OmissionSign::kToolRuns,
       .command = table.commands.front()}};
  module.tables.push_back(table);
  module.tools.push_back({kUploadTool, "Broadcom, formerly LSI", "SAS2IRCU"});
  module.tools.push_back({kDecoder, {}, {}});
  module.AddFailures(StepFailure::kOutputNotOpened, {kNoLog});
}

}  // namespace pq
