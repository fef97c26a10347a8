// The parts of a machine in JSON (docs/json.md).
#pragma once

#include "host/answers/parts/part_tables.h"
#include "host/formats/json_buffer.h"

namespace host {

/// Appends a member for each kind of part, flushed part by part.
void AppendJsonParts(const Parts& parts, JsonBuffer& json);

}  // namespace host
