// Hits joined to findings.
#pragma once

#include <vector>

#include "host/answers/health/health.h"

namespace host {

/// Hits on one part, and hits of which one is the cause of the other, are one finding. Its title is
/// what a person acts on: an alarm rather than a notice, what is rather than what was, the cause
/// rather than what follows, of these the worst, and of those the rule that comes first.
std::vector<HealthFinding> JoinFindings(std::vector<HealthHit> hits);

}  // namespace host
