// The RAID logs module: one scenario on an adapter whose reports are linked, one on a controller
// that is not counted and has a log of events.

#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/fault_table.h"

namespace {

using test::Fault;
using test::FaultOutcome;
using test::FaultRow;
using test::StepKind;

using Steps = std::vector<std::string>;

constexpr char kStartFailure[] = "4 CreateProcess failed (5)";
constexpr char kOpenFailure[] = "4 Failed to open raid log file";
constexpr char kErrorLevel1[] = "4 rstcli64 -I command error level: 1";

std::string Tool(const std::string& program, const std::string& arguments,
                 const std::string& report) {
  return std::string("/c \"\"C:\\Halyard\\") + program + "\" " + arguments +
         " > \"C:\\Halyard\\logs\\" + report + "\"\"";
}
std::string Storcli(const std::string& arguments, const std::string& report) {
  return Tool("utilities\\lsi\\storcli.exe", arguments, report);
}

const std::string kCount = Storcli("show ctrlcount", "ctrlcount.txt");
const Steps kLinks{Storcli("/c0 show", "c0_showall.txt"),
                   Storcli("/c0 show events", "c0_raidevents.txt"),
                   Storcli("/c0 show termlog", "c0_fwtermlog.txt"),
                   Storcli("/c0/eall/sall show all", "c0_pdlist.txt")};
const std::string kEvents = Storcli("/c0 show events", "raidevents.txt");
const std::string kConverter = Tool("pq_tools\\eventslog_convert.exe",
                                    R"("C:\Halyard\logs\raidevents.txt")", "eventslog_convert.txt");
const std::string kTermLog = Storcli("/c0 show termlog", "fwtermlog.txt");
const std::string kDriveDetails = Storcli("/c0/eall/sall show all", "pdlist.txt");
const std::string kSummary = Storcli("/c0 show", "c0_showall.txt");
const std::string kUpload = R"("C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)";
const std::string kDecoder = Tool("pq_tools\\SAS2IR_windows_x64.exe", "logir.log", "ir.txt");
const std::string kRst = Tool("pq_tools\\rstcli64_5.exe", "-I", "rstcli64.txt");
const std::string kVroc = Tool("utilities\\vroc\\IntelVROCCli.exe", "-I", "rstcli64.txt");

const Steps kNone;
const Steps kBehindEvents{kTermLog, kDriveDetails, kSummary, kUpload, kDecoder, kRst};
const Steps kBehindEventsOnAdapter{kTermLog, kDriveDetails, kSummary, kUpload,
                                   kDecoder, kRst,          kVroc};

Steps Join(Steps first, const Steps& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const Steps kBehindLinks = Join({kEvents}, kBehindEventsOnAdapter);

/// Without the count nothing is collected; any answer without one means one controller.
FaultRow Count(const Steps& withOneController) {
  const FaultOutcome uncounted{{}, withOneController};
  return {kCount,
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}, kNone}},
           {Fault::kReportNotCreated, {{}, kNone}},
           {Fault::kToolMissing, uncounted},
           {Fault::kNothingPrinted, uncounted},
           {Fault::kBinaryPrinted, uncounted},
           {Fault::kHugePrinted, uncounted}},
          /*decides=*/true};
}

/// A missing report ends the links of its controller. Whatever a report says, the next one comes;
/// that each decides keeps the test from attaching more than one huge report at once.
FaultRow Link(std::size_t number, std::vector<std::string> openFailures) {
  const auto next = kLinks.begin() + static_cast<std::ptrdiff_t>(number) + 1;
  const FaultOutcome goesOn{{}, Join(Steps(next, kLinks.end()), kBehindLinks)};
  return {kLinks[number],
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}, kBehindLinks}},
           {Fault::kReportNotCreated, {std::move(openFailures), kBehindLinks}},
           {Fault::kToolMissing, goesOn},
           {Fault::kNothingPrinted, goesOn},
           {Fault::kBinaryPrinted, goesOn},
           {Fault::kHugePrinted, goesOn}},
          /*decides=*/true};
}

/// A dump without records is not converted.
FaultRow Events(const Steps& behind) {
  const FaultOutcome noRecords{{}, behind};
  return {kEvents,
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}, behind}},
           {Fault::kReportNotCreated, {{kOpenFailure}, behind}},
           {Fault::kToolMissing, noRecords},
           {Fault::kNothingPrinted, noRecords},
           {Fault::kBinaryPrinted, noRecords},
           {Fault::kHugePrinted, noRecords}},
          /*decides=*/true};
}

/// A step on which no other depends.
FaultRow Report(const std::string& commandLine, const std::string& openFailure = kOpenFailure) {
  return {commandLine,
          StepKind::kReport,
          {{Fault::kStartFails, {{kStartFailure}}}, {Fault::kReportNotCreated, {{openFailure}}}}};
}

FaultRow SharedReport(const std::string& commandLine) {
  FaultRow row = Report(commandLine);
  row.sharesReport = true;
  return row;
}

const FaultRow kConverterRow{
    kConverter, StepKind::kReport, {{Fault::kStartFails, {{kStartFailure}}}}};
const FaultRow kUploadRow{kUpload, StepKind::kSystem};
const FaultRow kDecoderRow = Report(kDecoder, "4 Failed to open ir log file");
const std::string kVrocTried = "4 rstcli raw path:" + kVroc;
constexpr char kNoExitCode[] = "4 GetExitCodeProcess() failed: ";

const test::FaultScenarioEntry kAdapter({
    .name = "RaidLogsOfAnAdapter",
    .module = "sampleModule2",
    .recording = [] { return host::LoadRecording(test::SamplesFolder() + "/hba-only"); },
    .rows = {Count(Join(kLinks, kBehindLinks)),
             // The drive lists come from the same file.
             Link(0, {"4 Failed to open file!", kOpenFailure}),
             Link(1, {"4 Failed to open event log file!"}),
             Link(2, {"4 Failed to open FWterm log file!"}),
             Link(3, {"4 Failed to open pdlist log file!"}),
             Events(kBehindEventsOnAdapter),
             Report(kTermLog),
             Report(kDriveDetails),
             SharedReport(kSummary),
             kUploadRow,
             kDecoderRow,
             {kRst,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}, kNone}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}, kNone}}}},
             {kVroc,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}}}}}},
    .tables = {"LSILINK"},
});

const test::FaultScenarioEntry kEventLog({
    .name = "RaidLogsOfAController",
    .module = "sampleModule2",
    .recording =
        [] {
          host::Recording recording =
              host::LoadRecording(test::SamplesFolder() + "/two-socket-server");
          for (host::RecordedCommand& command : recording.commands) {
            if (command.arguments == "show ctrlcount") {
              command.standardOutput = "Controller Count = 0\r\n";
            }
          }
          return recording;
        },
    .rows = {Count(Join(kLinks, Join({kEvents, kConverter}, kBehindEvents))),
             Events(kBehindEvents),
             kConverterRow,
             Report(kTermLog),
             Report(kDriveDetails),
             Report(kSummary),
             kUploadRow,
             kDecoderRow,
             {kRst,
              StepKind::kCheckedReport,
              {{Fault::kStartFails, {{kStartFailure}}},
               {Fault::kExitCodeUnreadable, {{kNoExitCode}}},
               {Fault::kReportNotCreated, {{kErrorLevel1, kVrocTried, kErrorLevel1}, Steps{kVroc}}},
               {Fault::kToolMissing, {{kErrorLevel1, kVrocTried, kErrorLevel1}, Steps{kVroc}}}}}},
    .tables = {"EVENTLOG1"},
});

}  // namespace
