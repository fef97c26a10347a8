// The BMC module: the detection decides everything that follows; no other step depends on another.

#include "tests/support/bmc_machine.h"
#include "tests/support/fault_table.h"

namespace {

using test::Fault;
using test::FaultOutcome;
using test::FaultRow;
using test::StepKind;

const std::string kUtility = "\"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" ";
/// The second line of what the interpreter says when the utility is missing.
const std::string kNoProgram = "4 operable program or batch file.";
const FaultOutcome kNothingFollows = {.lines = {}, .after = std::vector<std::string>()};

/// Also when its tool is missing or mute, only its exit code counts.
FaultRow Detection() {
  FaultOutcome noStart = kNothingFollows;
  noStart.lines = {"4 CreateProcess failed (5)"};
  FaultOutcome noExitCode = kNothingFollows;
  noExitCode.lines = {"4 check_bmc function return:0", "3 has no BMC, return 4"};
  FaultOutcome noTool = kNothingFollows;
  noTool.lines = {"4 check_bmc function return:1", "3 has no BMC, return 4"};
  return {.commandLine = "/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" bmc",
          .kind = StepKind::kExitCode,
          .outcomes = {{Fault::kStartFails, noStart},
                       {Fault::kExitCodeUnreadable, noExitCode},
                       {Fault::kToolMissing, noTool}},
          .decides = true};
}

FaultRow Piped(const std::string& arguments, const std::string& startFailure,
               const std::string& pipeFailure, const std::string& missingTool) {
  return {.commandLine = "/c " + kUtility + arguments,
          .kind = StepKind::kPipe,
          .outcomes = {{Fault::kStartFails, {{startFailure}}},
                       {Fault::kPipeFails, {{pipeFailure}}},
                       {Fault::kToolMissing, {{missingTool}}},
                       {Fault::kNothingPrinted, {{"4 se:"}}}}};
}

FaultRow Oem(const std::string& arguments, const std::string& name) {
  return Piped(arguments, "4 CreateProcess failed (5)", "4 Failed to create pipe for " + name,
               kNoProgram + " ");
}

FaultRow ReadBack(const std::string& arguments, const std::string& file,
                  const std::string& openFailure) {
  return {.commandLine = "/c \"" + kUtility + arguments + ">\"C:\\Halyard\\logs\\" + file + "\"\"",
          .kind = StepKind::kReport,
          .outcomes = {{Fault::kStartFails, {{"4 CreateProcess failed (5)"}}},
                       {Fault::kReportNotCreated, {{openFailure}}}}};
}

FaultRow Dump(const std::string& arguments, const std::string& file) {
  return {.commandLine = "/c \"" + kUtility + arguments + " >\"C:\\Halyard\\logs\\" + file + "\"\"",
          .kind = StepKind::kReport,
          .outcomes = {{Fault::kStartFails, {{"3 CreateProcess failed(5)"}}}}};
}

const FaultRow kController = Oem("korvaxoem mc", "MC info");
/// Two lines that the self-test joins.
const FaultRow kSelfTest = Piped(
    "korvaxoem selftest", "4 CreateProcess failed (5)", "4 Failed to create pipe for PQM selftest",
    "4 \\Halyard\\pq_tools\\ipmiutilnh.exe' is not recognized as an internal or external "
    "command,  operable program or batch file. ");
const FaultRow kVersions = Oem("korvaxoem ver", "version info");
const FaultRow kPowerSupplies = Oem("korvaxoem psu", "PSU info");
const FaultRow kLan =
    Oem("lan | findstr Param | findstr /c:(3) /c:(5) /c:(6) /c:(12) /c:(13)", "LAN info");
const FaultRow kLeds = Oem("korvaxoem led", "LED info");
const FaultRow kSensors = Piped("sensor -s -q", "3 CreateProcess failed (5)",
                                "4 Failed to create pipe for sensor info", kNoProgram);
const FaultRow kSdr =
    Piped("sensor", "3 CreateProcess failed (5)", "4 Create Pipe failed", kNoProgram + " ");
const FaultRow kFru = ReadBack("korvaxoem fru", "fruinfo.txt", "4 Failed to open fru info file");
const FaultRow kSel = ReadBack("sel", "selinfo.txt", "4 Failed to open SEL log file");
const FaultRow kSelHex = Dump("sel -r", "SEL_Hex.txt");
const FaultRow kSensorIds = Dump("sensor", "sensor_with_id_string.txt");

const test::FaultScenarioEntry kFamily5({
    .name = "BmcFamily5",
    .module = "BMC_Info",
    .recording = [] { return test::MakeBmcMachine(5); },
    .rows = {Detection(), kController, kSelfTest, kVersions, kPowerSupplies, kLan, kLeds, kSensors,
             kFru, kSdr, kSel, kSelHex, kSensorIds},
});

const test::FaultScenarioEntry kFamily9({
    .name = "BmcFamily9",
    .module = "BMC_Info",
    .recording = [] { return test::MakeBmcMachine(9); },
    .rows = {Detection(), kController, kSelfTest, kLan, kSensors, kFru, kSel, kSelHex, kSensorIds},
});

}  // namespace
