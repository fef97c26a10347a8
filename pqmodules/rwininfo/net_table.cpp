#include "pqmodules/rwininfo/net_table.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "frame/row_buffer.h"
#include "frame/run_to_pipe.h"
#include "frame/tokens.h"
#include "pqmodules/rwininfo/tables.h"

namespace pq {
namespace {

constexpr std::string_view kInterpret = "/c ";

/// A command whose printed rows become a table.
struct NetTable {
  const char* className;
  const char* instanceTitle;
  const char* title;
  const char* command;
  PipeFailures failures;
  std::span<const Column> columns;
};

constexpr Column kArpColumns[] = {
    {"item1", "Internet Address", "IP address of a machine on the network"},
    {"item2", "Physical Address", "its hardware (MAC) address"},
    {"item3", "Type", "dynamic: learned from the network; static: set by hand or by Windows"},
};
constexpr NetTable kArpTable{kArpInfo,
                             "ARP Information",
                             "ARP table",
                             "/c arp.exe -a",
                             {.pipe = "Failed to create pipe for arp info",
                              .start = "CreateProcess failed in getting arp info("},
                             kArpColumns};

constexpr Column kNetstatColumns[] = {
    {"item1", "Protocol", "TCP or UDP"},
    {"item2", "Local Address", "address and port on this machine"},
    {"item3", "Foreign Address", "address and port at the other end"},
    {"item4", "State", "state of the connection, such as ESTABLISHED"},
};
constexpr NetTable kNetstatTable{kNetstatInfo,
                                 "Netstat Information",
                                 "Network connections",
                                 "/c netstat.exe",
                                 {.pipe = "Failed to create pipe for netstat info",
                                  .start = "CreateProcess failed in getting netstat info("},
                                 kNetstatColumns};

constexpr char kBlanks[] = " \r\n";

/// Deals the words of `text` into the table's columns and adds one instance per row. The words are
/// found twice: a list of them would take more memory than the text.
void AddRows(const WindowsCollection& collection, const NetTable& table, std::string_view text) {
  TokenScan logged(text, kBlanks);
  for (std::string_view word = logged.Next(); !word.empty(); word = logged.Next()) {
    collection.log(kDetail, word);
  }
  TokenScan dealt(text, kBlanks);
  std::vector<std::string_view> row(table.columns.size());
  while (DealRow(dealt, row)) {
    RowBuffer instance(collection.repo, table.className, table.instanceTitle);
    for (std::size_t i = 0; i < row.size(); ++i) instance.Set(table.columns[i], row[i]);
    instance.Commit();
  }
}

void AddArpRows(const WindowsCollection& collection, std::string_view output) {
  const ModuleLog& log = collection.log;
  const ArpScan scan = ScanArpLines(output);
  for (const std::string_view line : scan.lines) log(kDetail, line.size(), " : ", line);
  if (scan.lines.size() < kArpMinLineEnds) return;
  log(kDetail, "final_buf_arp:", scan.rows);
  log(kDetail, "lines:", scan.lines.size());
  log(kDetail, output.substr(scan.end));
  AddRows(collection, kArpTable, scan.rows);
}

void AddConnectionRows(const WindowsCollection& collection, std::string_view output) {
  const std::optional<std::size_t> start = FindConnectionRows(output);
  if (!start) return;
  const std::string_view rows = output.substr(*start);
  collection.log(kDetail, "lines:", kConnectionMinLineEnds);  // Counting went no further.
  collection.log(kDetail, rows);
  AddRows(collection, kNetstatTable, rows);
}

/// The command as people type it.
ToolCommand DescribeCommand(const NetTable& table) {
  std::string_view command = table.command;
  command.remove_prefix(kInterpret.size());
  const std::size_t blank = std::min(command.find(' '), command.size());
  std::string_view arguments = command.substr(blank);
  if (!arguments.empty()) arguments.remove_prefix(1);
  return {std::string(command.substr(0, blank)), std::string(arguments), {}};
}

}  // namespace

ArpScan ScanArpLines(std::string_view text) {
  const std::string_view scanned = text.substr(0, kScanLimit);
  ArpScan scan;
  scan.end = scanned.size();
  std::size_t start = 0;
  for (std::size_t lineEnd = 0; (lineEnd = scanned.find('\n', start)) != std::string_view::npos;
       start = lineEnd + 1) {
    const std::size_t length = std::min(lineEnd + 1 - start, kArpLineLimit);
    const std::string_view line = scanned.substr(start, length);
    scan.lines.push_back(line);
    if (line.size() > kArpTitleLength) scan.rows += line;
  }
  return scan;
}

std::optional<std::size_t> FindConnectionRows(std::string_view text) {
  const std::string_view scanned = text.substr(0, kScanLimit);
  std::size_t rows = 0;
  std::size_t next = 0;
  for (std::size_t lineEnds = 1; lineEnds <= kConnectionMinLineEnds; ++lineEnds) {
    const std::size_t lineEnd = scanned.find('\n', next);
    if (lineEnd == std::string_view::npos) return std::nullopt;
    if (lineEnds == kConnectionHeadLineEnds) rows = lineEnd;
    next = lineEnd + 1;
  }
  return rows;
}

int CollectNetTable(const WindowsCollection& collection, unsigned mode) {
  const bool isArp = mode == kArpMode;
  const NetTable& table = isArp ? kArpTable : kNetstatTable;
  const std::optional<std::string> output =
      RunToPipe(collection.log, table.command, table.failures);
  if (!output) return 1;
  if (isArp) {
    AddArpRows(collection, *output);
  } else {
    AddConnectionRows(collection, *output);
  }
  return 0;
}

void DescribeNetTables(ModuleDescription& module) {
  for (const NetTable* net : {&kArpTable, &kNetstatTable}) {
    TableDescription table{.className = net->className,
                           .title = net->title,
                           .commands = {DescribeCommand(*net)},
                           .needsUsEnglish = true};
    table.AddColumns(net->columns);
    module.tables.push_back(table);
    module.AddPipeFailure(net->failures.pipe, net->className);
    module.AddFailures(StepFailure::kToolNotRun, {net->failures.start});
  }
}

}  // namespace pq
