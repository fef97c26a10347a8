// The joined tables of the report: what is true of the machine, area by area, in plain HTML that
// reads without scripts. Cells that a finding was read from are marked.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/assessment.h"
#include "host/formats/difference/report_changes.h"
#include "host/formats/html_text.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_evidence.h"

namespace host {

class ReportParts {
 public:
  /// `changes`: what the tables mark as changed; null: nothing. All must outlive the object.
  ReportParts(const Assessment& assessment, const std::vector<ReportArea>& areas,
              const ReportChanges* changes);

  /// The id of the part's row in the page; empty when it has none.
  std::string FindRowId(std::string_view table, const std::string& id) const;

  /// The places that the tables link to.
  std::vector<Place> ListPlaces() const;

  void WriteArea(const ReportArea& area, const EvidenceIndex& evidence, HtmlWriter& html) const;

 private:
  using PartKey = std::pair<std::string, std::string>;  ///< table and id

  std::vector<std::size_t> ChooseRows(const AreaParts& list) const;
  void WriteTable(const ReportArea& area, const AreaParts& list, const EvidenceIndex& evidence,
                  HtmlWriter& html) const;
  void WriteRow(const PartTable& table, std::size_t row,
                const std::vector<const PartColumn*>& columns, const EvidenceIndex& evidence,
                HtmlWriter& html) const;
  void WriteCell(const PartTable& table, const Part& part, const PartColumn& column,
                 HtmlWriter& html) const;
  /// The worst hit that was read from this cell, or null.
  const HealthHit* FindHit(const PartTable& table, const Part& part,
                           const PartColumn& column) const;

  const Assessment& assessment;
  const ReportChanges* changes;
  std::map<PartKey, std::vector<const HealthHit*>> hits;
  std::map<const PartTable*, std::set<std::size_t>> shownRows;
  std::map<PartKey, std::string> rowIds;
  std::map<std::string, std::string> arrays;  ///< the names of a group's volumes
};

}  // namespace host
