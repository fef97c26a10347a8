#include "pqmodules/ramtinfo/detection.h"

#include <cstdint>
#include <string_view>

#include "frame/sentences.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

constexpr std::string_view kCommandBegin = "/c \"";
/// The end of the tool's command line, after the host's folder.
constexpr char kCommandEnd[] = "\\pq_tools\\check_amt_bmc.exe\" amt";

/// The tool's exit code on a machine that has AMT: not the usual 0.
constexpr std::uint32_t kAmtPresent = 1;

constexpr Sentence kNoAmt = "Has no AMT, return 1";

}  // namespace

bool DetectAmt(const ModuleLog& log, const std::string& hostFolder) {
  GetLogFolder();  // The test writes no file, but the host is asked in every step alike.
  CheckFolderFits(hostFolder, kCommandBegin.size());
  const ToolExit test = RunForExitCode(std::string(kCommandBegin) + hostFolder + kCommandEnd);
  if (!test.started) {
    log(kDetail, kStartFailure, test.startError, ")");
    return false;
  }
  log(kProgress, "check_amt function return:", test.exitCode);
  if (test.exitCode != kAmtPresent) {
    log(kProgress, kNoAmt);
    return false;
  }
  log(kProgress, "Has AMT, return 0");
  return true;
}

void DescribeAmtDetection(ModuleDescription& module) {
  module.explanations.push_back({kNoAmt.text, "no such device", "this machine has no AMT"});
  module.tools.push_back({ParseToolCommand(kCommandEnd).program, {}, {}});
  module.presenceTests.push_back({kCommandEnd, "AMT"});
}

}  // namespace pq
