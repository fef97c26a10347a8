#include "pqmodules/rsamplemodule1.h"

#include "frame/error_entries.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rsamplemodule1"};

const std::string kTable1 = "S1TABLE1";
const std::string kTable2 = "S1TABLE2";
const std::string kJunAddTable = "JUNADDTABLE";
const std::string kRaidInfo = "RAIDINFO";
const std::string kController = "CONTROLLER";
const std::string kPmcInfo = "PMCINFO";
const std::string kPmcVer = "PMCVER";
const std::string kPmcLink = "PMCLINK";

}  // namespace

std::string RSampleModule1::GetName() { return "sampleModule1"; }
std::string RSampleModule1::GetDescription() { return "Sample Module 1"; }

void RSampleModule1::RegisterTables() {
  const auto enumerate = &RSampleModule1::EnumPQ1Instances;
  RegisterTable(kTable1, enumerate, &RSampleModule1::FormatColumns30And2);
  RegisterTable(kTable2, enumerate, &RSampleModule1::FormatColumns30And2);
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

// Collects nothing yet.
void RSampleModule1::EnumXFirmwareInstancesCallback(RRepository& /*repo*/) {}

}  // namespace pq
