#include "pqmodules/rwininfo.h"

#include <cstdint>

#include "frame/error_entries.h"
#include "frame/platform.h"
#include "frame/tool_runner.h"
#include "pqmodules/rwininfo/collection.h"
#include "pqmodules/rwininfo/raw_files.h"
#include "pqmodules/rwininfo/tables.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rwininfo"};

constexpr char kName[] = "Windows_Related_Info";

/// Logged before the language identifier.
constexpr Sentence kLanguage = "Get OS language, lcid=";

/// The layout of the network commands' output is known in US English only; on other systems that
/// output is kept as it is.
void CollectWindows(RRepository& repo) {
  kLog(kProgress, "Enter CollectData-Windows related info");
  const std::uint32_t language = Machine().SystemLanguage();
  kLog(kProgress, kLanguage, language);
  const WindowsCollection collection{repo, kLog, GetExeFolder()};
  kLog(kProgress, "the exepath:", collection.hostFolder);
  WriteReport(collection, kRoute);
  if (language == kUsEnglish) {
    CollectNetTable(collection, kArpMode);
    CollectNetTable(collection, kConnectionMode);
  } else {
    WriteReport(collection, kArp);
    WriteReport(collection, kNetstat);
  }
  WriteReport(collection, kShares);
  CopyIfPresent(collection, kHostsIcs);
  WriteSmbiosDump(collection);
  CopyIfPresent(collection, kHosts);
  CopyIfPresent(collection, kProtocol);
  CopyIfPresent(collection, kLmhosts);
  kLog(kProgress, "Exit CollectData-Windows related info");
}

}  // namespace

std::string RWINInfo::GetName() { return kName; }
std::string RWINInfo::GetDescription() { return "Windows related information"; }

void RWINInfo::RegisterTables() {
  RegisterTable(kArpInfo, &RWINInfo::EnumWINInstances, &RWINInfo::FormatARPTable);
  RegisterTable(kNetstatInfo, &RWINInfo::EnumWINInstances, &RWINInfo::FormatNetstatTable);
}

ModuleDescription RWINInfo::Describe() {
  ModuleDescription module{.name = kName, .toolErrorText = "Error"};
  module.explanations.push_back(
      {.sentence = kLanguage.text,
       .outcome = "not this language",
       .text = "the table is made on US English systems only; elsewhere the tool's output stays "
               "as a file in the log folder",
       .tables = {kArpInfo, kNetstatInfo},
       .usualValue = std::to_string(kUsEnglish)});
  DescribeNetTables(module);
  for (const char* program : {"route", "arp.exe", "netstat.exe", "net"}) {
    module.tools.push_back({program, "Microsoft", "Windows"});
  }
  module.AssignArea({"Network"});
  DescribeRawFiles(module);
  module.AssignArea({"SMBIOS"});
  return module;
}

void RWINInfo::FormatARPTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {40, 40, 20}, false);
}

void RWINInfo::FormatNetstatTable(RInstancesWrapper& table) {
  table.SetRowHeaders({}, {10, 30, 30, 30}, false);
}

void RWINInfo::EnumWINInstances(RRepository& repo) {
  kLog(kProgress, "Enter EnumWINInstances");
  CollectOnce([&] { CollectData(repo); });
  kLog(kProgress, "Exit EnumWINInstances");
}

void RWINInfo::CollectData(RRepository& repo) { CollectWindows(repo); }

int ParseNetTable(RRepository& repo, unsigned mode) {
  return CollectNetTable({repo, kLog, GetExeFolder()}, mode);
}

}  // namespace pq
