#include "pqmodules/rwininfo/raw_files.h"

#include <string_view>

#include "frame/platform.h"
#include "frame/report_file.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

constexpr char kSmbiosCommand[] = "/c \"\"";
constexpr char kSmbiosTool[] = "\\pq_tools\\getsmbios.exe\" >\"";
constexpr char kSmbiosFile[] = "smbios_info.txt\"\"";
constexpr Sentence kSmbiosFailure = "CreateProcess failed(";

void RunStep(const WindowsCollection& collection, const std::string& commandLine,
             const Sentence& failure) {
  RunLogged(collection.log, commandLine, {true, kProgress, failure});
}

}  // namespace

void WriteReport(const WindowsCollection& collection, const ReportStep& step) {
  RunStep(collection, step.command + GetLogFolder() + step.file + "\"", step.failure);
}

void CopyIfPresent(const WindowsCollection& collection, const CopyStep& step) {
  if (!Machine().PathExists(step.tested)) return;
  // The interpreter tolerates the quote that nothing closes.
  RunStep(
      collection,
      std::string("/c copy ") + step.source + " \"" + GetLogFolder() + step.file + "\" > nul \"",
      step.failure);
}

void WriteSmbiosDump(const WindowsCollection& collection) {
  CheckFolderFits(collection.hostFolder, std::string_view(kSmbiosCommand).size());
  RunStep(collection,
          kSmbiosCommand + collection.hostFolder + kSmbiosTool + GetLogFolder() + kSmbiosFile,
          kSmbiosFailure);
}

void DescribeRawFiles(ModuleDescription& module) {
  for (const ReportStep& step : {kRoute, kArp, kNetstat, kShares}) {
    module.AddFailures(StepFailure::kToolNotRun, {step.failure});
  }
  for (const CopyStep& step : {kHostsIcs, kHosts, kProtocol, kLmhosts}) {
    module.AddFailures(StepFailure::kToolNotRun, {step.failure});
  }
  module.AddFailures(StepFailure::kToolNotRun, {kSmbiosFailure});
  module.unloggedProgram = ParseToolCommand(kSmbiosTool).program;
  module.tools.push_back({module.unloggedProgram, {}, {}});
}

}  // namespace pq
