#include "host/formats/report_summary.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>

#include "host/answers/tool_versions.h"
#include "host/formats/difference/report_changes.h"
#include "host/formats/machine_summary.h"
#include "host/formats/report_area_sections.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_evidence.h"
#include "host/formats/report_findings.h"
#include "host/formats/report_parts.h"
#include "host/formats/report_size.h"
#include "host/formats/report_verdict.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

/// All that the summary links to.
std::vector<Place> ListSummaryPlaces(const ReportParts& parts,
                                     const std::vector<const HealthFinding*>& findings) {
  std::vector<Place> places = parts.ListPlaces();
  for (const HealthFinding* finding : findings) {
    for (const HealthHit& hit : finding->hits) places.push_back(hit.place);
  }
  return places;
}

void WriteFact(std::string_view name, std::string_view value, HtmlWriter& html) {
  if (value.empty()) return;
  constexpr std::size_t kWidestFact = 200;
  html.Add("<div><dt>")
      .Text(name)
      .Add("</dt><dd>")
      .ShortText(value, kWidestFact)
      .Add("</dd></div>");
}

}  // namespace

void WriteReportTitle(const Collection& collection, const Assessment* assessment,
                      HtmlWriter& html) {
  const std::string name = NameMachine(collection);
  if (assessment == nullptr) {
    html.ShortText(name, kWidestReportText).Add(" – server report");
    return;
  }
  const std::string counts = CountAlarms(assessment->health);
  html.Text(counts.empty() ? std::string(NameReportVerdict(assessment->health)) : counts);
  html.Add(" – ").ShortText(name, kWidestReportText);
}

void WriteReportHeader(const Collection& collection, HtmlWriter& html) {
  html.Add("<header class=\"page\"><h1>").ShortText(NameMachine(collection), kWidestReportText);
  html.Add("</h1>");
  html.Add("<dl class=\"facts\">");
  for (const auto& [name, value] : ListMachineFacts(collection)) WriteFact(name, value, html);
  const auto& recordedAt = collection.machine.recordedAt;
  html.Add("</dl><div class=\"tools\" id=\"tools\"");
  if (collection.machineIsKnown && recordedAt) {
    html.Add(" data-recorded=\"").Text(FormatIsoTime(*recordedAt)).Add("\"");
  }
  html.Add("></div></header>");
}

void WriteReportSummary(const CollectionView& view, const std::vector<ShownPart>& shown,
                        const Assessment& assessment, const NamedDifference* compared,
                        HtmlWriter& html) {
  const Health& health = assessment.health;
  const std::vector<ReportArea> areas = ListReportAreas(view.GetCollection(), assessment);
  const std::vector<const HealthFinding*> findings = SortReportFindings(health);
  std::optional<ReportChanges> changes;
  if (compared != nullptr) changes.emplace(compared->difference);
  const ReportParts parts(assessment, areas, changes ? &*changes : nullptr);
  const EvidenceIndex evidence(view, shown, ListSummaryPlaces(parts, findings));

  WriteReportVerdict(health, findings, areas, html);
  if (compared != nullptr) {
    const auto findAddress = [&](std::string_view table, const std::string& id) {
      return parts.FindRowId(table, id);
    };
    WriteChangesSection(*compared, findAddress, html);
  }
  WriteReportFindings(findings, {assessment.parts, parts, evidence}, html);
  WriteAreaTiles(view.GetCollection(), areas, html);
  WriteAreaSections(view, areas, parts, evidence, html);
}

void WriteReportFooter(const CollectionView& view, const Assessment* assessment, HtmlWriter& html) {
  const Collection& collection = view.GetCollection();
  html.Add("<footer>");
  if (assessment != nullptr) {
    const MachineFacts& machine = collection.machine;
    html.Add("<h2>About this report</h2><dl class=\"facts\">");
    WriteFact("From", machine.recorded ? "a recording" : "this machine, live", html);
    WriteFact("Judged as of",
              fmt::format("{} ({})", assessment->health.asOf, assessment->health.asOfFrom), html);
    WriteFact("Language", std::to_string(machine.languageId), html);
    WriteFact("Code page", std::to_string(machine.PrintedCodePage()), html);
    WriteFact("Host program", view.HostExecutable(), html);
    for (const ToolVersion& tool : FindToolVersions(collection)) {
      WriteFact(tool.tool, view.Excerpt(tool.version), html);
    }
    html.Add("</dl>");
  }
  html.Add("<p>Made ").Text(FormatTimeForPeople(collection.collected)).Add(" by pqhost ");
  html.Text(kVersion).Add(".</p></footer>");
}

}  // namespace host
