// Which of the tools' areas could be read.
#pragma once

#include <string>

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

enum class SourceState {
  kRead,
  kFailed,  ///< asked, and no answer that is understood, or one that ends in an error
  kNone,    ///< not on this machine, or not asked
};

/// `observed`: why it is not read.
void AddSource(Parts& parts, std::string id, std::string className, SourceState state,
               std::string observed = {});

/// A source of which no part was read, for the reason that the status of `table` gives; null: the
/// table was not collected.
void AddSourceWithoutParts(Parts& parts, std::string id, std::string className,
                           const CollectedTable* table);

}  // namespace host
