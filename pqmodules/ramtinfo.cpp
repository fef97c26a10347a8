#include "pqmodules/ramtinfo.h"

#include "frame/error_entries.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/ramtinfo/amt_log.h"
#include "pqmodules/ramtinfo/collection.h"
#include "pqmodules/ramtinfo/detection.h"
#include "pqmodules/ramtinfo/tables.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/ramtinfo"};

constexpr char kName[] = "AMT_Info";

}  // namespace

std::string RAMTInfo::GetName() { return kName; }
std::string RAMTInfo::GetDescription() { return "AMT Log"; }

void RAMTInfo::RegisterTables() {
  RegisterTable(kAmtLog, &RAMTInfo::EnumAMTInstances, &RAMTInfo::FormatAMTLogTable);
}

ModuleDescription RAMTInfo::Describe() {
  ModuleDescription module{.name = kName};
  module.AddFailures(StepFailure::kToolNotRun, {kStartFailure});
  DescribeAmtDetection(module);
  DescribeAmtLog(module);
  module.AssignArea({"Intel AMT", "AMT"});
  return module;
}

void RAMTInfo::FormatAMTLogTable(RInstancesWrapper& table) { FormatRowTable(table); }

// AMT can be switched on while the host runs, so a machine without it is tested again each time.
void RAMTInfo::EnumAMTInstances(RRepository& repo) {
  kLog(kProgress, "Enter EnumAMTInstances");
  if (CheckAMT() == 0 && !collected) {
    kLog(kProgress, "Enter CollectData-AMT related info");
    CollectAMTData(repo);
    kLog(kProgress, "Exit CollectData-AMT related info");
    collected = true;
  }
  kLog(kProgress, "Exit EnumAMTInstances");
}

int RAMTInfo::CheckAMT() { return DetectAmt(kLog, GetExeFolder()) ? 0 : 1; }

int RAMTInfo::CollectAMTData(RRepository& repo) {
  return CollectAmtLog({repo, kLog, GetExeFolder()});
}

}  // namespace pq
