// The one way to collect: from a machine to a finished collection. It knows no options, no console
// and no signal, and can be used many times and on several threads of a process.
#pragma once

#include <vector>

#include "host/collect/collection.h"
#include "host/collect/collection_listener.h"
#include "host/collect/selection.h"
#include "host/collect/source.h"
#include "host/recorded/recording.h"

namespace host {

enum class KeepLog { kNo, kYes };

/// Uses the selected modules: for each table first its layout, then its enumeration. Classes that
/// came from a module without being registered become tables after the module's own, unless tables
/// were named. `listener` follows all of it. Throws UsageError when `selection` names something
/// that does not exist; nothing was begun then.
Collection Collect(Source& source, const Selection& selection, CollectionListener& listener,
                   KeepLog keepLog = KeepLog::kNo);

/// The same with the linked-in modules on a recorded machine.
Collection Collect(const Recording& recording, const Selection& selection,
                   CollectionListener& listener, KeepLog keepLog = KeepLog::kNo);
Collection Collect(const Recording& recording, const Selection& selection = {});

}  // namespace host
