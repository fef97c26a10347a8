#include "host/answers/intel_columns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>

#include "host/answers/parts/report_lines.h"
#include "host/catalogue/table_sources.h"

namespace host {
namespace {

struct SectionTable {
  std::string_view className;
  std::string_view section;
  std::string_view thing;  ///< of a row, in the plural
  bool isAlwaysThere;      ///< the section, whatever the machine has
};
constexpr SectionTable kSectionTables[] = {
    {"CONTROLLER", "CONTROLLER INFORMATION", "controllers", true},
    {"ARRAY", "ARRAY INFORMATION", "arrays", false},
    {"VOLUME", "VOLUME INFORMATION", "volumes", false},
    {"ENDDEVICEINFO", "END DEVICE INFORMATION", "end devices", true},
};

/// Compares the rows of a table with the records of its sections, which are in the same order:
///
///   --END DEVICE INFORMATION--
///
///   ID:                     0-0-0-0
///   Size:                   1863 GB
///   Free Size:              0 GB
class SectionComparison {
 public:
  SectionComparison(const SectionTable& known, const TableBesideReport& table)
      : known(known), table(table), columns(FindTableDescription(table.className)->columns) {}

  std::string FindIntelMisfit() {
    bool inSection = false;
    ReportLines lines(table.report);
    for (ReportLine line; lines.Next(line);) {
      const std::string_view text = Trim(line.text);
      if (text.starts_with("--")) {
        EndRecord();
        inSection = text.find(known.section) != std::string_view::npos;
        (inSection ? hasSection : hasOthers) = true;
      }
      const auto split = SplitLabel(text, ':');
      if (inSection && split) Take(*split);
    }
    EndRecord();
    return Tell();
  }

 private:
  void Take(const LabelledValue& fact) {
    if (fact.label == columns.front().label) {
      EndRecord();
      ++records;
      rowIsTold = false;
    }
    labels.push_back(fact.label);
    if (records == 0 || records > table.rows.size() || rowIsTold) return;
    const auto column =
        std::find_if(columns.begin(), columns.end(),
                     [&](const pq::ColumnDescription& one) { return one.label == fact.label; });
    if (column == columns.end()) return;
    const CollectedRow row = table.rows[records - 1];
    const std::string shown = row.Get(column->key);
    if (shown == fact.value) return;
    rowIsTold = true;
    otherRows.Take(row.Number(), column->label, shown, fact.value);
  }

  /// What the row has and the record has not was taken from other lines.
  void EndRecord() {
    const bool hasRow = records > 0 && records <= table.rows.size() && !labels.empty();
    for (const pq::ColumnDescription& column : columns) {
      if (!hasRow || rowIsTold || std::ranges::find(labels, column.label) != labels.end()) continue;
      const CollectedRow row = table.rows[records - 1];
      const std::string shown = row.Get(column.key);
      if (shown.empty()) continue;
      rowIsTold = true;
      otherRows.TakeStranger(row.Number(), column.label, shown);
    }
    labels.clear();
  }

  std::string Tell() const {
    std::vector<std::string> reasons;
    if (hasOthers && !hasSection && (known.isAlwaysThere || !table.rows.empty())) {
      reasons.push_back(fmt::format("it has no heading \"--{}--\"", known.section));
    }
    if (!otherRows.IsEmpty()) reasons.push_back(otherRows.Tell());
    if (records > table.rows.size()) {
      reasons.push_back(fmt::format("{} of {} {} are not in the table", records - table.rows.size(),
                                    records, known.thing));
    }
    return fmt::format("{}", fmt::join(reasons, "; "));
  }

  const SectionTable& known;
  const TableBesideReport& table;
  const std::vector<pq::ColumnDescription>& columns;
  std::size_t records = 0;
  std::vector<std::string_view> labels;  ///< of the record
  bool rowIsTold = false;
  OtherRows otherRows;
  bool hasSection = false;
  bool hasOthers = false;
};

Misfit FindIntelMisfit(const TableBesideReport& table) {
  const auto* known =
      std::find_if(std::begin(kSectionTables), std::end(kSectionTables),
                   [&](const auto& one) { return one.className == table.className; });
  return SectionComparison(*known, table).FindIntelMisfit();
}

}  // namespace

std::vector<ColumnCheck> ListIntelColumnChecks() {
  std::vector<ColumnCheck> checks;
  for (const SectionTable& known : kSectionTables) {
    checks.push_back({known.className, {}, {}, FindIntelMisfit});
  }
  return checks;
}

}  // namespace host
