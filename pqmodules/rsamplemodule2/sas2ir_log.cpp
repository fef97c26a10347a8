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

namespace pq {
namespace {

constexpr char kUploadTool[] = "\\utilities\\lsi\\sas2ircu.exe";
constexpr char kUploadArguments[] = "0 logir upload";
constexpr char kUploadedLog[] = "logir.log";
constexpr char kDecoder[] = "\\pq_tools\\SAS2IR_windows_x64.exe";
constexpr char kDecodedName[] = "ir.txt";

// Only the time skips the blank behind its label; all other values keep it.
const LabelledColumns kFacts{
    {"Time:", 6, {"Time", "Time"}},
    {"LogSequence:", 12, {"LogSequence", "LogSequence"}},
    {"LogEntryQualifier:", 18, {"LogEntryQualifier", "LogEntryQualifier"}},
    {"LogEntryDescription:", 20, {"LogEntryDescription", "LogEntryDescription"}},
    {"LogEntryValue:", 14, {"LogEntryValue", "LogEntryValue"}},
    {"vf_id:", 6, {"vfid", "vf_id"}},
    {"vp_id:", 6, {"vpid", "vp_id"}},
    {"LogCode:", 8, {"LogCode", "LogCode"}},
    {"LogDataDescription:", 19, {"LogDataDescription", "LogDataDescription"}},
    {"LogDataValue:", 13, {"LogDataValue", "LogDataValue"}},
    {"LogClass:", 9, {"LogClass", "LogClass"}},
    {"ArgumentType:", 13, {"ArgumentType", "ArgumentType"}},
    {"Locale:", 7, {"Locale", "Locale"}, true},
};

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
  const std::string command = ReportCommand(collection.hostFolder + kDecoder, kUploadedLog, path);
  collection.log(kProgress, "irlog2 raw path:", command);
  if (!RunLogged(collection.log, command)) return nullptr;
  collection.log(kProgress, "3irlog raw path:", DoubleBackslashes(path));
  return OpenReport(collection.log, path, "Failed to open ir log file");
}

}  // namespace

void CollectSas2IrLog(const RaidLogsCollection& collection) {
  UploadLog(collection);
  const auto file = DecodeLog(collection);
  if (!file) return;
  RowBuffer row(collection.repo, kSas2IrLog, "LSI SAS2308 Log");
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) Fill(row, kFacts.FindIn(line));
}

TableSource DescribeSas2IrLog() {
  return {kSas2IrLog,
          {{kUploadTool, kUploadArguments, {}}, {kDecoder, kUploadedLog, kDecodedName}},
          ColumnsOf(kFacts)};
}

}  // namespace pq
