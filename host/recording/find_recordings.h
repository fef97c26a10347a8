// Recordings by the paths that a user names, several at a time.
#pragma once

#include <filesystem>
#include <vector>

namespace host {

/// Whether there is a file of that name, and it says that it is a ZIP file.
bool IsZipFile(const std::filesystem::path& path);

/// The recordings that `paths` name: each is one, a folder or a ZIP file, or a folder of
/// recordings, which come in the order of their names. What is neither is there as it is, so that
/// reading it tells why.
std::vector<std::filesystem::path> FindRecordings(const std::vector<std::filesystem::path>& paths);
/// The same, with the other folders in a folder of recordings that are not empty nor hidden: what
/// is in them may be half of a recording.
std::vector<std::filesystem::path> FindRecordingsAndRests(
    const std::vector<std::filesystem::path>& paths);

}  // namespace host
