#include "pqmodules/rsamplemodule2.h"

#include <array>
#include <memory>

#include "frame/error_entries.h"
#include "frame/label_table.h"
#include "frame/report_file.h"
#include "frame/row_buffer.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/collection.h"
#include "pqmodules/rsamplemodule2/drive_details.h"
#include "pqmodules/rsamplemodule2/drive_lists.h"
#include "pqmodules/rsamplemodule2/event_log.h"
#include "pqmodules/rsamplemodule2/intel_devices.h"
#include "pqmodules/rsamplemodule2/log_links.h"
#include "pqmodules/rsamplemodule2/sas2ir_log.h"
#include "pqmodules/rsamplemodule2/term_log.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rsamplemodule2"};

constexpr int kReadingsSize = 6;  // Rows and columns.
const std::array<Column, kReadingsSize> kReadings{{
    {"item1", "Name"},
    {"item2", "Reading"},
    {"item3", "Status"},
    {"item4", "LCR"},
    {"item5", "LNR"},
    {"item6", "UCR"},
}};

const std::array<Column, 4> kFourColumns{{
    {"S2T2PRO1", "S2T2 PRO 1"},
    {"S2T2PRO2", "S2T2 PRO 2"},
    {"S2T2PRO3", "S2T2 PRO 3"},
    {"S2T2PRO4", "S2T2 PRO 4"},
}};

/// Fixed rows that show a host how a table of readings looks.
void AddSampleReadings(RRepository& repo) {
  for (int row = 0; row < kReadingsSize; ++row) {
    RInstance instance(kSample2Table1, "sample 2 - table 1", kInstanceNumber);
    int value = row;
    for (const Column& column : kReadings) {
      instance.AddProperty(column.key, column.label, value++, kPropertyFlag);
    }
    instance.AddToRepository(repo);
  }
}

/// A fixed row that shows a host how a table of texts looks; all four texts are the same.
void AddSampleTexts(RRepository& repo) {
  RowBuffer row(repo, kSample2Table2, "sample 2 - table 2");
  for (const Column& column : kFourColumns) row.Set(column, "VALUE1");
  row.Commit();
}

/// Asks storcli how many controllers there are; null when it cannot be asked. A report that cannot
/// be opened passes without a word: the log shows its path.
std::unique_ptr<TextFile> OpenCountReport(const std::string& hostFolder) {
  const std::string report = GetLogFolder() + kCountReportName;
  const std::string command = ReportCommand(hostFolder + kStorcli, kCountArguments, report);
  kLog(kDetail, "ctrlcout path:", command);
  if (!RunLogged(kLog, command)) return nullptr;
  const std::string path = DoubleBackslashes(report);
  kLog(kDetail, "ctrlcout path:", path);
  return Machine().OpenText(path);
}

/// The one character behind "Controller Count = ", as a number: 12 reads as 1, a letter as a number
/// beyond the digits. Without a count there is still controller 0 to look at.
int ReadControllerCount(TextFile* report) {
  int count = 1;
  std::string_view line;
  for (LineReader lines(report); lines.Next(line);) {
    const std::size_t label = line.find(kCountLabel);
    if (label == std::string_view::npos) continue;
    count = static_cast<signed char>(*TextFrom(line, label + kCountLabel.size() + 1)) - '0';
  }
  return count;
}

}  // namespace

RSampleModule2::~RSampleModule2() = default;

std::string RSampleModule2::GetName() { return "sampleModule2"; }
std::string RSampleModule2::GetDescription() { return "Sample Module 2"; }

void RSampleModule2::RegisterTables() {
  const auto enumerate = &RSampleModule2::EnumPQ2Instances;
  RegisterTable(kSample2Table1, enumerate, &RSampleModule2::FormatReadingsTable);
  RegisterTable(kSample2Table2, enumerate, &RSampleModule2::FormatFourColumnTable);
  for (const std::string& page : {kEventLog1, kEventLog2, kEventLog3, kEventLog4, kEventLog5}) {
    RegisterTable(page, enumerate, &RSampleModule2::FormatEventLogTable);
  }
  for (const std::string& name :
       {kFwTermLog, kPdList, kTInfo, kVInfo, kPInfo, kSas2IrLog, kEndDeviceInfo, kArray, kVolume}) {
    RegisterTable(name, enumerate, &RSampleModule2::FormatRowTable);
  }
  RegisterTable(kLsiLink, enumerate, &RSampleModule2::FormatLinkTable);
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
  CollectOnce(kLog, "EnumPQ2Instances", [&] { CollectData(repo); });
}

void RSampleModule2::CollectData(RRepository& repo) {
  kLog(kProgress, "Enter CollectData");
  AddSampleReadings(repo);
  AddSampleTexts(repo);

  const RaidLogsCollection collection{repo, kLog, GetExeFolder()};
  kLog(kProgress, "the exepath:", collection.hostFolder);
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

TableSources RSampleModule2::DescribeTables() {
  TableSources sources{{kSample2Table1, {}, {kReadings.begin(), kReadings.end()}},
                       {kSample2Table2, {}, {kFourColumns.begin(), kFourColumns.end()}}};
  const auto add = [&](TableSources more) {
    for (TableSource& source : more) sources.push_back(std::move(source));
  };
  add(DescribeEventLog());
  add({DescribeTermLog(), DescribeDriveDetails()});
  add(DescribeDriveLists());
  add({DescribeSas2IrLog()});
  add(DescribeIntelDevices());
  add({DescribeLogLinks()});
  return sources;
}

}  // namespace pq
