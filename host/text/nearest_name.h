// Guesses which name a mistyped one was meant to be.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The one of `names` that is nearest to `typed`, compared without case; empty when none is near
/// enough for a slip of the finger.
std::string FindNearestName(std::string_view typed, const std::vector<std::string>& names);

/// "; did you mean NAME?" with that name; empty when there is none.
std::string SuggestName(std::string_view typed, const std::vector<std::string>& names);

}  // namespace host
