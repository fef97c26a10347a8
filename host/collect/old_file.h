// A file from before a collection that modules take for a tool's answer.
#pragma once

#include <optional>

#include "host/text/time_text.h"

namespace host {

/// A file that was on the machine before the collection, and that no tool has written since.
struct OldFile {
  /// When it was written. None: nobody knows, and a tool may have written it after all, unless its
  /// output was to go there.
  std::optional<LocalTime> written = {};
};

}  // namespace host
