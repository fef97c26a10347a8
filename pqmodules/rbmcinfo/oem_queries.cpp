// The six queries of controller data. The utility prints pairs for four of them,
//   Firmware Revision         : 3.47
// and plain lines for power supplies and LEDs.
#include "pqmodules/rbmcinfo/oem_queries.h"

#include <array>

#include "frame/label_table.h"
#include "frame/row_buffer.h"
#include "frame/sentences.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo/pipe_query.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

struct OemQuery {
  PipeQuery pipe;
  const char* className;
  const char* instanceTitle;
  const char* title;
  const char* text;         ///< meaning of its columns, for the documentation
  bool joinsLines = false;  ///< a two-line answer is one line
  KeyFamily pairKeys = {};  ///< of a table of pairs
  Column lineColumn = {};   ///< of a table of lines

  bool HasPairs() const { return pairKeys.count > 0; }
};

// By selector, from 1. The LAN query is the utility's own "lan", cut down to the address
// parameters, but announced like the others.
constexpr std::array<OemQuery, kOemQueryCount> kOemQueries{{
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem mc",
              .announcement = "execute ipmiutilnh.exe korvaxoem mc command",
              .pipeFailure = "Failed to create pipe for MC info"},
     .className = kMcInfo,
     .instanceTitle = "MC Information",
     .title = "Management controller",
     .text = "a fact on the controller, such as its firmware version",
     .pairKeys = kMcKeys},
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem selftest",
              .announcement = "execute ipmiutilnh.exe korvaxoem selftest command",
              .pipeFailure = "Failed to create pipe for PQM selftest"},
     .className = kSelfInfo,
     .instanceTitle = "PQM Selftest",
     .title = "BMC self-test",
     .text = "result of the self-test",
     .joinsLines = true,
     .pairKeys = kSelfKeys},
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem ver",
              .announcement = "execute ipmiutilnh.exe korvaxoem ver command",
              .pipeFailure = "Failed to create pipe for version info"},
     .className = kVerInfo,
     .instanceTitle = "Version Information",
     .title = "Firmware versions",
     .text = "version of one firmware of the machine",
     .pairKeys = kVerKeys},
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem psu",
              .announcement = "execute ipmiutilnh.exe korvaxoem psu command",
              .pipeFailure = "Failed to create pipe for PSU info"},
     .className = kPsuInfo,
     .instanceTitle = "PSU Information",
     .title = "Power supplies",
     .text = "one line on the power supplies: state, power in W, serial number and so on",
     .lineColumn = {"PSUINFO", "PSU Detailed Info"}},
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" lan | findstr Param | "
                         "findstr /c:(3) /c:(5) /c:(6) /c:(12) /c:(13)",
              .announcement = "execute ipmiutilnh.exe korvaxoem lan command",
              .pipeFailure = "Failed to create pipe for LAN info"},
     .className = kLanInfo,
     .instanceTitle = "LAN Information",
     .title = "BMC LAN settings",
     .text = "a setting of the BMC's network interface, such as an address",
     .pairKeys = kLanKeys},
    {.pipe = {.command = "\\pq_tools\\ipmiutilnh.exe\" korvaxoem led",
              .announcement = "execute ipmiutilnh.exe korvaxoem led command",
              .pipeFailure = "Failed to create pipe for LED info"},
     .className = kLedInfo,
     .instanceTitle = "LEDs Status",
     .title = "LED status",
     .text = "one line on an LED: which one, and whether it is lit",
     .lineColumn = {"LEDINFO", "LED Detailed Status"}},
}};

void JoinSelfTest(const ModuleLog& log, std::string& output) {
  const CarriageReturns found = FindCarriageReturns(output);
  log(kDetail, "size_buf:", output.size());
  log(kDetail, "Has ", found.count, " lines");
  log(kDetail, "The position of line:", found.position);
  JoinTwoLines(output, found);
  log(kDetail, "after:");
  log(kDetail, output.c_str());
}

