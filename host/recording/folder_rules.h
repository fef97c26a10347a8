// Which files a recording may name: those in its folder.
#pragma once

#include <filesystem>
#include <string>

namespace host {

class FolderRules {
 public:
  /// `folder` exists.
  explicit FolderRules(std::filesystem::path folder);

  /// The path of the file `name` (UTF-8, with "/"), whether there is one or not. Throws
  /// std::runtime_error when the name, or a link that it leads to, leaves the folder.
  std::filesystem::path ResolveName(const std::string& name) const;

 private:
  std::filesystem::path folder;
  std::filesystem::path realFolder;  ///< without links
};

}  // namespace host
