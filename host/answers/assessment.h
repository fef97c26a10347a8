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

/// Reads the parts and judges them, by the program's own rules unless `options` say otherwise. The
/// collection must be of a known machine. One that the program's own rules cannot judge, such as
/// one that is too large for them, is unknown. With rules of the user's HealthFileError is thrown
/// for one that cannot be asked.
Assessment Assess(const Collection& collection, const HealthOptions& options = {});

}  // namespace host