int AddPairs(const ModuleLog& log, RowBuffer& row, const KeyFamily& keys, const std::string& output,
             std::size_t& nameCount) {
  NamedValue pair;
  nameCount = 0;
  for (TokenScan tokens = ScanPairs(output); NextPair(tokens, pair);) ++nameCount;
  if (nameCount == 0) return 1;
  TokenScan tokens = ScanPairs(output);
  for (std::string_view token = tokens.Next(); !token.empty(); token = tokens.Next()) {
    log(kDetail, token, " ");
  }
  log(kDetail, "From vector:");
  for (TokenScan pairs = ScanPairs(output); NextPair(pairs, pair);) {
    log(kDetail, pair.name, ": ", pair.value);
  }
  TokenScan shown = ScanPairs(output);
  for (unsigned i = 0; i < keys.count && NextPair(shown, pair); ++i) {
    row.Set({.key = keys.MakeKey(i), .label = pair.name}, pair.value);
  }
  row.Commit();
  return 0;
}

int AddLines(const ModuleLog& log, RowBuffer& row, const Column& column,
             const std::string& output) {
  TokenScan lines(output, "\n\r");
  std::string_view line = lines.Next();
  if (line.empty()) return 1;
  for (; !line.empty(); line = lines.Next()) {
    log(kDetail, line, " ");
    row.Set(column, line);
    row.Commit();
  }
  return 0;
}

}  // namespace

bool HasOemErrorText(std::string_view output) {
  const std::string_view text = output.substr(0, output.find('\0'));
  return Contains(text, kUtilityError) || Contains(text, "Bad response") ||
         Contains(text, "Cannot open an IPMI driver");
}

CarriageReturns FindCarriageReturns(std::string_view bytes) {
  CarriageReturns found;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] != '\r') continue;
    ++found.count;
    if (found.position == 0) found.position = at;
  }
  return found;
}

void JoinTwoLines(std::string& output, const CarriageReturns& found) {
  if (found.count == 2) output.replace(found.position, 2, "  ");
}

TokenScan ScanPairs(std::string_view output) { return {output, ":\n\r"}; }

bool NextPair(TokenScan& tokens, NamedValue& pair) {
  pair.name = tokens.Next();
  pair.value = tokens.Next();
  return !pair.name.empty();
}

int QueryOem(BmcCollection& collection, int selector) {
  const auto index = static_cast<std::size_t>(selector) - 1;
  if (index >= kOemQueries.size()) return 1;
  const OemQuery& query = kOemQueries[index];
  const ModuleLog& log = collection.log;
  std::optional<PipedTool> tool = StartQuery(log, collection.hostFolder, query.pipe);
  if (!tool) return 1;
  RowBuffer row(collection.repo, query.className, query.instanceTitle);
  std::string output = CollectOutput(log, *tool, query.pipe);
  if (HasOemErrorText(output)) {
    tool->Abandon();  // A utility that cannot reach its controller may hang; nobody waits for it.
    return 1;
  }
  log(kDetail, kWholeOutput, output.c_str());
  if (query.joinsLines) JoinSelfTest(log, output);
  tool->Finish();
  return query.HasPairs() ? AddPairs(log, row, query.pairKeys, output, collection.nameCounts[index])
                          : AddLines(log, row, query.lineColumn, output);
}

void DescribeOemQueries(ModuleDescription& module) {
  for (const OemQuery& query : kOemQueries) {
    TableDescription table{.className = query.className,
                           .title = query.title,
                           .commands = {ParseToolCommand(query.pipe.command)}};
    for (unsigned i = 0; i < query.pairKeys.count; ++i) {
      table.columns.push_back({query.pairKeys.MakeKey(i), {}, query.text});
    }
    if (!query.HasPairs()) {
      table.columns.push_back(
          {std::string(query.lineColumn.key), std::string(query.lineColumn.label), query.text});
    }
    module.tables.push_back(table);
    module.AddPipeFailure(query.pipe.pipeFailure, query.className);
  }
}

}  // namespace pq
