// Paths of this system as text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

/// The path as one line of UTF-8, for messages: what a terminal would obey, and all that is beyond
/// ASCII in a path that is not UTF-8, becomes "?".
std::string PathText(const std::filesystem::path& path);

/// The path that a UTF-8 text names.
std::filesystem::path PathFromText(std::string_view utf8);

}  // namespace host
