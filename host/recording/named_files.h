// The files that a recording names. Each is read once, however many members name it.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "host/recording/folder_rules.h"

namespace host {

class NamedFiles {
 public:
  explicit NamedFiles(const std::filesystem::path& folder) : rules(folder) {}

  /// The bytes of the file `name`. Throws std::runtime_error with the name in quotes and the
  /// reason.
  std::shared_ptr<const std::string> Read(const std::string& name);

 private:
  FolderRules rules;
  std::map<std::string, std::shared_ptr<const std::string>> files;  ///< by name
};

}  // namespace host
