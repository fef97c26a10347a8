// A file that another collection is compared with.
#pragma once

#include <functional>
#include <string>

#include "host/answers/assessment.h"
#include "host/collect/collection.h"
#include "host/pqhost/source.h"
#include "host/program/console.h"

namespace host {

struct ComparedFile {
  std::string name;  ///< of the file, without its folders
  Collection collection;
  Assessment assessment;
};

/// The file `source.replay`, as OpenFile has it. Throws UsageError, also when an answer to a query
/// is in it, or RecordingError.
ComparedFile OpenComparedFile(const SourceOptions& source, const Console& console,
                              const std::function<void()>& beforeRun);

}  // namespace host
