// A collection from options to rows, with what every command wants to know of it: failures, the
// status of each table, progress on a terminal.
#pragma once

#include <functional>
#include <memory>

#include "host/collect/collection.h"
#include "host/pqhost/options.h"
#include "host/pqhost/pqhost.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

struct Gathered {
  std::unique_ptr<Source> source;
  Collection collection;
};

/// Collects what `options` ask for. `beforeRun` is called once nothing can be refused any more and
/// no tool has run; it may add listeners. With `keepLog` the collection keeps the log lines. Throws
/// UsageError, RecordingError or LiveError.
Gathered Gather(const Options& options, const Console& console, bool keepLog,
                const std::function<void(CollectionListeners&)>& beforeRun);

}  // namespace host
