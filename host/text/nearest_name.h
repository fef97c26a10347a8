// Guessing what was meant by a mistyped name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The one of `names` that `typed` comes nearest to, compared without case; empty when none is near
/// enough to be a slip of the finger.
std::string FindNearestName(std::string_view typed, const std::vector<std::string>& names);

/// "; did you mean NAME?" with that name, or nothing.
std::string SuggestName(std::string_view typed, const std::vector<std::string>& names);

}  // namespace host
