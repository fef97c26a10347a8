#include "host/answers/microchip_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "host/answers/parts/report_lines.h"
#include "host/catalogue/table_sources.h"

namespace host {
namespace {

/// Tables end at this label; the lines after it are on parts of the controller.
constexpr std::string_view kLastLabel = "Driver";

/// The report's values by their whole labels, the first of each.
std::map<std::string_view, std::string_view> ListFacts(std::string_view report) {
  std::map<std::string_view, std::string_view> facts;
  ReportLines lines(report);
  for (ReportLine line; lines.Next(line);) {
    const auto told = SplitPaddedLabel(line.text);
    if (!told) continue;
    facts.emplace(told->label, told->value);
    if (told->label == kLastLabel) break;
  }
  return facts;
}

/// A value of the table that is not its label's in the report.
struct OtherValue {
  std::string label;
  std::string shown;
  std::string printed;
  bool isPrinted = false;  ///< the report has the label
};

/// How many characters values lose at their beginning, as most do of those that lose some; 0: none
/// does. The report's values begin in one column, and are taken from another.
std::size_t FindLoss(const std::vector<OtherValue>& others) {
  std::map<std::size_t, std::size_t> counts;
  for (const OtherValue& other : others) {
    if (other.shown.empty() || !other.printed.ends_with(other.shown)) continue;
    ++counts[other.printed.size() - other.shown.size()];
  }
  const auto most =
      std::max_element(counts.begin(), counts.end(),
                       [](const auto& a, const auto& b) { return a.second < b.second; });
  return most == counts.end() ? 0 : most->first;
}

/// A value that is no longer than `width` is lost as a whole.
bool Loses(const OtherValue& other, std::size_t width) {
  const std::string_view printed = other.printed;
  return width > 0 && other.shown == Trim(printed.substr(std::min(width, printed.size())));
}

bool Gains(const OtherValue& other) {
  return !other.printed.empty() && other.shown.ends_with(other.printed);
}

/// Takes those that `test` holds for off `others`, and tells of them with `words` and an example;
/// empty without any.
template <typename Test>
std::string TellAlike(std::vector<OtherValue>& others, const Test& test, std::string_view words) {
  const auto rest = std::stable_partition(others.begin(), others.end(),
                                          [&](const OtherValue& other) { return !test(other); });
  if (rest == others.end()) return {};
  std::string told = fmt::format("{}: {} of them ({})", words, others.end() - rest,
                                 TellOtherValue(rest->label, rest->shown, rest->printed));
  others.erase(rest, others.end());
  return told;
}

std::string TellOther(const OtherValue& other) {
  if (other.isPrinted) return TellOtherValue(other.label, other.shown, other.printed);
  return TellStranger(other.label, other.shown);
}

Misfit FindMicrochipMisfit(const TableBesideReport& table) {
  if (table.rows.empty()) return {};
  const CollectedRow row = table.rows.front();
  const auto facts = ListFacts(table.report);
  std::vector<OtherValue> others;
  for (const pq::ColumnDescription& column : FindTableDescription(table.className)->columns) {
    const std::string shown = row.Get(column.key);
    const auto fact = facts.find(column.label);
    const bool isPrinted = fact != facts.end();
    const std::string printed(isPrinted ? fact->second : std::string_view());
    if (shown != printed) others.push_back({column.label, shown, printed, isPrinted});
  }
  const std::size_t loss = FindLoss(others);
  std::vector<std::string> reasons;
  const auto add = [&](std::string reason) {
    if (!reason.empty()) reasons.push_back(std::move(reason));
  };
  add(TellAlike(
      others, [&](const OtherValue& other) { return other.isPrinted && Loses(other, loss); },
      fmt::format("values begin further left than they are taken from and lose their first {} "
                  "character{}",
                  loss, loss == 1 ? "" : "s")));
  add(TellAlike(others, Gains, "values begin further right than they are taken from"));
  for (const OtherValue& other : others) add(TellOther(other));
  return fmt::format("{}", fmt::join(reasons, "; "));
}

}  // namespace

std::vector<ColumnCheck> ListMicrochipColumnChecks() {
  return {{"PMCINFO", "PMCLINK", "Controller_Config", FindMicrochipMisfit},
          {"PMCVER", "PMCLINK", "Controller_Config", FindMicrochipMisfit}};
}

}  // namespace host
