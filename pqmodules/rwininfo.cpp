#include "pqmodules/rwininfo.h"

#include "frame/error_entries.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rwininfo"};

const std::string kArpInfo = "ARPINFO";
const std::string kNetstatInfo = "NETSTATINFO";

}  // namespace

std::string RWINInfo::GetName() { return "Windows_Related_Info"; }
std::string RWINInfo::GetDescription() { return "Windows related information"; }

void RWINInfo::RegisterTables() {
  RegisterTable(kArpInfo, &RWINInfo::EnumWINInstances, &RWINInfo::FormatARPTable);
  RegisterTable(kNetstatInfo, &RWINInfo::EnumWINInstances, &RWINInfo::FormatNetstatTable);
}

void RWINInfo::FormatARPTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {40, 40, 20}, false);
}

void RWINInfo::FormatNetstatTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {10, 30, 30, 30}, false);
}

void RWINInfo::EnumWINInstances(RRepository& repo) {
  CollectOnce(kLog, "EnumWINInstances", [&] { CollectData(repo); });
}

// Collects nothing yet.
void RWINInfo::CollectData(RRepository& /*repo*/) {}

}  // namespace pq
