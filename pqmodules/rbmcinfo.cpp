#include "pqmodules/rbmcinfo.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "frame/error_entries.h"
#include "frame/logkit/log.h"
#include "frame/sentences.h"
#include "frame/tool_runner.h"
#include "pqmodules/rbmcinfo/collection.h"
#include "pqmodules/rbmcinfo/fru_sel.h"
#include "pqmodules/rbmcinfo/oem_queries.h"
#include "pqmodules/rbmcinfo/pipe_query.h"
#include "pqmodules/rbmcinfo/raw_dumps.h"
#include "pqmodules/rbmcinfo/sdr.h"
#include "pqmodules/rbmcinfo/sensors.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rbmcinfo"};

constexpr char kName[] = "BMC_Info";

// The folder of the host's executable, fetched by each collection, and the host's log folder,
// fetched by each enumeration: those of the collection on this thread. They must need no
// destructor: mingw's runtime frees a thread's variables before it destroys them.
thread_local char exePath[kCommandRoom];  // a longer one fits no command line
thread_local char logDir[kLogFolderRoom];

void CollectBmc(RRepository& repo) {
  kLog(kProgress, "Enter CollectData-BMC related info");
  std::snprintf(exePath, sizeof exePath, "%s", GetExeFolder().c_str());
  kLog(kProgress, "the exepath:", exePath);
  BmcCollection collection{repo, kLog, exePath};
  switch (DetectBmc(kLog, exePath)) {
    case BmcFamily::kGrantley:
      QueryOem(collection, kControllerQuery);
      QueryOem(collection, kSelfTestQuery);
      QueryOem(collection, kVersionQuery);
      QueryOem(collection, kPowerSupplyQuery);
      QueryOem(collection, kLanQuery);
      QueryOem(collection, kLedQuery);
      CollectSensorReadings(collection);
      CollectFru(collection);
      CollectSdr(collection);
      CollectSel(collection);
      DumpSelHex(kLog, exePath);
      DumpSensorIds(kLog, exePath);
      break;
    case BmcFamily::kMarl:  // No LEDs, and SDR before FRU.
      QueryOem(collection, kControllerQuery);
      QueryOem(collection, kSelfTestQuery);
      QueryOem(collection, kVersionQuery);
      QueryOem(collection, kPowerSupplyQuery);
      QueryOem(collection, kLanQuery);
      CollectSensorReadings(collection);
      CollectSdr(collection);
      CollectFru(collection);
      CollectSel(collection);
      DumpSelHex(kLog, exePath);
      DumpSensorIds(kLog, exePath);
      break;
    case BmcFamily::kZk140:
    case BmcFamily::kIvyBridge:
      QueryOem(collection, kControllerQuery);
      QueryOem(collection, kSelfTestQuery);
      QueryOem(collection, kLanQuery);
      kLog(kProgress, "Oru Debug after bmc info");
      CollectSensorReadings(collection);
      kLog(kProgress, "Oru Debug after sensor info");
      // These platforms are not asked for their SDR; the line marks where it would be.
      kLog(kProgress, "Oru Debug after sdr info");
      CollectFru(collection);
      kLog(kProgress, "Oru Debug after fru info");
      CollectSel(collection);
      kLog(kProgress, "Oru Debug after sel info");
      DumpSelHex(kLog, exePath);
      kLog(kProgress, "Oru Debug after selhex");
      DumpSensorIds(kLog, exePath);
      kLog(kProgress, "Oru Debug after sen_id");
      break;
    case BmcFamily::kNoBmc:
    case BmcFamily::kDetectionFailed:
      return;  // Without the exit line, which ends a collection only.
  }
  kLog(kProgress, "Exit CollectData-BMC related info");
}

/// The collection above does not ask `family` for these tables.
void ExplainLeftOut(ModuleDescription& module, BmcFamily family, std::vector<std::string> tables) {
  const std::string number = std::to_string(static_cast<std::uint32_t>(family));
  module.explanations.push_back({GetDetectionMessage(family), "not this platform family",
                                 "this platform family (" + number + ") is not asked for it",
                                 std::move(tables)});
}

/// The run of a single step.
BmcCollection MakeCollection(RRepository& repo) { return {repo, kLog, exePath}; }

}  // namespace

std::string RBMCInfo::GetName() { return kName; }
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

ModuleDescription RBMCInfo::Describe() {
  ModuleDescription module{.name = kName, .toolErrorText = kUtilityError};
  module.errorLines = {{"Error: "},
                       {"ipmiutil ", ", error "},
                       {"ipmiutil ", ", cannot open "},
                       {"Cannot open an IPMI driver"}};
  module.AddFailures(StepFailure::kToolNotRun, {kStartFailure});
  DescribeDetection(module);
  ExplainLeftOut(module, BmcFamily::kMarl, {kLedInfo});
  for (const BmcFamily family : {BmcFamily::kZk140, BmcFamily::kIvyBridge}) {
    ExplainLeftOut(module, family, {kVerInfo, kPsuInfo, kLedInfo, kSdrInfo});
  }
  DescribeOemQueries(module);
  // One utility answers all queries.
  module.unloggedProgram = module.tables.front().commands.front().program;
  module.tools.push_back({module.unloggedProgram, "the ipmiutil project", "ipmiutil"});
  DescribeSensorReadings(module);
  DescribeSdr(module);
  DescribeFruAndSel(module);
  DescribeRawDumps(module);
  module.AssignArea({"BMC", "a BMC"});
  return module;
}

void RBMCInfo::FormatInfoTable(RInstancesWrapper& table) { table.SetColumnHeaders({}, 30, 1); }

void RBMCInfo::FormatSensorTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {19, 9, 9, 9, 9, 9, 9, 9, 9, 9}, false);
}

void RBMCInfo::EnumBMCInstances(RRepository& repo) {
  kLog(kProgress, "Enter EnumBMCInstances");
  // At every call, also when nothing is collected any more.
  LogKit::GetLogDir(logDir, sizeof logDir);
  CollectOnce([&] { CollectData(repo); });
  kLog(kProgress, "Exit EnumBMCInstances");
}

void RBMCInfo::CollectData(RRepository& repo) { CollectBmc(repo); }

BmcFamily RBMCInfo::CheckBmc() { return DetectBmc(kLog, exePath); }

int RBMCInfo::QueryOem(RRepository& repo, int selector) {
  BmcCollection collection = MakeCollection(repo);
  return pq::QueryOem(collection, selector);
}

int RBMCInfo::CollectSensorReadings(RRepository& repo) {
  return pq::CollectSensorReadings(MakeCollection(repo));
}

int RBMCInfo::CollectSdr(RRepository& repo) { return pq::CollectSdr(MakeCollection(repo)); }
int RBMCInfo::CollectFru(RRepository& repo) { return pq::CollectFru(MakeCollection(repo)); }
int RBMCInfo::CollectSel(RRepository& repo) { return pq::CollectSel(MakeCollection(repo)); }
void RBMCInfo::DumpSelHex() { pq::DumpSelHex(kLog, exePath); }
void RBMCInfo::DumpSensorIds() { pq::DumpSensorIds(kLog, exePath); }

}  // namespace pq
