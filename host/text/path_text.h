// Paths of this system as text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

/// The path as UTF-8, for messages.
std::string PathText(const std::filesystem::path& path);

/// The path that a UTF-8 text names.
std::filesystem::path PathFromText(std::string_view utf8);

}  // namespace host
