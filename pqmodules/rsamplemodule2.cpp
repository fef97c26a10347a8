#include "pqmodules/rsamplemodule2.h"

#include <memory>
#include <string_view>

#include "frame/error_entries.h"
#include "frame/label_table.h"
#include "frame/report_file.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/intel_report.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/collection.h"
#include "pqmodules/rsamplemodule2/demonstration.h"
#include "pqmodules/rsamplemodule2/drive_details.h"
#include "pqmodules/rsamplemodule2/drive_lists.h"
#include "pqmodules/rsamplemodule2/event_log.h"
#include "pqmodules/rsamplemodule2/intel_devices.h"
#include "pqmodules/rsamplemodule2/log_links.h"
#include "pqmodules/rsamplemodule2/sas2ir_log.h"
#include "pqmodules/rsamplemodule2/tables.h"
#include "pqmodules/rsamplemodule2/term_log.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rsamplemodule2"};

constexpr char kName[] = "sampleModule2";

/// Asks storcli how many controllers there are; null when it cannot be asked. A report that cannot
/// be opened passes without a word: the log shows its path.
std::unique_ptr<TextFile> OpenCountReport(const std::string& hostFolder) {
  const std::string report = GetLogFolder() + kCountReportName;
  kLog(kProgress, "the exepath:", hostFolder);
  const std::string command = BuildReportCommand(hostFolder + kStorcli, kCountArguments, report);
  kLog(kDetail, "ctrlcout path:", command);
  if (!RunLogged(kLog, command)) return nullptr;
  const std::string path = DoubleBackslashes(report);
  kLog(kDetail, "ctrlcout path:", path);
  return Machine().OpenText(path);
}

/// The one character after "Controller Count = ", as a number: 12 reads as 1, a letter as a number
/// beyond the digits. Without a count there is still controller 0 to look at.
int ReadControllerCount(TextFile* report) {
  int count = 1;
  std::string_view line;
  for (LineReader lines(report); lines.Next(line);) {
    const std::size_t label = line.find(kCountLabel);
    if (label == std::string_view::npos) continue;
    count = static_cast<signed char>(*GetTextFrom(line, label + kCountLabel.size() + 1)) - '0';
  }
  return count;
}

void CollectRaidLogs(RRepository& repo) {
  kLog(kProgress, "Enter CollectData");
  RaidLogsCollection collection{repo, kLog, GetExeFolder()};
  AddDemonstrationRows(collection);
  auto countReport = OpenCountReport(collection.hostFolder);
  if (!countReport) return;
  const int count = ReadControllerCount(countReport.get());
  for (int controller = 0; controller < count; ++controller) {
    CollectLogLinks(collection, controller);
  }

  CollectEventLog(collection);
  CollectTermLog(collection);
  CollectDriveDetails(collection);
  CollectDriveLists(collection);
  CollectSas2IrLog(collection);
  CollectIntelDevices(collection);
  countReport.reset();
  kLog(kProgress, "Exit CollectData");
}

}  // namespace

RSampleModule2::~RSampleModule2() = default;

std::string RSampleModule2::GetName() { return kName; }
std::string RSampleModule2::GetDescription() { return "Sample Module 2"; }

void RSampleModule2::RegisterTables() {
  const auto enumerate = &RSampleModule2::EnumPQ2Instances;
  RegisterTable(kSample2Table1, enumerate, &RSampleModule2::FormatReadingsTable);
  RegisterTable(kSample2Table2, enumerate, &RSampleModule2::FormatFourColumnTable);
  for (const char* page : {kEventLog1, kEventLog2, kEventLog3, kEventLog4, kEventLog5}) {
    RegisterTable(page, enumerate, &RSampleModule2::FormatEventLogTable);
  }
  for (const char* name :
       {kFwTermLog, kPdList, kTInfo, kVInfo, kPInfo, kSas2IrLog, kEndDeviceInfo, kArray, kVolume}) {
    RegisterTable(name, enumerate, &RSampleModule2::FormatRowTable);
  }
  RegisterTable(kLsiLink, enumerate, &RSampleModule2::FormatLinkTable);
}

ModuleDescription RSampleModule2::Describe() {
  ModuleDescription module{.name = kName, .unloggedProgram = kStorcli};
  module.AddFailures(StepFailure::kToolNotRun, {kStartFailure, kExitCodeFailure});
  module.AddFailures(StepFailure::kOutputNotOpened, {kNoReport});
  module.AddFailures(StepFailure::kOutputNotRead, {kNoMemory});
  DescribeLogsDemonstration(module);
  module.AssignArea(kSampleArea);
  DescribeEventLog(module);
  DescribeTermLog(module);
  DescribeDriveDetails(module);
  DescribeDriveLists(module);
  module.tools.push_back(DescribeStorcli());
  module.AssignArea(kLsiArea);
  DescribeSas2IrLog(module);
  module.AssignArea({"LSI SAS2", "an LSI SAS2 adapter"});
  DescribeIntelDevices(module);
  module.AssignArea(kIntelArea);
  DescribeLogLinks(module);
  module.AssignArea(kLsiArea);
  module.reasonLines.push_back(DescribeStorcliReason());
  module.answers.push_back(
      ExplainNoLsiController({kLsiLink, kEventLog1, kEventLog2, kEventLog3, kEventLog4, kEventLog5,
                              kFwTermLog, kPdList, kTInfo, kVInfo, kPInfo}));
  return module;
}

void RSampleModule2::FormatReadingsTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {20, 16, 16, 16, 16, 16}, false);
}
void RSampleModule2::FormatFourColumnTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {20, 30, 30, 20}, false);
}
void RSampleModule2::FormatEventLogTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {4, 5, 5, 4, 4, 12, 12}, false);
}
void RSampleModule2::FormatLinkTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {2, 5, 5, 5, 5}, false);
}

void RSampleModule2::EnumPQ2Instances(RRepository& repo) {
  kLog(kProgress, "Enter EnumPQ2Instances");
  CollectOnce([&] { CollectData(repo); });
  kLog(kProgress, "Exit EnumPQ2Instances");
}

void RSampleModule2::CollectData(RRepository& repo) { CollectRaidLogs(repo); }

}  // namespace pq
