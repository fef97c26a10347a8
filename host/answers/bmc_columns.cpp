#include "host/answers/bmc_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>

#include "host/answers/parts/ipmiutil_sensors.h"
#include "host/answers/parts/parts.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/count_text.h"

namespace host {
namespace {

/// Cells are dealt by their count, so that talk before the readings, or cells less in a line, shift
/// all that follow:
///
///   CPU0 Temp        |   47.00 | C | ok |     na |     na |     na |  85.00 |  92.00 | 100.00
///   0001 | Full | Temperature | 01 | P0 Temp | OK | 39.00 C | Thresh ... | Thu Mar  9 06:41:52
///   2023
Misfit FindReadingsMisfit(const TableBesideReport& table) {
  Parts parts;
  SensorReader reader(parts);
  ReportLines lines(table.report);
  for (ReportLine line; lines.Next(line);) reader.TakeReading(line.text, {});
  OtherRows otherRows;
  const std::size_t both = std::min(parts.sensors.size(), table.rows.size());
  for (std::size_t i = 0; i < both; ++i) {
    const std::string shown = table.rows[i].Get("item1");
    const std::string& printed = parts.sensors[i].name;
    if (shown != printed) otherRows.Take(table.rows[i].Number(), "Name", shown, printed);
  }
  std::vector<std::string> reasons;
  if (!otherRows.IsEmpty()) reasons.push_back(otherRows.Tell());
  const std::size_t sensors = parts.sensors.CountAdded();
  if (sensors > 0 && sensors != table.rows.size()) {
    reasons.push_back(fmt::format("its {} are {}", FormatCount(sensors, "sensor"),
                                  FormatCount(table.rows.size(), "row")));
  }
  return fmt::format("{}", fmt::join(reasons, "; "));
}

/// A colon in a value ends it, and begins another fact:
///
///   Built              : 2021-11-03 16:48:05
Misfit FindFactsMisfit(const TableBesideReport& table, std::string_view prefix) {
  if (table.rows.empty()) return {};
  const CollectedRow row = table.rows.front();
  std::string first;
  std::vector<std::string> labels;
  for (int number = 1;; ++number) {
    const std::string key = fmt::format("{}{}", prefix, number);
    const std::string label = row.GetLabel(key);
    if (label.empty()) break;
    const std::string shown = row.Get(key);
    bool isThere = false;
    std::string other;
    ReportLines lines(table.report);
    for (ReportLine line; lines.Next(line);) {
      const auto fact = SplitLabel(line.text, ':');
      if (!fact || fact->label != label) continue;
      isThere = isThere || shown == fact->value;
      if (other.empty()) other = TellOtherValue(label, shown, fact->value);
    }
    if (isThere) continue;
    labels.push_back(label);
    if (first.empty()) first = other;
  }
  return {first, labels};
}

Misfit FindControllerMisfit(const TableBesideReport& table) { return FindFactsMisfit(table, "MC"); }
Misfit FindNetworkMisfit(const TableBesideReport& table) { return FindFactsMisfit(table, "LAN"); }

/// Words of a line without a colon become a label, and those of the next line its value.
Misfit FindSelfTestMisfit(const TableBesideReport& table) {
  if (table.rows.empty()) return {};
  const CollectedRow row = table.rows.front();
  for (const char* key : {"self1", "self2"}) {
    const std::string label = row.GetLabel(key);
    const std::string shown = row.Get(key);
    if (label.empty() || shown.empty()) continue;
    ReportLine line;
    for (ReportLines lines(table.report); lines.Next(line);) {
      if (Trim(line.text) == label) return TellStranger(label, shown);
    }
  }
  return {};
}

Misfit FindVersionsMisfit(const TableBesideReport& table) { return FindFactsMisfit(table, "VER"); }

}  // namespace

std::vector<ColumnCheck> ListBmcColumnChecks() {
  return {{"SENSORINFO", {}, {}, FindReadingsMisfit},
          {"MCINFO", {}, {}, FindControllerMisfit},
          {"VERINFO", {}, {}, FindVersionsMisfit},
          {"LANINFO", {}, {}, FindNetworkMisfit},
          {"SELFINFO", {}, {}, FindSelfTestMisfit}};
}

}  // namespace host
