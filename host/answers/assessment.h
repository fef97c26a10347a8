// What follows from a collection: the parts of its machine, and whether it is well.
#pragma once

#include "host/answers/health/health.h"
#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

struct Assessment {
  Parts parts;
  Health health;
};

/// Reads the parts and judges them by the program's own rules, as of when the collection was made.
/// The collection must be of a known machine. One that these rules cannot judge, such as one that
/// is too large for them, is unknown.
Assessment Assess(const Collection& collection);
/// The same for one of many, by the rules of `judge`. If there are rules of the user's among them,
/// throws HealthFileError for one that cannot be asked.
Assessment Assess(const Collection& collection, HealthJudge& judge);

}  // namespace host
