// Which files a recording may name: those in its folder.
#pragma once

#include <filesystem>
#include <string>

#include "host/files/file_handle.h"

namespace host {

class FolderRules {
 public:
  /// `folder` exists.
  explicit FolderRules(std::filesystem::path folder);

  /// The path of the file `name` (UTF-8, with "/"), whether there is one or not. Throws
  /// std::runtime_error when the name leaves the folder.
  std::filesystem::path ResolveName(const std::string& name) const;

  /// Opens the plain file `path`. Throws std::runtime_error with the reason alone, also when the
  /// file that was opened turns out to be outside the folder.
  FileHandle Open(const std::filesystem::path& path) const;

 private:
  std::filesystem::path folder;
  std::filesystem::path realFolder;  ///< without links
};

}  // namespace host
