#include "pqmodules/raid/intel_report.h"

#include <cstdint>

#include "frame/report_file.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"

namespace pq {
namespace {

struct IntelTool {
  const char* program;
  const char* noController;  ///< the tool's own words
  const char* explanation;   ///< the same for people
  const char* product;
};
/// In the order in which they are tried.
constexpr IntelTool kTools[] = {
    {"\\pq_tools\\rstcli64_5.exe", "No Intel(R) RST controller was found",
     "rstcli64_5.exe finds no Intel RST controller", "Intel Rapid Storage Technology (RST)"},
    {"\\utilities\\vroc\\IntelVROCCli.exe", "No Intel(R) VROC controller was found",
     "IntelVROCCli.exe finds no Intel VROC controller", "Intel Virtual RAID on CPU (VROC)"},
};

constexpr char kArguments[] = "-I";
constexpr char kReportName[] = "rstcli64.txt";

/// False when none of the tools ended well.
bool WriteReport(CallerLog log, const std::string& hostFolder, const std::string& path,
                 const IntelReportLog& style) {
  for (const IntelTool& tool : kTools) {
    const std::string command = BuildReportCommand(hostFolder + tool.program, kArguments, path);
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

std::vector<ToolDescription> DescribeIntelTools() {
  std::vector<ToolDescription> tools;
  for (const IntelTool& tool : kTools) tools.push_back({tool.program, "Intel", tool.product});
  return tools;
}

std::vector<ToolCommand> ListIntelCommands() {
  std::vector<ToolCommand> commands;
  for (const IntelTool& tool : kTools) {
    commands.push_back({tool.program, kArguments, kReportName});
  }
  return commands;
}

void ExplainNoIntelController(ModuleDescription& module, const std::vector<std::string>& tables) {
  for (const IntelTool& tool : kTools) {
    // Named, as in reports.cpp.
    module.answers.push_back({ToolCommand{tool.program, kArguments, kReportName}, tool.noController,
                              "no such device", tool.explanation, tables});
  }
}

}  // namespace pq
