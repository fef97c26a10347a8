// Names of a machine that its modules look for, and that have to stay.
#pragma once

#include "host/recorded/recording.h"
#include "host/redact/value_list.h"

namespace host {

/// Keeps the names in paths of files, but for the path of the log folder, which may be elsewhere.
void KeepNames(const Recording& recording, ValueList& values);

}  // namespace host
