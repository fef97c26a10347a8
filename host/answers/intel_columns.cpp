#include "host/answers/intel_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "host/answers/parts/report_lines.h"
#include "host/catalogue/table_sources.h"

namespace host {
namespace {

/// Compares the rows of the end devices with their records, which are in the same order:
///
///   ID:                     0-0-0-0
///   Size:                   1863 GB
///   Free Size:              0 GB
class DeviceComparison {
 public:
  explicit DeviceComparison(const TableBesideReport& table)
      : table(table), columns(FindTableDescription(table.className)->columns) {}

  std::string FindMisfit() {
    bool inSection = false;
    ReportLines lines(table.report);
    for (ReportLine line; lines.Next(line);) {
      inSection = inSection || line.text.find("END DEVICE") != std::string_view::npos;
      const auto split = SplitLabel(line.text, ':');
      if (inSection && split) Take(*split);
    }
    if (otherRows > 1) firstOther += fmt::format(" ({} rows like that)", otherRows);
    return firstOther;
  }

 private:
  void Take(const LabelledValue& fact) {
    if (fact.label == columns.front().label) {
      ++record;
      rowIsTold = false;
    }
    if (record == 0 || record > table.rows.size() || rowIsTold) return;
    const auto column =
        std::find_if(columns.begin(), columns.end(),
                     [&](const pq::ColumnDescription& known) { return known.label == fact.label; });
    if (column == columns.end()) return;
    const CollectedRow& row = table.rows[record - 1];
    const std::string shown = row.Get(column->key);
    if (shown == fact.value) return;
    rowIsTold = true;
    if (otherRows++ == 0) {
      firstOther =
          fmt::format("row {}: {}", row.Number(), TellOtherValue(column->label, shown, fact.value));
    }
  }

  const TableBesideReport& table;
  const std::vector<pq::ColumnDescription>& columns;
  std::size_t record = 0;  ///< from 1
  bool rowIsTold = false;
  std::size_t otherRows = 0;
  std::string firstOther;
};

std::string FindDeviceMisfit(const TableBesideReport& table) {
  return DeviceComparison(table).FindMisfit();
}

}  // namespace

std::vector<ColumnCheck> ListIntelColumnChecks() {
  return {{"ENDDEVICEINFO", {}, {}, FindDeviceMisfit}};
}

}  // namespace host
