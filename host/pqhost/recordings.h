// What each of several recordings is called in an answer.
#pragma once

#include <filesystem>
#include <string>

#include "host/database/sql_names.h"
#include "host/recording/find_recordings.h"

namespace host {

/// Names of machines, each given once.
class SourceNames {
 public:
  /// The last name of the path; of a ZIP file and of a result without its extension.
  std::string Take(const std::filesystem::path& path);

 private:
  UniqueNames names;
};

}  // namespace host
