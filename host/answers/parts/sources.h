// Which of the tools' areas could be read.
#pragma once

#include <string>
#include <vector>

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

enum class SourceState {
  kRead,
  /// Asked, and no answer that is understood, or one that ends in an error or is not whole. Some of
  /// it can have been read.
  kFailed,
  kNone,  ///< not on this machine, or not asked
};

/// `observed`: why it is not read.
void AddSource(Parts& parts, std::string id, std::string className, SourceState state,
               std::string observed = {});

/// A source of which no part was read, for the reason that the status of `table` gives; null: the
/// table was not collected.
void AddSourceWithoutParts(Parts& parts, std::string id, std::string className,
                           const CollectedTable* table);

/// What is not known of a source, a clause each, in one text. Of many the first are told.
std::string JoinGaps(const std::vector<std::string>& gaps);

}  // namespace host
