// Recordings that a command names, several at a time, and what each is called in its answer.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/database/sql_names.h"

namespace host {

/// The recordings that `paths` name: each is one, a folder or a ZIP file, or a folder of
/// recordings, which come in the order of their names. What is neither is there as it is, so that
/// reading it tells why.
std::vector<std::filesystem::path> FindRecordings(const std::vector<std::filesystem::path>& paths);

/// Names of machines, each given once.
class SourceNames {
 public:
  /// The last name of the path; of a database and a ZIP file without its extension.
  std::string Take(const std::filesystem::path& path);

 private:
  UniqueNames names;
};

}  // namespace host
