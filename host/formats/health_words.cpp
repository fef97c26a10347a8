#include "host/formats/health_words.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "host/answers/parts/part_names.h"
#include "host/text/count_text.h"

namespace host {

std::string CountBySeverity(const Health& health) {
  std::vector<std::string> counts;
  for (const Severity severity : kWorstFirst) {
    counts.push_back(fmt::format("{} {}", CountFindings(health, severity), GetWord(severity)));
  }
  return fmt::format("{}", fmt::join(counts, ", "));
}

std::string CountChecked(const Health& health) {
  if (health.checked.empty()) return "nothing";
  std::vector<std::string> kinds;
  for (const auto& [table, count] : health.checked) kinds.push_back(CountParts(table, count));
  return fmt::format("{}", fmt::join(kinds, ", "));
}

std::string DescribeSuppression(const HealthHit& hit) {
  if (!hit.suppressed) return {};
  return fmt::format(" (would be {}; suppressed: {})", GetWord(*hit.suppressed), hit.reason);
}

Severity FindWorst(const std::vector<JudgedMachine>& machines) {
  Severity worst = Severity::kNotice;
  for (const JudgedMachine& one : machines) worst = std::max(worst, FindWorst(one.health));
  return worst;
}

std::string CountByVerdict(const std::vector<JudgedMachine>& machines) {
  std::vector<std::string> counts;
  for (const Severity worst : kWorstFirst) {
    counts.push_back(fmt::format("{} {}", CountMachines(machines, worst),
                                 worst == Severity::kNotice ? GetVerdict(worst) : GetWord(worst)));
  }
  return fmt::format("{}: {}", FormatCount(machines.size(), "machine"), fmt::join(counts, ", "));
}

std::size_t CountMachines(const std::vector<JudgedMachine>& machines, Severity worst) {
  return static_cast<std::size_t>(
      std::count_if(machines.begin(), machines.end(),
                    [&](const JudgedMachine& one) { return FindWorst(one.health) == worst; }));
}

std::vector<const JudgedMachine*> SortByVerdict(const std::vector<JudgedMachine>& machines) {
  std::vector<const JudgedMachine*> sorted;
  for (const JudgedMachine& one : machines) sorted.push_back(&one);
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const JudgedMachine* one, const JudgedMachine* other) {
                     return FindWorst(one->health) > FindWorst(other->health);
                   });
  return sorted;
}

}  // namespace host
