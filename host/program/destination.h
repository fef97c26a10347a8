// Where a user wants something written.
#pragma once

#include <filesystem>

namespace host {

/// Stands for standard output, or standard input, on the command line.
inline constexpr char kStandardStream[] = "-";

/// A file, or standard output.
struct Destination {
  std::filesystem::path path = kStandardStream;  ///< as on the command line
  bool IsStandardOutput() const { return path == kStandardStream; }
  /// A file's path leads to the same place from every current folder afterwards.
  void MakeAbsolute() {
    if (!IsStandardOutput()) path = std::filesystem::absolute(path);
  }
};

}  // namespace host
