#include "pqmodules/rbmcinfo.h"

#include <algorithm>
#include <iterator>

#include "frame/error_entries.h"
#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

/// Selectors of the pipe queries, by what they ask for.
enum OemSelector { kController = 1, kSelfTest, kVersions, kPowerSupplies, kLan, kLeds };

/// What an exit code of the detection tool means.
struct Detection {
  BmcFamily family;  ///< the exit code itself
  unsigned level;
  const char* message;
};

constexpr Detection kDetections[] = {
    {BmcFamily::kDetectionFailed, kError, "check_amt_bmc bmc command meets error"},
    {BmcFamily::kGrantley, kProgress, "Grantley 2B3C or ZN720,has BMC, return 5"},
    {BmcFamily::kMarl, kProgress, "Marl(ZM310), has BMC, return 7"},
    {BmcFamily::kZk140, kProgress, "ZK140,ZP480 or ZW430E, has BMC, return 9"},
    {BmcFamily::kIvyBridge, kProgress, "IVB 2B3C,has BMC, return 11"},
};
constexpr Detection kNothingDetected = {BmcFamily::kNoBmc, kProgress, "has no BMC, return 4"};

const Detection& FindDetection(std::uint32_t exitCode) {
  const auto* found = std::ranges::find(kDetections, BmcFamily{exitCode}, &Detection::family);
  return found != std::end(kDetections) ? *found : kNothingDetected;
}

}  // namespace

std::string RBMCInfo::exePath;
std::string RBMCInfo::logDir;

std::string RBMCInfo::GetName() { return "BMC_Info"; }
std::string RBMCInfo::GetDescription() { return "BMC information"; }

void RBMCInfo::RegisterTables() {
  RegisterTable(kMcInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatInfoTable);
  RegisterTable(kSelfInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatInfoTable);
  RegisterTable(kVerInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatInfoTable);
  RegisterTable(kLanInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatInfoTable);
  RegisterTable(kLedInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatRowTable);
  RegisterTable(kPsuInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatRowTable);
  RegisterTable(kSensorInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatSensorTable);
  RegisterTable(kFruInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatRowTable);
  RegisterTable(kSdrInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatRowTable);
  RegisterTable(kSelInfo, &RBMCInfo::EnumBMCInstances, &RBMCInfo::FormatRowTable);
}

void RBMCInfo::FormatInfoTable(RInstancesWrapper& table) { table.SetColumnHeaders({}, 30, 1); }

void RBMCInfo::FormatSensorTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {19, 9, 9, 9, 9, 9, 9, 9, 9, 9}, false);
}

void RBMCInfo::EnumBMCInstances(RRepository& repo) {
  kBmcLog(kProgress, "Enter EnumBMCInstances");
  logDir = GetLogFolder();  // At every call, also when nothing is collected any more.
  if (!collected) CollectData(repo);
  collected = true;
  kBmcLog(kProgress, "Exit EnumBMCInstances");
}

void RBMCInfo::CollectData(RRepository& repo) {
  kBmcLog(kProgress, "Enter CollectData-BMC related info");
  exePath = GetExeFolder();
  kBmcLog(kProgress, "the exepath:", exePath);
  switch (CheckBmc()) {
    case BmcFamily::kGrantley:
      QueryOem(repo, kController);
      QueryOem(repo, kSelfTest);
      QueryOem(repo, kVersions);
      QueryOem(repo, kPowerSupplies);
      QueryOem(repo, kLan);
      QueryOem(repo, kLeds);
      CollectSensorReadings(repo);
      CollectFru(repo);
      CollectSdr(repo);
      CollectSel(repo);
      DumpSelHex();
      DumpSensorIds();
      break;
    case BmcFamily::kMarl:  // No LEDs, and SDR before FRU.
      QueryOem(repo, kController);
      QueryOem(repo, kSelfTest);
      QueryOem(repo, kVersions);
      QueryOem(repo, kPowerSupplies);
      QueryOem(repo, kLan);
      CollectSensorReadings(repo);
      CollectSdr(repo);
      CollectFru(repo);
      CollectSel(repo);
      DumpSelHex();
      DumpSensorIds();
      break;
    case BmcFamily::kZk140:
    case BmcFamily::kIvyBridge:
      QueryOem(repo, kController);
      QueryOem(repo, kSelfTest);
      QueryOem(repo, kLan);
      kBmcLog(kProgress, "Oru Debug after bmc info");
      CollectSensorReadings(repo);
      kBmcLog(kProgress, "Oru Debug after sensor info");
      // These platforms are not asked for their SDR; the line marks where it would be.
      kBmcLog(kProgress, "Oru Debug after sdr info");
      CollectFru(repo);
      kBmcLog(kProgress, "Oru Debug after fru info");
      CollectSel(repo);
      kBmcLog(kProgress, "Oru Debug after sel info");
      DumpSelHex();
      kBmcLog(kProgress, "Oru Debug after selhex");
      DumpSensorIds();
      kBmcLog(kProgress, "Oru Debug after sen_id");
      break;
    case BmcFamily::kNoBmc:
    case BmcFamily::kDetectionFailed:
      return;  // Without the exit line: it stands for a collection.
  }
  kBmcLog(kProgress, "Exit CollectData-BMC related info");
}

BmcFamily RBMCInfo::CheckBmc() {
  const std::string commandLine = "/c \"" + exePath + "\\pq_tools\\check_amt_bmc.exe\" bmc";
  kBmcLog(kProgress, "the final path:", commandLine);
  const ToolExit tool = RunForExitCode(commandLine);
  if (!tool.started) {
    kBmcLog(kDetail, kStartFailure, tool.startError, ")");
    return BmcFamily::kDetectionFailed;
  }
  kBmcLog(kDetail, "check_bmc function return:", tool.exitCode);
  const Detection& detection = FindDetection(tool.exitCode);
  kBmcLog(detection.level, detection.message);
  return detection.family;
}

TableSources RBMCInfo::DescribeTables() {
  TableSources sources = DescribeOemTables();
  sources.push_back(DescribeSensors());
  sources.push_back(DescribeSdr());
  for (TableSource& source : DescribeFiles()) sources.push_back(std::move(source));
  return sources;
}

}  // namespace pq
