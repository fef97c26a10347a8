#include "pqmodules/raid/intel_report.h"

#include <cstdint>

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
    const Acquired<Process> run = StartTool(command, /*inheritHandles=*/false);
    if (!run) {
      log(kDetail, kStartFailure, run.error, ")");
      return false;
    }
    run.object->Wait();
    // The process is closed once its exit code has been logged.
    std::uint32_t exitCode = 0;
    if (const std::uint32_t error = run.object->ReadExitCode(exitCode); error != 0) {
      if (style.exitCodeErrorNumber) {
        log(kDetail, kExitCodeFailure, error);
      } else {
        log(kDetail, kExitCodeFailure);
      }
      return false;
    }
    log(kDetail, "rstcli64 -I command error level: ", exitCode);
    if (exitCode == 0) return true;
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
