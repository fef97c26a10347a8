// The hits of both verdicts.
#pragma once

#include "host/answers/difference/difference.h"
#include "host/answers/difference/side.h"

namespace host {

/// Adds the hits that came, went or changed, the worst first; with `options.parts` those on them.
void CompareFindings(const Sides& sides, const DifferenceOptions& options, Difference& difference);

}  // namespace host
