#include "host/answers/lsi_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "host/answers/parts/header_table.h"
#include "host/answers/parts/lsi_drives.h"
#include "host/answers/parts/report_lines.h"
#include "host/catalogue/table_sources.h"
#include "host/text/ascii.h"
#include "host/text/count_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

std::string JoinReasons(const std::vector<std::string>& reasons) {
  return fmt::format("{}", fmt::join(reasons, "; "));
}

/// `text` with one blank between its words.
std::string JoinWords(std::string_view text) {
  return fmt::format("{}", fmt::join(ListWords(text), " "));
}

struct ListTitle {
  std::string_view className;
  std::string_view title;
  std::string_view wideHead;  ///< whose cells may have blanks
};
constexpr ListTitle kLists[] = {
    {"TINFO", "TOPOLOGY", ""},
    {"VINFO", "VD LIST", "Name"},
    {"PINFO", "PD LIST", "Model"},
};

/// The head above the column `key`: of that name, or one like "EID:Slt" for "EID".
std::string_view FindHead(const TableHeads& heads, std::string_view key) {
  if (heads.Has(key)) return key;
  for (const std::string_view name : {"EID:Slt", "EID:Slot", "DG/VD"}) {
    if (name.starts_with(key) && heads.Has(name)) return name;
  }
  return {};
}

/// Compares the rows of a list with those of its table, which are in the same order.
class ListComparison {
 public:
  ListComparison(const ListTitle& list, const TableBesideReport& table)
      : list(list), table(table), columns(FindTableDescription(list.className)->columns) {}

  std::string FindLsiMisfit() {
    TableScan scan;
    ReportLines lines(table.report);
    for (ReportLine line; lines.Next(line);) {
      const TableScan::LineKind kind = scan.Take(line.text);
      if (scan.Title() != list.title) continue;
      if (kind == TableScan::LineKind::kHeads) FindMissingHeads(scan.Heads());
      if (kind == TableScan::LineKind::kRow) CompareRow(scan.Heads(), line.text);
    }
    return Tell();
  }

 private:
  void FindMissingHeads(const TableHeads& heads) {
    missingHeads.clear();
    for (const pq::ColumnDescription& column : columns) {
      if (FindHead(heads, column.key).empty()) missingHeads.push_back("\"" + column.key + "\"");
    }
  }

  void CompareRow(const TableHeads& heads, std::string_view line) {
    const std::string_view name = ListWords(line).front();
    if (next == table.rows.size() || table.rows[next].Get(columns.front().key) != name) {
      if (rowsLeftOut++ == 0) firstLeftOut = CutText(name, 20);
      return;
    }
    const CollectedRow row = table.rows[next++];
    const std::optional<RowCells> cells = heads.DealWords(line, list.wideHead);
    if (!cells) return;
    for (const pq::ColumnDescription& column : columns) {
      const std::string_view head = FindHead(heads, column.key);
      if (head.empty()) continue;
      const std::string shown = row.Get(column.key);
      const std::string_view printed = (*cells)[head];
      if (shown == printed || JoinWords(shown) == JoinWords(printed)) continue;
      otherRows.Take(row.Number(), column.label, shown, printed);
      return;
    }
  }

  std::string Tell() const {
    std::vector<std::string> reasons;
    if (!otherRows.IsEmpty()) {
      reasons.push_back(otherRows.Tell());
      if (!missingHeads.empty()) {
        reasons.push_back(
            fmt::format("the report has no column {}", fmt::join(missingHeads, ", ")));
      }
    }
    if (rowsLeftOut > 0) {
      const std::string more = rowsLeftOut > 1 ? fmt::format(" and {} more", rowsLeftOut - 1) : "";
      reasons.push_back(
          fmt::format("no row for {}{}: fewer words than columns", firstLeftOut, more));
    }
    return JoinReasons(reasons);
  }

  const ListTitle& list;
  const TableBesideReport& table;
  const std::vector<pq::ColumnDescription>& columns;
  std::vector<std::string> missingHeads;
  std::size_t next = 0;  ///< row of the table
  OtherRows otherRows;
  std::size_t rowsLeftOut = 0;
  std::string firstLeftOut;
};

Misfit FindListMisfit(const TableBesideReport& table) {
  const auto* const list =
      std::find_if(std::begin(kLists), std::end(kLists),
                   [&](const ListTitle& known) { return known.className == table.className; });
  return ListComparison(*list, table).FindLsiMisfit();
}

