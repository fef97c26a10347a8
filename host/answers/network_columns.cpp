#include "host/answers/network_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/report_lines.h"
#include "host/text/ascii.h"
#include "host/text/count_text.h"

namespace host {
namespace {

using Words = std::vector<std::string_view>;

void CompareRow(const CollectedRow& row, const std::vector<std::string_view>& labels,
                const Words& printed, OtherRows& otherRows) {
  for (std::size_t column = 0; column < labels.size(); ++column) {
    const std::string shown = row.Get(fmt::format("item{}", column + 1));
    const std::string_view word = column < printed.size() ? printed[column] : "";
    if (shown == word) continue;
    otherRows.Take(row.Number(), labels[column], shown, word);
    return;
  }
}

/// Words are dealt to columns by their count alone, and rows begin after so many lines:
///
///   TCP    10.20.0.31:49731       10.20.0.5:445          ESTABLISHED     4
///
/// There can be millions of lines, of which no list is made.
Misfit FindWordsMisfit(const TableBesideReport& table, const std::vector<std::string_view>& labels,
                       bool (*isRow)(const Words& words)) {
  if (table.rows.empty()) return {};
  OtherRows otherRows;
  std::size_t printed = 0;
  ReportLine line;
  for (ReportLines lines(table.report); lines.Next(line);) {
    const Words words = ListWords(line.text);
    if (words.empty() || !isRow(words)) continue;
    if (printed < table.rows.size()) CompareRow(table.rows[printed], labels, words, otherRows);
    ++printed;
  }
  std::vector<std::string> reasons;
  if (!otherRows.IsEmpty()) reasons.push_back(otherRows.Tell());
  if (printed != 0 && printed != table.rows.size()) {
    reasons.push_back(fmt::format("its {} are {}", FormatCount(printed, "line"),
                                  FormatCount(table.rows.size(), "row")));
  }
  return fmt::format("{}", fmt::join(reasons, "; "));
}

Misfit FindAddressesMisfit(const TableBesideReport& table) {
  return FindWordsMisfit(
      table, {"Internet Address", "Physical Address", "Type"}, [](const Words& words) {
        return IsAsciiDigit(words.front().front()) && std::ranges::count(words.front(), '.') == 3;
      });
}

Misfit FindConnectionsMisfit(const TableBesideReport& table) {
  return FindWordsMisfit(
      table, {"Protocol", "Local Address", "Foreign Address", "State"},
      [](const Words& words) { return words.front() == "TCP" || words.front() == "UDP"; });
}

}  // namespace

std::vector<ColumnCheck> ListNetworkColumnChecks() {
  return {{"ARPINFO", {}, {}, FindAddressesMisfit}, {"NETSTATINFO", {}, {}, FindConnectionsMisfit}};
}

}  // namespace host
