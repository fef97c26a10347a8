// A collection from options to rows, with everything that commands tell of it: failures, the status
// of each table, progress on a terminal.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/collect/collection.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

/// The modules and tables that a user wants, in the order named; empty: all.
struct SelectionOptions {
  std::vector<std::string> modules;
  std::vector<std::string> tables;
};

struct Gathered {
  std::unique_ptr<Source> source;
  Collection collection;
};

/// Collects what `wanted` selects from `from`. `beforeRun` is called once nothing can be refused
/// any more and no tool has run; it may add listeners. With `keepLog` the collection keeps the log
/// lines. Throws UsageError, RecordingError or LiveError.
Gathered Gather(const SourceOptions& from, const SelectionOptions& wanted, const Console& console,
                bool keepLog, const std::function<void(CollectionListeners&)>& beforeRun);

}  // namespace host
