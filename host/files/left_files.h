// The files that a replayed collection left in the recorded log folder, as real files.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "host/text/bytes.h"
#include "host/text/decoder.h"

namespace host {

struct LeftFiles {
  std::size_t written = 0;
  std::vector<std::string> problems;  ///< UTF-8, one line for each file that could not be written
};

/// Writes the files of `files` (Windows path to content) that lie under `logFolder` into `target`,
/// with their folders below it.
LeftFiles WriteLeftFiles(const std::map<std::string, Bytes>& files, const std::string& logFolder,
                         const TextDecoder& decode, const std::filesystem::path& target);

}  // namespace host
