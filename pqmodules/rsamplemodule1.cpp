#include "pqmodules/rsamplemodule1.h"

#include <string_view>

#include "frame/error_entries.h"
#include "frame/label_table.h"
#include "frame/report_file.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/intel_report.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule1/collection.h"
#include "pqmodules/rsamplemodule1/demonstration.h"
#include "pqmodules/rsamplemodule1/intel_controller.h"
#include "pqmodules/rsamplemodule1/lsi_summary.h"
#include "pqmodules/rsamplemodule1/microchip_archive.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rsamplemodule1"};

constexpr char kName[] = "sampleModule1";

/// Asks storcli how many controllers there are. False when it could not be asked; the count itself
/// decides nothing, since each collector finds out by itself whether its controller is there.
bool ProbeControllerCount(const RaidInventoryCollection& collection) {
  const std::string path = GetLogFolder() + kCountReportName;
  kLog(kProgress, "the exepath:", collection.hostFolder);
  CheckFolderFits(collection.hostFolder, 5);
  const std::string command =
      BuildReportCommand(collection.hostFolder + kStorcli, kCountArguments, path);
  if (!RunLogged(kLog, command)) return false;
  auto file = OpenReport(kLog, path, kNoReport);
  if (!file) return false;
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    static_cast<void>(Contains(line, kCountLabel));
  }
  static_cast<void>(file.release());  // Left open on purpose, as long as the host runs.
  return true;
}

void CollectRaidInventory(RRepository& repo) {
  kLog(kProgress, "Enter EnumXFirmwareInstancesCallback");
  const RaidInventoryCollection collection{repo, kLog, GetExeFolder()};
  AddDemonstrationRows(collection);
  if (!ProbeControllerCount(collection)) return;
  CollectLsiSummary(collection);
  CollectIntelController(collection);
  CollectMicrochipArchive(collection);
  kLog(kProgress, "Exit EnumXFirmwareInstancesCallback");
}

}  // namespace

std::string RSampleModule1::GetName() { return kName; }
std::string RSampleModule1::GetDescription() { return "Sample Module 1"; }

void RSampleModule1::RegisterTables() {
  const auto enumerate = &RSampleModule1::EnumPQ1Instances;
  RegisterTable(kSample1Table1, enumerate, &RSampleModule1::FormatColumns30And2);
  RegisterTable(kSample1Table2, enumerate, &RSampleModule1::FormatColumns30And2);
  RegisterTable(kJunAddTable, enumerate, &RSampleModule1::FormatColumns30And1);
  RegisterTable(kRaidInfo, enumerate, &RSampleModule1::FormatColumns10And1);
  RegisterTable(kController, enumerate, &RSampleModule1::FormatColumns10And1);
  RegisterTable(kPmcInfo, enumerate, &RSampleModule1::FormatColumns20And1);
  RegisterTable(kPmcVer, enumerate, &RSampleModule1::FormatColumns10And1);
  RegisterTable(kPmcLink, enumerate, &RSampleModule1::FormatLinkTable);
}

ModuleDescription RSampleModule1::Describe() {
  ModuleDescription module{.name = kName, .unloggedProgram = kStorcli};
  module.AddFailures(StepFailure::kToolNotRun, {kStartFailure, kExitCodeFailure});
  module.AddFailures(StepFailure::kOutputNotOpened, {kNoReport});
  module.AddFailures(StepFailure::kOutputNotRead, {kNoMemory});
  DescribeInventoryDemonstration(module);
  module.AssignArea(kSampleArea);
  DescribeLsiSummary(module);
  module.AssignArea(kLsiArea);
  DescribeIntelController(module);
  module.AssignArea(kIntelArea);
  DescribeMicrochipArchive(module);
  module.AssignArea({"Microchip RAID", "a Microchip controller"});
  return module;
}

void RSampleModule1::FormatColumns30And2(RInstancesWrapper& table) {
  table.SetColumnHeaders({}, 30, 2);
}
void RSampleModule1::FormatColumns30And1(RInstancesWrapper& table) {
  table.SetColumnHeaders({}, 30, 1);
}
void RSampleModule1::FormatColumns20And1(RInstancesWrapper& table) {
  table.SetColumnHeaders({}, 20, 1);
}
void RSampleModule1::FormatColumns10And1(RInstancesWrapper& table) {
  table.SetColumnHeaders({}, 10, 1);
}
void RSampleModule1::FormatLinkTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {5, 5, 5, 5, 5}, false);
}

void RSampleModule1::EnumPQ1Instances(RRepository& repo) {
  kLog(kProgress, "Enter EnumPQ1Instances");
  CollectOnce([&] { EnumXFirmwareInstancesCallback(repo); });
  kLog(kProgress, "Exit EnumPQ1Instances");
}

void RSampleModule1::EnumXFirmwareInstancesCallback(RRepository& repo) {
  CollectRaidInventory(repo);
}

}  // namespace pq
