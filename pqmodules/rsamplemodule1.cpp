#include "pqmodules/rsamplemodule1.h"

#include <array>
#include <string_view>

#include "frame/error_entries.h"
#include "frame/label_table.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule1/intel_controller.h"
#include "pqmodules/rsamplemodule1/lsi_summary.h"
#include "pqmodules/rsamplemodule1/microchip_archive.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

constexpr const ModuleLog& kLog = kInventoryLog;

// Two tables that show hosts what a module's rows look like. The two rows of the first share one
// key.
struct DemonstrationRow {
  const std::string& className;
  const char* key;
  const char* value;  ///< of each of its properties
  std::array<Column, 4> columns;
};

const std::array<Column, 4> kColumns1{{{"S1T1PRO1", "S1T1 PRO 1"},
                                       {"S1T1PRO2", "S1T1 PRO 2"},
                                       {"S1T1PRO3", "S1T1 PRO 3"},
                                       {"S1T1PRO4", "S1T1 PRO 4"}}};
const std::array<Column, 4> kColumns2{{{"S1T2PRO1", "S1T2 PRO 1"},
                                       {"S1T2PRO2", "S1T2 PRO 2"},
                                       {"S1T2PRO3", "S1T2 PRO 3"},
                                       {"S1T2PRO4", "S1T2 PRO 4"}}};
const DemonstrationRow kDemonstrationRows[] = {
    {kSample1Table1, "sample 1 - table 1", "VALUE1", kColumns1},
    {kSample1Table1, "sample 1 - table 1", "VALUE2", kColumns1},
    {kSample1Table2, "sample 1 - table 2", "VALUE1", kColumns2},
};

// Reserved for the rows of kJunAddTable, which has none so far.
[[maybe_unused]] constexpr const char* kJunAddNames[] = {"junadd1", "junadd2", "junadd3",
                                                         "junadd4"};

void AddDemonstrationRows(RRepository& repo) {
  for (const DemonstrationRow& demonstration : kDemonstrationRows) {
    RowBuffer row(repo, demonstration.className, demonstration.key);
    for (const Column& column : demonstration.columns) row.Set(column, demonstration.value);
    row.Commit();
  }
}

/// Asks storcli how many controllers there are. False when it could not be asked; the count itself
/// decides nothing, since each collector finds out by itself whether its controller is there.
bool ProbeControllerCount() {
  const std::string path = GetLogFolder() + kCountReportName;
  const std::string folder = GetExeFolder();
  kLog(kProgress, "the exepath:", folder);
  CheckFolderFits(folder, 5);
  if (!RunLogged(kLog, ReportCommand(folder + kStorcli, kCountArguments, path))) return false;
  auto file = OpenReport(kLog, path, kNoReport);
  if (!file) return false;
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) {
    static_cast<void>(Holds(line, kCountLabel));
  }
  static_cast<void>(file.release());  // Left open on purpose, as long as the host runs.
  return true;
}

}  // namespace

std::string RSampleModule1::GetName() { return "sampleModule1"; }
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
  CollectOnce(kLog, "EnumPQ1Instances", [&] { EnumXFirmwareInstancesCallback(repo); });
}

void RSampleModule1::EnumXFirmwareInstancesCallback(RRepository& repo) {
  kLog(kProgress, "Enter EnumXFirmwareInstancesCallback");
  AddDemonstrationRows(repo);
  if (!ProbeControllerCount()) return;
  CollectLsiSummary(repo);
  CollectIntelController(repo);
  CollectMicrochipArchive(repo);
  kLog(kProgress, "Exit EnumXFirmwareInstancesCallback");
}

TableSources RSampleModule1::DescribeTables() {
  TableSources sources{{kSample1Table1, {}, {kColumns1.begin(), kColumns1.end()}},
                       {kSample1Table2, {}, {kColumns2.begin(), kColumns2.end()}},
                       {kJunAddTable, {}, {}},
                       DescribeLsiSummary(),
                       DescribeIntelController()};
  for (TableSource& source : DescribeMicrochipArchive()) sources.push_back(std::move(source));
  return sources;
}

}  // namespace pq
