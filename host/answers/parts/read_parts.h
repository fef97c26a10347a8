// The parts of a machine, read from its collection.
#pragma once

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

/// Reads what the tools printed: reports that the tables carry whole, or rows where a table has
/// nothing else. It never fails: what cannot be read is in `unread`, and what could not be asked in
/// `sources`.
Parts ReadParts(const Collection& collection);

}  // namespace host
