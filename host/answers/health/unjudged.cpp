#include "host/answers/health/unjudged.h"

#include <utility>

#include "host/answers/health/findings.h"

namespace host {

Health MakeUnjudged(const std::string& reason) {
  HealthHit hit;
  hit.rule = "collection.not-judged";
  hit.severity = Severity::kUnknown;
  hit.part = "sources";
  hit.id = "all";
  hit.observed = reason;
  hit.text = "Read or collect this machine again: " + reason;
  hit.area = "collection";
  hit.why = "What nobody has looked at may be well or not.";
  hit.next = "Send the recording again, or collect again.";
  Health health;
  health.worst = hit.severity;
  health.findings = JoinFindings({std::move(hit)});
  return health;
}

}  // namespace host
