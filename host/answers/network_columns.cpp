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

/// Words are dealt to columns by their count alone, and rows begin after so many lines:
///
///   TCP    10.20.0.31:49731       10.20.0.5:445          ESTABLISHED     4
Misfit FindWordsMisfit(const TableBesideReport& table, const std::vector<std::string_view>& labels,
                       bool (*isRow)(const Words& words)) {
  if (table.rows.empty()) return {};
  std::vector<Words> printed;
  ReportLine line;
  for (ReportLines lines(table.report); lines.Next(line);) {
    if (Words words = ListWords(line.text); !words.empty() && isRow(words)) {
      printed.push_back(std::move(words));
    }
  }
  OtherRows otherRows;
  const std::size_t both = std::min(printed.size(), table.rows.size());
  for (std::size_t i = 0; i < both; ++i) {
    for (std::size_t column = 0; column < labels.size(); ++column) {
      const std::string shown = table.rows[i].Get(fmt::format("item{}", column + 1));
      const std::string_view word = column < printed[i].size() ? printed[i][column] : "";
      if (shown == word) continue;
      otherRows.Take(table.rows[i].Number(), labels[column], shown, word);
      break;
    }
  }
  std::vector<std::string> reasons;
  if (!otherRows.IsEmpty()) reasons.push_back(otherRows.Tell());
  if (!printed.empty() && printed.size() != table.rows.size()) {
    reasons.push_back(fmt::format("its {} are {}", FormatCount(printed.size(), "line"),
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
