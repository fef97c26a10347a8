// Everything by area: a tile for each one, and below them a section for each that has more to show.
#pragma once

#include <vector>

#include "host/collect/table_view.h"
#include "host/formats/html_text.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_evidence.h"
#include "host/formats/report_parts.h"

namespace host {

/// Each tile leads to its area's section, as far as there is one.
void WriteAreaTiles(const Collection& collection, const std::vector<ReportArea>& areas,
                    HtmlWriter& html);

/// The areas with what was collected of them: `tables`, failures, and tables without a rule.
void WriteAreaSections(const CollectionView& view, const std::vector<ReportArea>& areas,
                       const ReportParts& tables, const EvidenceIndex& evidence, HtmlWriter& html);

}  // namespace host
