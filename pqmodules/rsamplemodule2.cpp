#include "pqmodules/rsamplemodule2.h"

#include "frame/error_entries.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rsamplemodule2"};

const std::string kTable1 = "S2TABLE1";
const std::string kTable2 = "S2TABLE2";
const std::string kEventLog1 = "EVENTLOG1";
const std::string kEventLog2 = "EVENTLOG2";
const std::string kEventLog3 = "EVENTLOG3";
const std::string kEventLog4 = "EVENTLOG4";
const std::string kEventLog5 = "EVENTLOG5";
const std::string kFwTermLog = "FWTERMLOG";
const std::string kPdList = "PDLIST";
const std::string kTInfo = "TINFO";
const std::string kVInfo = "VINFO";
const std::string kPInfo = "PINFO";
const std::string kSas2IrLog = "SAS2IRLOG";
const std::string kEndDeviceInfo = "ENDDEVICEINFO";
const std::string kArray = "ARRAY";
const std::string kVolume = "VOLUME";
const std::string kLsiLink = "LSILINK";

}  // namespace

RSampleModule2::~RSampleModule2() = default;

std::string RSampleModule2::GetName() { return "sampleModule2"; }
std::string RSampleModule2::GetDescription() { return "Sample Module 2"; }

void RSampleModule2::RegisterTables() {
  const auto enumerate = &RSampleModule2::EnumPQ2Instances;
  RegisterTable(kTable1, enumerate, &RSampleModule2::FormatReadingsTable);
  RegisterTable(kTable2, enumerate, &RSampleModule2::FormatFourColumnTable);
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

// Collects nothing yet.
void RSampleModule2::CollectData(RRepository& /*repo*/) {}

}  // namespace pq
