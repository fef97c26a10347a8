#include "host/formats/report_area_sources.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "host/answers/parts/collected_rows.h"

namespace host {

std::string FindWhyNoLog(std::string_view source, const Collection& collection) {
  if (source == "microchip") {
    const CollectedRows rows(collection);
    const bool hasLog = std::ranges::any_of(rows.ListRows("PMCLINK"), [](const CollectedRow& row) {
      return row.FindText("Controller_Event_Log").has_value();
    });
    return hasLog ? "" : "arcconf left no log of a controller";
  }
  constexpr std::pair<std::string_view, std::string_view> kLogs[] = {
      {"lsi", "EVENTLOG1"}, {"lsi", "FWTERMLOG"}, {"sel", "SELINFO"}, {"sas2", "SAS2IRLOG"}};
  std::string why;
  for (const auto& [id, className] : kLogs) {
    const auto table = std::ranges::find(collection.tables, className, &CollectedTable::className);
    if (id != source || table == collection.tables.end()) continue;
    if (table->status.IsOfAnOutput()) return {};
    if (why.empty()) why = table->status.text;
  }
  return why;
}

bool WasNotAsked(const PartSource& source, const Collection& collection) {
  constexpr std::string_view kNotAsked[] = {"tool missing", "declined", "not this language"};
  if (source.state != "none") return false;
  if (source.observed == "not collected") return true;
  // Its table may have a row all the same; another one then tells the reason.
  return std::ranges::any_of(collection.tables, [&](const CollectedTable& table) {
    if (table.status.missing == source.observed) return true;
    return table.status.text == source.observed &&
           std::ranges::find(kNotAsked, table.status.outcome) != std::end(kNotAsked);
  });
}

}  // namespace host
