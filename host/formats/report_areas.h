// The areas of a machine that the report judges: what was looked at in each, and what was found.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/assessment.h"
#include "host/answers/parts/part_tables.h"
#include "host/collect/collection.h"

namespace host {

/// How something is shown, from the worst to what says nothing.
enum class Tone { kCritical, kWarning, kUnknown, kOk, kAbsent };

Tone GetTone(Severity severity);
/// The class of the page's style: "critical".
const char* GetStyleClass(Tone tone);
/// Shown beside a word, so that nothing is told by its colour alone.
const char* GetSign(Tone tone);
/// "Critical", "Warning", "Not known", "Notice".
const char* NameSeverity(Severity severity);

/// Rows of a table of parts.
struct AreaParts {
  const PartTable* table;
  std::vector<std::size_t> rows;  ///< from 0
};

struct ReportArea {
  std::string_view id;  ///< as rules call it
  std::string_view title;
  Tone tone = Tone::kAbsent;
  /// Could not be asked, or nobody tried; otherwise an absent area is not on the machine.
  bool isNotChecked = false;
  /// There are parts, and one of the sources that could tell of more was not read.
  bool isReadInPart = false;
  std::string mark;  ///< "▲ 2", "✓", "not checked"
  std::string fact;  ///< what was found, in a few words
  std::vector<AreaParts> parts;
};

/// All areas, in the order in which they are shown. `assessment` must outlive the result.
std::vector<ReportArea> ListReportAreas(const Collection& collection, const Assessment& assessment);

/// Where the area comes in that order; what rules of the future may call otherwise comes last.
std::size_t RankReportArea(std::string_view id);

/// Empty for one that the report does not know.
std::string_view FindReportAreaTitle(std::string_view id);

/// Whether the area of networks, which no rule judges, shows the table.
bool IsOfNetwork(const CollectedTable& table);

/// The area that rules put a sensor of this type under.
std::string_view FindSensorArea(const Sensor& sensor);

}  // namespace host
