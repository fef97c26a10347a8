// The files that a recording names. Each is read once, however many members name it.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "host/recording/folder_rules.h"
#include "host/text/bytes.h"

namespace host {

class NamedFiles {
 public:
  explicit NamedFiles(const std::filesystem::path& folder) : rules(folder) {}

  /// The bytes of the file `name`. Throws std::runtime_error with the name in quotes and the
  /// reason.
  Bytes Read(const std::string& name);

 private:
  FolderRules rules;
  std::map<std::string, Bytes> files;  ///< by name
};

}  // namespace host
