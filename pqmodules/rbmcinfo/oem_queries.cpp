// The six queries of controller data. The utility prints pairs for four of them,
//   Firmware Revision         : 3.47
// and plain lines for power supplies and LEDs.
#include "pqmodules/rbmcinfo/oem_queries.h"

#include <algorithm>
#include <array>

#include "frame/label_table.h"
#include "frame/row_buffer.h"
#include "frame/tokens.h"
#include "pqmodules/rbmcinfo.h"
#include "pqmodules/rbmcinfo/pipe_query.h"
#include "pqmodules/rbmcinfo/tables.h"

namespace pq {
namespace {

constexpr std::size_t kOemChunkRoom = 1024;

struct OemQuery {
  PipeQuery pipe;
  const char* className;
  const char* title;
  bool joinsLines = false;  ///< a two-line answer is one line
  KeyFamily pairKeys = {};  ///< of a table of pairs
  Column lineColumn = {};   ///< of a table of lines

  bool HasPairs() const { return pairKeys.count > 0; }
};

constexpr PipeQuery OemPipe(const char* command, const char* announcement,
                            const char* pipeFailure) {
  return {command, announcement, pipeFailure, kDetail, kOemChunkRoom};
}

// By selector, from 1. The LAN query is the utility's own "lan", cut down to the address
// parameters, but announced like the others.
const std::array<OemQuery, 6> kOemQueries{{
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" korvaxoem mc",
                     "execute ipmiutilnh.exe korvaxoem mc command",
                     "Failed to create pipe for MC info"),
     .className = kMcInfo,
     .title = "MC Information",
     .pairKeys = kMcKeys},
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" korvaxoem selftest",
                     "execute ipmiutilnh.exe korvaxoem selftest command",
                     "Failed to create pipe for PQM selftest"),
     .className = kSelfInfo,
     .title = "PQM Selftest",
     .joinsLines = true,
     .pairKeys = kSelfKeys},
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" korvaxoem ver",
                     "execute ipmiutilnh.exe korvaxoem ver command",
                     "Failed to create pipe for version info"),
     .className = kVerInfo,
     .title = "Version Information",
     .pairKeys = kVerKeys},
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" korvaxoem psu",
                     "execute ipmiutilnh.exe korvaxoem psu command",
                     "Failed to create pipe for PSU info"),
     .className = kPsuInfo,
     .title = "PSU Information",
     .lineColumn = {"PSUINFO", "PSU Detailed Info"}},
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" lan | findstr Param | "
                     "findstr /c:(3) /c:(5) /c:(6) /c:(12) /c:(13)",
                     "execute ipmiutilnh.exe korvaxoem lan command",
                     "Failed to create pipe for LAN info"),
     .className = kLanInfo,
     .title = "LAN Information",
     .pairKeys = kLanKeys},
    {.pipe = OemPipe("\\pq_tools\\ipmiutilnh.exe\" korvaxoem led",
                     "execute ipmiutilnh.exe korvaxoem led command",
                     "Failed to create pipe for LED info"),
     .className = kLedInfo,
     .title = "LEDs Status",
     .lineColumn = {"LEDINFO", "LED Detailed Status"}},
}};

// How many names the last output of each query had; kept to be looked at in a debugger.
std::array<std::size_t, std::size(kOemQueries)> lastNameCounts{};

void JoinSelfTest(std::string& output) {
  const CarriageReturns found = FindCarriageReturns(output);
  kBmcLog(kDetail, "size_buf:", output.size());
  kBmcLog(kDetail, "Has ", found.count, " lines");
  kBmcLog(kDetail, "The position of line:", found.position);
  JoinTwoLines(output, found);
  kBmcLog(kDetail, "after:");
  kBmcLog(kDetail, output.c_str());
}

int AddPairs(RowBuffer& row, const KeyFamily& keys, const std::string& output,
             std::size_t& nameCount) {
  const std::vector<std::string_view> tokens = SplitTokens(output, ":\n\r");
  const std::vector<NamedValue> pairs = PairTokens(tokens);
  nameCount = pairs.size();
  if (pairs.empty()) return 1;
  for (const std::string_view token : tokens) kBmcLog(kDetail, token, " ");
  kBmcLog(kDetail, "From vector:");
  for (const NamedValue& pair : pairs) kBmcLog(kDetail, pair.name, ": ", pair.value);
  const unsigned shown = static_cast<unsigned>(std::min<std::size_t>(pairs.size(), keys.count));
  for (unsigned i = 0; i < shown; ++i) {
    row.Set({keys.KeyAt(i), std::string(pairs[i].name)}, pairs[i].value);
  }
  row.Commit();
  return 0;
}

int AddLines(RowBuffer& row, const Column& column, const std::string& output) {
  const std::vector<std::string_view> lines = SplitTokens(output, "\n\r");
  for (const std::string_view line : lines) {
    kBmcLog(kDetail, line, " ");
    row.Set(column, line);
    row.Commit();
  }
  return lines.empty() ? 1 : 0;
}

}  // namespace

bool HasOemErrorText(std::string_view output) {
  const std::string_view text = output.substr(0, output.find('\0'));
  return Holds(text, "Error") || Holds(text, "Bad response") ||
         Holds(text, "Cannot open an IPMI driver");
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

std::vector<NamedValue> PairTokens(const std::vector<std::string_view>& tokens) {
  std::vector<NamedValue> pairs;
  for (std::size_t at = 0; at < tokens.size(); at += 2) {
    const bool hasValue = at + 1 < tokens.size();
    pairs.push_back({tokens[at], hasValue ? tokens[at + 1] : std::string_view()});
  }
  return pairs;
}

int RBMCInfo::QueryOem(RRepository& repo, int selector) {
  const auto index = static_cast<std::size_t>(selector) - 1;
  if (index >= kOemQueries.size()) return 1;
  const OemQuery& query = kOemQueries[index];
  std::optional<PipedTool> tool = StartQuery(exePath, query.pipe);
  if (!tool) return 1;
  RowBuffer row(repo, query.className, query.title);
  std::string output = CollectOutput(*tool, query.pipe);
  if (HasOemErrorText(output)) {
    tool->Abandon();  // A utility that cannot reach its controller may hang; nobody waits for it.
    return 1;
  }
  kBmcLog(kDetail, "se:", output.c_str());
  if (query.joinsLines) JoinSelfTest(output);
  tool->Finish();
  return query.HasPairs() ? AddPairs(row, query.pairKeys, output, lastNameCounts[index])
                          : AddLines(row, query.lineColumn, output);
}

TableSources RBMCInfo::DescribeOemTables() {
  TableSources sources;
  for (const OemQuery& query : kOemQueries) {
    TableSource source{query.className, {ToolCommandOf(query.pipe.command)}, {}};
    if (query.HasPairs()) {
      for (unsigned i = 0; i < query.pairKeys.count; ++i) {
        source.columns.push_back({query.pairKeys.KeyAt(i), {}});
      }
    } else {
      source.columns.push_back(query.lineColumn);
    }
    sources.push_back(std::move(source));
  }
  return sources;
}

}  // namespace pq
