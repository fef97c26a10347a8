// A folder as a ZIP file.
#pragma once

#include <filesystem>
#include <string>

namespace test {

/// The bytes of a ZIP file of all files in `folder`, by name.
std::string ZipFolder(const std::filesystem::path& folder);

}  // namespace test
