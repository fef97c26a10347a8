// The report's first screen, in plain HTML that reads without scripts: which machine, is it well,
// what to do, and everything by area; and what the report is made of at its foot.
#pragma once

#include <vector>

#include "host/answers/assessment.h"
#include "host/collect/table_view.h"
#include "host/formats/difference/difference_formats.h"
#include "host/formats/html_text.h"
#include "host/formats/report_size.h"

namespace host {

/// The element's text: the worst first, so that many open reports are told apart.
void WriteReportTitle(const Collection& collection, const Assessment* assessment, HtmlWriter& html);

/// Name and facts of the machine, or of an answer.
void WriteReportHeader(const Collection& collection, HtmlWriter& html);

/// The verdict, findings, areas, and the tables of parts. `shown` has one part for each table;
/// `compared` is null where the collection is compared with none.
void WriteReportSummary(const CollectionView& view, const std::vector<ShownPart>& shown,
                        const Assessment& assessment, const NamedDifference* compared,
                        HtmlWriter& html);

/// `assessment` is null for an answer.
void WriteReportFooter(const CollectionView& view, const Assessment* assessment, HtmlWriter& html);

}  // namespace host
