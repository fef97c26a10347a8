#include "host/answers/health/findings.h"

#include <algorithm>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "host/text/numbered_text.h"

namespace host {
namespace {

/// Sets of ids that belong together.
class Clusters {
 public:
  void Join(const std::string& one, const std::string& other) {
    const std::string first = FindRoot(one);
    const std::string second = FindRoot(other);
    if (first != second) parent[std::max(first, second)] = std::min(first, second);
  }

  std::string FindRoot(const std::string& id) {
    std::string root = id;
    for (auto at = parent.find(root); at != parent.end(); at = parent.find(root)) {
      root = at->second;
    }
    if (root != id) parent[id] = root;
    return root;
  }

 private:
  std::map<std::string, std::string> parent;
};

/// Less is nearer to the title.
using Rank = std::tuple<bool, bool, bool, int, std::size_t, const std::string&, NumberedText,
                        const std::string&>;
Rank RankForTitle(const HealthHit& hit) {
  return {hit.severity == Severity::kNotice,
          hit.isOfLog,
          !hit.because.empty(),
          -static_cast<int>(hit.severity),
          hit.ruleNumber,
          hit.part,
          {hit.id},
          hit.observed};
}

bool ComesFirst(const HealthHit& one, const HealthHit& other) {
  return RankForTitle(one) < RankForTitle(other);
}

}  // namespace

std::vector<HealthFinding> JoinFindings(std::vector<HealthHit> hits) {
  Clusters clusters;
  for (const HealthHit& hit : hits) {
    for (const std::string& cause : hit.because) clusters.Join(hit.id, cause);
  }
  std::map<std::string, HealthFinding> joined;
  for (HealthHit& hit : hits) {
    HealthFinding& finding = joined[clusters.FindRoot(hit.id)];
    finding.severity = std::max(finding.severity, hit.severity);
    finding.hits.push_back(std::move(hit));
  }
  std::vector<HealthFinding> findings;
  for (auto& [root, finding] : joined) {
    std::sort(finding.hits.begin(), finding.hits.end(), ComesFirst);
    finding.key = finding.hits.front().rule + " " + finding.hits.front().id;
    findings.push_back(std::move(finding));
  }
  std::stable_sort(findings.begin(), findings.end(),
                   [](const HealthFinding& one, const HealthFinding& other) {
                     if (one.severity != other.severity) return one.severity > other.severity;
                     return ComesFirst(one.hits.front(), other.hits.front());
                   });
  return findings;
}

}  // namespace host