/// Each value should be that of a line with its column's label, and of no longer one; products
/// differ in the label's case.
Misfit FindSummaryMisfit(const TableBesideReport& table) {
  std::map<std::string, std::vector<std::string>, std::less<>> facts;
  ReportLines lines(table.report);
  for (ReportLine line; lines.Next(line);) {
    if (const auto split = SplitLabel(line.text, '=')) {
      facts[LowerCase(split->label)].emplace_back(split->value);
    }
  }
  const auto& columns = FindTableDescription(table.className)->columns;
  if (table.rows.empty()) {
    const bool isSummary = facts.contains(LowerCase(columns.front().label));
    const bool ends = facts.contains(LowerCase(columns.back().label));
    if (!isSummary || ends) return {};
    return fmt::format("it has no line \"{} =\", which ends a row", columns.back().label);
  }
  std::vector<std::string> reasons;
  std::vector<std::string> labels;
  std::vector<std::string> missing;
  for (const pq::ColumnDescription& column : columns) {
    const auto fact = facts.find(LowerCase(column.label));
    if (fact == facts.end()) {
      missing.push_back("\"" + column.label + " =\"");
      continue;
    }
    const std::string shown = table.rows.front().Get(column.key);
    const std::vector<std::string>& printed = fact->second;
    if (std::find(printed.begin(), printed.end(), shown) != printed.end()) continue;
    reasons.push_back(TellOtherValue(column.label, shown, printed.front()));
    labels.push_back(column.label);
  }
  // Nobody else tells why their cells are empty.
  if (!missing.empty()) {
    reasons.push_back(fmt::format("it has no line {}", fmt::join(missing, ", ")));
  }
  return {JoinReasons(reasons), labels};
}

/// A log begins with a line of its own, or it is not taken for one.
Misfit FindTermLogMisfit(const TableBesideReport& table) {
  if (!table.rows.empty() || Trim(table.report).empty()) return {};
  // What the tool says when it has no log is in lines like this one.
  if (table.report.find("Status = ") != std::string_view::npos) return {};
  return Misfit("it has no line \"Firmware Term Log Information\"");
}

/// Every drive that has details should have a row.
Misfit FindDetailsMisfit(const TableBesideReport& table) {
  std::size_t drives = 0;
  std::string last;
  ReportLines lines(table.report);
  for (ReportLine line; lines.Next(line);) {
    const std::string_view text = Trim(line.text);
    if (!text.starts_with("Drive /c") || !text.ends_with(':')) continue;
    const auto place = ReadLsiDrivePath(text.substr(text.find('/')));
    if (!place || *place == last) continue;
    last = *place;
    ++drives;
  }
  if (table.rows.size() >= drives) return {};
  return fmt::format("{} of {} {} a row", table.rows.size(), FormatCount(drives, "drive"),
                     table.rows.size() == 1 ? "has" : "have");
}

/// Events of the tool's second generation begin with another label.
Misfit FindEventMisfit(const TableBesideReport& table) {
  constexpr std::string_view kOtherStart = "Sequence Number";
  if (table.report.find(kOtherStart) == std::string_view::npos) return {};
  std::size_t events = 0;
  ReportLines lines(table.report);
  for (ReportLine line; lines.Next(line);) {
    const auto split = SplitLabel(line.text, ':');
    if (split && split->label == kOtherStart) ++events;
  }
  if (events == 0) return {};
  return fmt::format(
      "its {} \"{}:\" instead of \"seqNum:\"",
      events == 1 ? "event begins with" : FormatCount(events, "event") + " begin with",
      kOtherStart);
}

}  // namespace

std::vector<ColumnCheck> ListLsiColumnChecks() {
  constexpr std::string_view kLink = "LSILINK";
  return {
      {"RAIDINFO", kLink, "lsishowall", FindSummaryMisfit},
      {"TINFO", kLink, "lsishowall", FindListMisfit},
      {"VINFO", kLink, "lsishowall", FindListMisfit},
      {"PINFO", kLink, "lsishowall", FindListMisfit},
      {"PDLIST", kLink, "pdlist", FindDetailsMisfit},
      {"EVENTLOG1", kLink, "lsieventlog", FindEventMisfit},
      {"FWTERMLOG", kLink, "lsifwtermlog", FindTermLogMisfit},
  };
}

}  // namespace host
