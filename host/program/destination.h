// Where a user wants something written.
#pragma once

#include <filesystem>

namespace host {

/// A file, or standard output.
struct Destination {
  std::filesystem::path path = "-";  ///< as on the command line, where - is standard output
  bool IsStandardOutput() const { return path == "-"; }
  /// A file's path leads to the same place from every current folder afterwards.
  void MakeAbsolute() {
    if (!IsStandardOutput()) path = std::filesystem::absolute(path);
  }
};

}  // namespace host
