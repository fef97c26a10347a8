// The tools' words for the state of a part, in words that are the same for all tools.
#pragma once

#include <string_view>

namespace host {

/// The words of a table's column "condition" for a state in the tool's own word, of any vendor and
/// in any case. A word may carry its progress: "Rebuilding ( 42 % )". No state is "untold", a word
/// that is in no list "unknown".
std::string_view FindDriveCondition(std::string_view state);
std::string_view FindVolumeCondition(std::string_view state);
std::string_view FindCacheBackupCondition(std::string_view state);

}  // namespace host
