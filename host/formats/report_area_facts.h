// What was found in an area, in a few words: "24 drives: 22 online, 2 failed".
#pragma once

#include <set>
#include <string>
#include <utility>

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"
#include "host/formats/report_areas.h"

namespace host {

using JudgedParts = std::set<std::pair<std::string, std::string>>;  ///< table and id

/// Empty where there are no parts, but for the areas that have none. `judged` are the parts with a
/// finding.
std::string DescribeAreaFact(const ReportArea& area, const Collection& collection,
                             const Parts& parts, const JudgedParts& judged);

}  // namespace host
