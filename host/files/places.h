// Where paths lead, before anything is written there.
#pragma once

#include <filesystem>

namespace host {

/// Whether `path`, which need not exist, is `folder` or in it: as it is written, or where its links
/// lead.
bool IsInFolder(const std::filesystem::path& path, const std::filesystem::path& folder);

/// Whether both are the same file, or would be once they were made.
bool AreSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

/// The folder for what the program keeps for its user; it need not exist. Empty when the system
/// names none.
std::filesystem::path FindSettingsFolder();

}  // namespace host
