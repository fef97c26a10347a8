// The first answer of the report: is the machine well.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/answers/assessment.h"
#include "host/formats/html_text.h"
#include "host/formats/report_areas.h"

namespace host {

/// The words of the verdict, which are the report's alone: "Needs attention".
std::string_view NameReportVerdict(const Health& health);

/// "1 critical, 4 warnings, 2 not known"; empty without findings.
std::string CountAlarms(const Health& health);

/// The verdict as a section, with what it rests on. `findings` are those of `health`, the worst
/// first.
void WriteReportVerdict(const Health& health, const std::vector<const HealthFinding*>& findings,
                        const std::vector<ReportArea>& areas, HtmlWriter& html);

}  // namespace host
