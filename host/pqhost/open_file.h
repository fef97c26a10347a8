// Any file that this program wrote, as the collection that is in it.
#pragma once

#include <functional>

#include "host/collect/collect.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

/// What is in the file `source.replay`: a recording, which is collected once more, or a result, of
/// which a line on standard error says what it does not have. `beforeRun` is called once the file
/// can be read. Throws UsageError or RecordingError.
Collection OpenFile(const SourceOptions& source, const Console& console, KeepLog keepLog,
                    const std::function<void()>& beforeRun);

}  // namespace host
