#include "pqmodules/raid/intel_report.h"

#include "frame/report_file.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"

namespace pq {
namespace {

/// In the order in which they are tried.
constexpr const char* kTools[] = {
    "\\pq_tools\\rstcli64_5.exe",
    "\\utilities\\vroc\\IntelVROCCli.exe",
};

constexpr char kArguments[] = "-I";
constexpr char kReportName[] = "rstcli64.txt";

/// False when none of the tools ended well.
bool WriteReport(CallerLog log, const std::string& hostFolder, const std::string& path,
                 const IntelReportLog& style) {
  for (const char* tool : kTools) {
    const std::string command = BuildReportCommand(hostFolder + tool, kArguments, path);
    log(style.commandLevel, "rstcli raw path:", command);
    const ToolExit run = RunForExitCode(command);
    if (!run.started) {
      log(kDetail, kStartFailure, run.startError, ")");
      return false;
    }
    if (run.exitCodeError != 0) {
      if (style.exitCodeErrorNumber) {
        log(kDetail, kExitCodeFailure, run.exitCodeError);
      } else {
        log(kDetail, kExitCodeFailure);
      }
      return false;
    }
    log(kDetail, "rstcli64 -I command error level: ", run.exitCode);
    if (run.exitCode == 0) return true;
  }
  return false;
}

}  // namespace

std::unique_ptr<TextFile> RunIntelReport(CallerLog log, const std::string& hostFolder,
                                         const IntelReportLog& style) {
  const std::string path = GetLogFolder() + kReportName;
  if (!WriteReport(log, hostFolder, path, style)) return nullptr;
  if (style.reportPath) log(kDetail, "rstcli log path:", DoubleBackslashes(path));
  return OpenReport(log, path, kNoReport);
}

std::vector<ToolCommand> ListIntelCommands() {
  std::vector<ToolCommand> commands;
  for (const char* tool : kTools) commands.push_back({tool, kArguments, kReportName});
  return commands;
}

}  // namespace pq
