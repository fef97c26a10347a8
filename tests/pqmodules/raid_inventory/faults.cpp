// The RAID inventory module: one scenario where Intel RST answers and an archive lies there, one
// where VROC answers in RST's place and no archive was ever written.

#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/fault_table.h"

namespace {

using test::Fault;
using test::FaultRow;
using test::StepKind;

constexpr char kStartFailure[] = "4 CreateProcess failed (5)";
constexpr char kOpenFailure[] = "4 Failed to open raid log file";
constexpr char kErrorLevel1[] = "4 rstcli64 -I command error level: 1";

constexpr char kCount[] =
    "/c \"\"C:\\Halyard\\utilities\\lsi\\storcli.exe\" show ctrlcount > "
    "\"C:\\Halyard\\logs\\ctrlcount.txt\"\"";
constexpr char kSummary[] =
    "/c \"\"C:\\Halyard\\utilities\\lsi\\storcli.exe\" /c0 show > "
    "\"C:\\Halyard\\logs\\c0_showall.txt\"\"";
constexpr char kRst[] =
    "/c \"\"C:\\Halyard\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\Halyard\\logs\\rstcli64.txt\"\"";
constexpr char kVroc[] =
    "/c \"\"C:\\Halyard\\utilities\\vroc\\IntelVROCCli.exe\" -I > "
    "\"C:\\Halyard\\logs\\rstcli64.txt\"\"";
constexpr char kArcconf[] =
    "/c \"C:\\Halyard\\utilities\\arcconf\\arcconf.exe savesupportarchive c:\\\"";
constexpr char kMakeFolder[] = "/c \"md \"C:\\Halyard\\logs\\Firmware\"\"";
constexpr char kCopy[] = "/c \"copy \"c:\\Support\\Firmware\" \"C:\\Halyard\\logs\\Firmware\"\"";

const std::vector<std::string> kNone;

/// A step that decides by its two failures only whether any other runs.
FaultRow Count(const std::vector<std::string>& rest) {
  return {kCount,
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}, kNone, -1}},
           {Fault::kReportNotCreated, {{kOpenFailure}, kNone, -1}},
           {Fault::kToolMissing, {{}, rest}},
           {Fault::kNothingPrinted, {{}, rest}},
           {Fault::kBinaryPrinted, {{}, rest}},
           {Fault::kHugePrinted, {{}, rest}}},
          /*decides=*/true};
}

FaultRow Summary() {
  return {kSummary,
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}}}, {Fault::kReportNotCreated, {{kOpenFailure}}}}};
}

/// A step without which the archive is not read.
FaultRow ArchiveStep(const char* commandLine, StepKind kind) {
  return {commandLine, kind, {{Fault::kStartFails, {{kStartFailure}, kNone}}}};
}

const std::string kVrocTried = std::string("3 rstcli raw path:") + kVroc;
constexpr char kNoExitCode[] = "4 GetExitCodeProcess() failed: 6";

const std::vector<std::string> kVrocAndBehind{kVroc, kArcconf, kMakeFolder, kCopy};

const test::FaultScenarioEntry kAllControllers({
    .name = "RaidInventory",
    .module = "sampleModule1",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/two-socket-server"); },
    .rows = {Count({kSummary, kRst, kArcconf, kMakeFolder, kCopy}),
             Summary(),
             {kRst,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}}},
               {Fault::kReportNotCreated,
                {{kErrorLevel1, kVrocTried, kErrorLevel1}, kVrocAndBehind}},
               {Fault::kToolMissing, {{kErrorLevel1, kVrocTried, kErrorLevel1}, kVrocAndBehind}}}},
             ArchiveStep(kArcconf, StepKind::kOther),
             ArchiveStep(kMakeFolder, StepKind::kOther),
             ArchiveStep(kCopy, StepKind::kCopy)},
    .tables = {"RAIDINFO"},
    .leftOpen = 1,
});

const test::FaultScenarioEntry kVrocOnly({
    .name = "RaidInventoryWithVroc",
    .module = "sampleModule1",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/vroc"); },
    .rows = {Count({kSummary, kRst, kVroc, kArcconf, kMakeFolder}),
             Summary(),
             {kRst,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}, {{kArcconf, kMakeFolder}}}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}, {{kArcconf, kMakeFolder}}}},
               {Fault::kReportNotCreated, {{kErrorLevel1, kErrorLevel1}}},
               {Fault::kToolMissing, {{kErrorLevel1}}}}},
             {kVroc,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}}},
               {Fault::kReportNotCreated, {{kErrorLevel1, kErrorLevel1}}},
               {Fault::kToolMissing, {{kErrorLevel1}}}}},
             ArchiveStep(kArcconf, StepKind::kOther),
             ArchiveStep(kMakeFolder, StepKind::kOther)},
    .tables = {"RAIDINFO"},
    .leftOpen = 1,
});

}  // namespace
