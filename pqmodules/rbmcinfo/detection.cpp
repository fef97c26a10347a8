#include "pqmodules/rbmcinfo/detection.h"

#include <algorithm>
#include <iterator>

#include "frame/sentences.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

/// The meaning of an exit code of the detection tool.
struct Detection {
  BmcFamily family;  ///< the exit code itself
  unsigned level;
  Sentence message;
};

constexpr Detection kDetections[] = {
    {BmcFamily::kDetectionFailed, kError, "check_amt_bmc bmc command meets error"},
    {BmcFamily::kGrantley, kProgress, "Grantley 2B3C or ZN720,has BMC, return 5"},
    {BmcFamily::kMarl, kProgress, "Marl(ZM310), has BMC, return 7"},
    {BmcFamily::kZk140, kProgress, "ZK140,ZP480 or ZW430E, has BMC, return 9"},
    {BmcFamily::kIvyBridge, kProgress, "IVB 2B3C,has BMC, return 11"},
};
constexpr Detection kNothingDetected = {BmcFamily::kNoBmc, kProgress, "has no BMC, return 4"};

/// The end of the tool's command line, after the host's folder.
constexpr char kCommandEnd[] = "\\pq_tools\\check_amt_bmc.exe\" bmc";

const Detection& FindDetection(BmcFamily family) {
  const auto* found = std::ranges::find(kDetections, family, &Detection::family);
  return found != std::end(kDetections) ? *found : kNothingDetected;
}

}  // namespace

BmcFamily DetectBmc(const ModuleLog& log, const std::string& hostFolder) {
  const std::string commandLine = "/c \"" + hostFolder + kCommandEnd;
  log(kProgress, "the final path:", commandLine);
  const ToolExit tool = RunForExitCode(commandLine);
  if (!tool.started) {
    log(kDetail, kStartFailure, tool.startError, ")");
    return BmcFamily::kDetectionFailed;
  }
  log(kDetail, "check_bmc function return:", tool.exitCode);
  const Detection& detection = FindDetection(BmcFamily{tool.exitCode});
  log(detection.level, detection.message);
  return detection.family;
}

const char* GetDetectionMessage(BmcFamily family) { return FindDetection(family).message; }

void DescribeDetection(ModuleDescription& module) {
  module.explanations.push_back(
      {kNothingDetected.message.text, "no such device", "this machine has no BMC"});
  module.explanations.push_back(
      {GetDetectionMessage(BmcFamily::kDetectionFailed), "tool reported an error",
       "the BMC could not be looked for: check_amt_bmc reported an error"});
  module.tools.push_back({ParseToolCommand(kCommandEnd).program, {}, {}});
  module.presenceTests.push_back({kCommandEnd, "a BMC"});
}

}  // namespace pq
