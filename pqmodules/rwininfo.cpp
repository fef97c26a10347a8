#include "pqmodules/rwininfo.h"

#include <optional>
#include <vector>

#include "frame/error_entries.h"
#include "frame/platform.h"
#include "frame/report_file.h"
#include "frame/run_to_pipe.h"
#include "frame/tokens.h"
#include "frame/tool_runner.h"
#include "pqmodules/rwininfo/net_table.h"

namespace pq {
namespace {

constexpr ModuleLog kLog{"pqmodules/rwininfo"};

const std::string kArpInfo = "ARPINFO";
const std::string kNetstatInfo = "NETSTATINFO";

/// The titles of the network commands are known in US English only; on other systems their output
/// is kept as it is.
constexpr std::uint32_t kEnglish = 1033;

std::string exePath;

/// A command whose output becomes a file of the log folder.
struct ReportStep {
  const char* command;
  const char* file;
  const char* failure;
};
constexpr ReportStep kRoute{"/c route print >\"", "route.txt",
                            "CreateProcess failed in getting route("};
constexpr ReportStep kArp{"/c arp.exe -a >\"", "arp.txt",
                          "CreateProcess failed in getting arp data("};
constexpr ReportStep kNetstat{"/c netstat.exe >\"", "netstat.txt",
                              "CreateProcess failed in getting netstat data("};
constexpr ReportStep kShares{"/c net share >\"", "netshare.txt",
                             "CreateProcess failed in getting netshare("};

/// A file of the machine that is copied into the log folder when it is there. The folder is spelt
/// in two ways; both name the same one.
struct CopyStep {
  const char* tested;
  const char* source;
  const char* file;
  const char* failure;
};
constexpr CopyStep kHostsIcs{"C:\\Windows\\System32\\drivers\\etc\\hosts.ics",
                             "C:\\Windows\\System32\\drivers\\etc\\hosts.ics", "hosts.ics.txt",
                             "CreateProcess failed in copying hosts.ics("};
constexpr CopyStep kHosts{"C:\\Windows\\System32\\drivers\\etc\\hosts",
                          "C:\\WINDOWS\\system32\\drivers\\etc\\hosts", "hosts.txt",
                          "CreateProcess failed in copying hosts("};
constexpr CopyStep kProtocol{"C:\\Windows\\System32\\drivers\\etc\\protocol",
                             "C:\\WINDOWS\\system32\\drivers\\etc\\protocol", "protocol.txt",
                             "CreateProcess failed in copying protocol("};
constexpr CopyStep kLmhosts{"C:\\Windows\\System32\\drivers\\etc\\lmhosts.sam",
                            "C:\\WINDOWS\\system32\\drivers\\etc\\lmhosts.sam", "lmhosts.sam.txt",
                            "CreateProcess failed in copying lmhosts.sam("};

constexpr char kSmbiosCommand[] = "/c \"\"";
constexpr char kSmbiosTool[] = "\\pq_tools\\getsmbios.exe\" >\"";
constexpr char kSmbiosFile[] = "smbios_info.txt\"\"";
constexpr char kSmbiosFailure[] = "CreateProcess failed(";

/// A command whose printed rows become a table.
struct NetTable {
  const std::string& className;
  const char* key;
  const char* command;
  PipeFailures failures;
  std::vector<std::string> titles;
};
const NetTable kArpTable{
    kArpInfo,
    "ARP Information",
    "/c arp.exe -a",
    {"Failed to create pipe for arp info", "CreateProcess failed in getting arp info("},
    {"Internet Address", "Physical Address", "Type"}};
const NetTable kNetstatTable{
    kNetstatInfo,
    "Netstat Information",
    "/c netstat.exe",
    {"Failed to create pipe for netstat info", "CreateProcess failed in getting netstat info("},
    {"Protocol", "Local Address", "Foreign Address", "State"}};

constexpr char kBlanks[] = " \r\n";

void RunStep(const std::string& commandLine, const char* failure) {
  RunLogged(kLog, commandLine, {true, kProgress, failure});
}

void WriteReport(const ReportStep& step) {
  RunStep(step.command + GetLogFolder() + step.file + "\"", step.failure);
}

void CopyIfPresent(const CopyStep& step) {
  if (!Machine().PathExists(step.tested)) return;
  // The interpreter tolerates the quote that nothing closes.
  RunStep(
      std::string("/c copy ") + step.source + " \"" + GetLogFolder() + step.file + "\" > nul \"",
      step.failure);
}

void WriteSmbiosDump() {
  CheckFolderFits(exePath, std::string_view(kSmbiosCommand).size());
  RunStep(kSmbiosCommand + exePath + kSmbiosTool + GetLogFolder() + kSmbiosFile, kSmbiosFailure);
}

/// Deals the words of `text` into the table's columns and adds one instance per row.
void AddRows(RRepository& repo, const NetTable& table, std::string_view text) {
  std::vector<std::string_view> words = SplitTokens(text, kBlanks);
  for (const std::string_view word : words) kLog(kDetail, word);
  const DealtColumns columns(std::move(words), table.titles.size());
  for (std::size_t row = 0; row < columns.RowCount(); ++row) {
    RInstance instance(table.className, table.key, kInstanceNumber);
    for (std::size_t column = 0; column < table.titles.size(); ++column) {
      instance.AddProperty("item" + std::to_string(column + 1), table.titles[column],
                           std::string(columns.At(row, column)), kPropertyFlag);
    }
    instance.AddToRepository(repo);
  }
}

void AddArpRows(RRepository& repo, std::string_view output) {
  const ArpScan scan = ScanArpLines(output);
  for (const std::string_view line : scan.lines) kLog(kDetail, line.size(), " : ", line);
  if (scan.lines.size() < kArpMinLineEnds) return;
  kLog(kDetail, "final_buf_arp:", scan.rows);
  kLog(kDetail, "lines:", scan.lines.size());
  kLog(kDetail, output.substr(scan.end));
  AddRows(repo, kArpTable, scan.rows);
}

void AddConnectionRows(RRepository& repo, std::string_view output) {
  const std::optional<std::size_t> start = FindConnectionRows(output);
  if (!start) return;
  const std::string_view rows = output.substr(*start);
  kLog(kDetail, "lines:", kConnectionMinLineEnds);  // Counting went no further.
  kLog(kDetail, rows);
  AddRows(repo, kNetstatTable, rows);
}

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

void RWINInfo::CollectData(RRepository& repo) {
  kLog(kProgress, "Enter CollectData-Windows related info");
  const std::uint32_t language = Machine().SystemLanguage();
  kLog(kProgress, "Get OS language, lcid=", language);
  exePath = GetExeFolder();
  kLog(kProgress, "the exepath:", exePath);
  WriteReport(kRoute);
  if (language == kEnglish) {
    ParseNetTable(repo, kArpMode);
    ParseNetTable(repo, kConnectionMode);
  } else {
    WriteReport(kArp);
    WriteReport(kNetstat);
  }
  WriteReport(kShares);
  CopyIfPresent(kHostsIcs);
  WriteSmbiosDump();
  CopyIfPresent(kHosts);
  CopyIfPresent(kProtocol);
  CopyIfPresent(kLmhosts);
  kLog(kProgress, "Exit CollectData-Windows related info");
}

int ParseNetTable(RRepository& repo, unsigned mode) {
  const bool isArp = mode == kArpMode;
  const NetTable& table = isArp ? kArpTable : kNetstatTable;
  const std::optional<std::string> output = RunToPipe(kLog, table.command, table.failures);
  if (!output) return 1;
  if (isArp) {
    AddArpRows(repo, *output);
  } else {
    AddConnectionRows(repo, *output);
  }
  return 0;
}

TableSources RWINInfo::DescribeTables() {
  TableSources sources;
  for (const NetTable* table : {&kArpTable, &kNetstatTable}) {
    TableSource source{table->className, {}, {}};
    std::string_view command = table->command;
    command.remove_prefix(std::string_view("/c ").size());
    const std::size_t blank = command.find(' ');
    const std::string_view arguments =
        blank == std::string_view::npos ? std::string_view() : command.substr(blank + 1);
    source.commands.push_back({std::string(command.substr(0, blank)), std::string(arguments), {}});
    for (const std::string& title : table->titles) {
      source.columns.push_back({"item" + std::to_string(source.columns.size() + 1), title});
    }
    sources.push_back(std::move(source));
  }
  return sources;
}

}  // namespace pq
