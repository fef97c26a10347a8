// Parts by identity: what came, went, moved, was replaced or changed.
#pragma once

#include "host/answers/difference/difference.h"
#include "host/answers/difference/side.h"

namespace host {

/// Adds to the difference's parts, in the order of the part tables, and to what is not compared.
void CompareParts(const Sides& sides, const DifferenceOptions& options, Difference& difference);

}  // namespace host
