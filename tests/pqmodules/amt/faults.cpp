// The AMT module: the presence test decides whether the operator is asked and the log tool runs.

#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/fault_table.h"

namespace {

using test::Fault;
using test::FaultOutcome;
using test::FaultRow;
using test::StepKind;

constexpr char kPresenceTest[] = "/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt";
const std::vector<std::string> kNoStep;

const test::FaultScenarioEntry kDesktop({
    .name = "AmtFound",
    .module = "AMT_Info",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/amt-desktop"); },
    .rows = {{kPresenceTest,
              StepKind::kExitCode,
              {{Fault::kStartFails, {{"4 CreateProcess failed (5)"}, kNoStep}},
               {Fault::kExitCodeUnreadable,
                {{"3 check_amt function return:0", "3 Has no AMT, return 1"}, kNoStep}}}},
             {"/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.40 deskadmin "
              "Lantern-52>\"C:\\Halyard\\logs\\amtlog.txt\"\"",
              StepKind::kReport,
              {{Fault::kStartFails, {{"4 CreateProcess failed (5)"}}},
               {Fault::kReportNotCreated, {{"4 Failed to open AMT log file"}}}}}},
});

// The interpreter's own exit code for a missing program is the one that means AMT; nobody answers
// the prompt here.
const test::FaultScenarioEntry kServer({
    .name = "AmtAbsent",
    .module = "AMT_Info",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/two-socket-server"); },
    .rows = {{kPresenceTest,
              StepKind::kExitCode,
              {{Fault::kStartFails, {{"4 CreateProcess failed (5)"}}},
               {Fault::kToolMissing,
                {{"3 Has AMT, return 0", "3 AMT module, no parameter inputed!"}}}}}},
});

}  // namespace
