#include "pqmodules/ramtinfo.h"

#include "frame/error_entries.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/ramtinfo"};

const std::string kAmtLog = "AMTLOG";

}  // namespace

std::string RAMTInfo::GetName() { return "AMT_Info"; }
std::string RAMTInfo::GetDescription() { return "AMT Log"; }

void RAMTInfo::RegisterTables() {
  RegisterTable(kAmtLog, &RAMTInfo::EnumAMTInstances, &RAMTInfo::FormatAMTLogTable);
}

void RAMTInfo::FormatAMTLogTable(RInstancesWrapper& table) { FormatRowTable(table); }

// Tests for and collects nothing yet.
void RAMTInfo::EnumAMTInstances(RRepository& /*repo*/) {
  kLog(kProgress, "Enter EnumAMTInstances");
  kLog(kProgress, "Exit EnumAMTInstances");
}

}  // namespace pq
