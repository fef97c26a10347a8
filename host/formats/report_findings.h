// The findings of the report: what is wrong, what it was read from, and what to do.
#pragma once

#include <vector>

#include "host/answers/assessment.h"
#include "host/formats/html_text.h"
#include "host/formats/report_evidence.h"
#include "host/formats/report_parts.h"

namespace host {

/// The worst first, then by area; a notice never alarms and comes last.
std::vector<const HealthFinding*> SortReportFindings(const Health& health);

/// What findings refer to.
struct FindingSources {
  const Parts& parts;         ///< whose logs tell of the parts
  const ReportParts& tables;  ///< of the page, where the parts are
  const EvidenceIndex& evidence;
};

/// The section "What is wrong", with `findings` in their order.
void WriteReportFindings(const std::vector<const HealthFinding*>& findings,
                         const FindingSources& sources, HtmlWriter& html);

}  // namespace host
