#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/formats/health_formats.h"
#include "host/formats/health_words.h"
#include "host/text/ascii.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

/// Without what separates the performance data, in one line.
std::string MakePlain(std::string_view text) {
  std::string plain = EscapeControls(text);
  std::replace(plain.begin(), plain.end(), '|', '/');
  return plain;
}

/// What alarms, in one line; without anything what was looked at.
std::string TellAlarms(const Health& health) {
  std::vector<std::string> titles;
  for (const HealthFinding& finding : health.findings) {
    if (finding.severity != Severity::kNotice) titles.push_back(finding.hits.front().text);
  }
  return titles.empty() ? "checked " + CountChecked(health)
                        : fmt::format("{}", fmt::join(titles, "; "));
}

}  // namespace

void WriteHealthNagios(const Health& health, std::ostream& out) {
  out << GetVerdict(health) << " - " << MakePlain(TellAlarms(health)) << " |";
  for (const Severity severity : kWorstFirst) {
    out << ' ' << GetWord(severity) << '=' << CountFindings(health, severity);
  }
  out << '\n';
  for (const HealthFinding& finding : health.findings) {
    const HealthHit& title = finding.hits.front();
    out << GetWord(finding.severity) << ": " << MakePlain(title.text + DescribeSuppression(title))
        << '\n';
    for (const HealthHit& hit : finding.hits) {
      out << "  " << MakePlain(fmt::format("{}, {}: {}", hit.rule, hit.id, hit.observed)) << '\n';
    }
  }
}

void WriteHealthNagios(const std::vector<JudgedMachine>& machines, std::ostream& out) {
  const std::vector<const JudgedMachine*> sorted = SortByVerdict(machines);
  const Severity worst = FindWorst(machines);
  out << GetVerdict(worst) << " - " << CountByVerdict(machines);
  // Pagers show no more than this line.
  if (worst != Severity::kNotice) {
    const JudgedMachine& first = *sorted.front();
    out << "; "
        << MakePlain(fmt::format("{}: {}", first.machine,
                                 first.health.findings.front().hits.front().text));
  }
  out << " |";
  for (const Severity severity : kWorstFirst) {
    out << " machines_" << LowerCase(GetVerdict(severity)) << '='
        << CountMachines(machines, severity);
  }
  out << '\n';
  for (const JudgedMachine* one : sorted) {
    out << GetVerdict(one->health) << " - "
        << MakePlain(fmt::format("{}: {}", one->machine, TellAlarms(one->health))) << '\n';
  }
}

}  // namespace host
