#include "pqmodules/rbmcinfo.h"

#include <array>

#include "frame/error_entries.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rbmcinfo"};

const std::string kMcInfo = "MCINFO";
const std::string kSelfInfo = "SELFINFO";
const std::string kVerInfo = "VERINFO";
const std::string kLanInfo = "LANINFO";
const std::string kLedInfo = "LEDINFO";
const std::string kPsuInfo = "PSUINFO";
const std::string kSensorInfo = "SENSORINFO";
const std::string kFruInfo = "FRUINFO";
const std::string kSdrInfo = "SDRINFO";
const std::string kSelInfo = "SELINFO";

std::string logDir;

}  // namespace

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
  kLog(kProgress, "Enter EnumBMCInstances");
  logDir = GetLogFolder();  // At every call, also when nothing is collected any more.
  if (!collected) CollectData(repo);
  collected = true;
  kLog(kProgress, "Exit EnumBMCInstances");
}

// Collects nothing yet.
void RBMCInfo::CollectData(RRepository& /*repo*/) {}

}  // namespace pq
