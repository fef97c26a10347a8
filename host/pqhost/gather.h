// A collection from a command's options, with progress on a terminal and an early end on Ctrl-C.
#pragma once

#include <functional>
#include <memory>

#include "host/collect/collect.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"
#include "host/program/interruption.h"

namespace host {

struct Gathered {
  /// The first Ctrl-C ends no program whose results are not written.
  std::unique_ptr<InterruptionWatch> interruption;
  std::unique_ptr<CommandSource> source;
  Collection collection;
};

/// Collects what `selection` names from `from`. `beforeRun` is called once nothing can be refused
/// any more and no tool has run; it may add listeners. Throws UsageError, RecordingError or
/// LiveError.
Gathered Gather(const SourceOptions& from, const Selection& selection, const Console& console,
                KeepLog keepLog, const std::function<void(CollectionListeners&)>& beforeRun);

}  // namespace host
