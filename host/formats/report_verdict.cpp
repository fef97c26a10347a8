#include "host/formats/report_verdict.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cstddef>

#include "host/answers/parts/part_names.h"
#include "host/formats/health_words.h"
#include "host/formats/report_size.h"
#include "host/text/count_text.h"

namespace host {
namespace {

Tone FindVerdictTone(const Health& health) {
  const Severity worst = health.worst.value_or(Severity::kNotice);
  return worst == Severity::kNotice ? Tone::kOk : GetTone(worst);
}

std::size_t CountAreas(const std::vector<ReportArea>& areas, bool (*fits)(const ReportArea&)) {
  return static_cast<std::size_t>(std::ranges::count_if(areas, fits));
}

/// What was looked at.
std::string DescribeChecked(const Health& health) {
  if (health.checked.empty()) return "Nothing that could be judged was read.";
  std::vector<std::string> kinds;
  for (const auto& [table, count] : health.checked) {
    kinds.push_back(fmt::format("{} {}", NameParts(table, 0), count));
  }
  return fmt::format("Looked at: {}.", fmt::join(kinds, ", "));
}

}  // namespace

std::string_view NameReportVerdict(const Health& health) {
  constexpr std::array<std::string_view, 4> kNames{"Nothing found", "Not known", "Needs attention",
                                                   "Act now"};
  return kNames[static_cast<std::size_t>(health.worst.value_or(Severity::kNotice))];
}

std::string CountAlarms(const Health& health) {
  std::vector<std::string> counts;
  const auto add = [&](Severity severity, const char* one, const char* many) {
    const std::size_t count = CountFindings(health, severity);
    if (count > 0) counts.push_back(fmt::format("{} {}", count, count == 1 ? one : many));
  };
  add(Severity::kCritical, "critical", "critical");
  add(Severity::kWarning, "warning", "warnings");
  add(Severity::kUnknown, "not known", "not known");
  return fmt::format("{}", fmt::join(counts, ", "));
}

void WriteReportVerdict(const Health& health, const std::vector<const HealthFinding*>& findings,
                        const std::vector<ReportArea>& areas, HtmlWriter& html) {
  const Tone tone = FindVerdictTone(health);
  const std::size_t well =
      CountAreas(areas, [](const ReportArea& a) { return a.tone == Tone::kOk; });
  const std::size_t partly = CountAreas(areas, [](const ReportArea& a) { return a.isReadInPart; });
  const std::size_t open = CountAreas(areas, [](const ReportArea& a) { return a.isNotChecked; });
  html.Add("<section class=\"verdict ").Text(GetStyleClass(tone));
  html.Add("\" id=\"verdict\" aria-label=\"Verdict\"><span class=\"sign\" aria-hidden=\"true\">");
  html.Text(GetSign(tone)).Add("</span><div><h2>");
  if (tone == Tone::kOk) {
    html.Text(fmt::format("Nothing found in {} of {} areas", well, well + partly + open));
    if (partly > 0) html.Text(fmt::format("; {} could be read in part", partly));
    if (open > 0) html.Text(fmt::format("; {} could not be asked", open));
  } else {
    html.Text(NameReportVerdict(health)).Add(": ");
    html.ShortText(findings.front()->hits.front().text, kWidestReportText);
  }
  html.Add("</h2><p>");
  if (tone == Tone::kOk) {
    html.Text(DescribeChecked(health));
  } else {
    html.Text(CountAlarms(health)).Add("; ");
    html.Text(FormatCount(well, "area")).Add(" without a finding");
    if (partly > 0) html.Add(", ").Number(partly).Add(" read in part");
    if (open > 0) html.Add(", ").Number(open).Add(" not checked");
    html.Add(". Every finding opens to what it was read from.");
  }
  html.Add("</p></div></section>");
}

}  // namespace host
