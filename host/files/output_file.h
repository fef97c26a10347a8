// A result file that is either whole or not there.
#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>

namespace host {

/// Written beside its final place and renamed when it is complete; an interrupted or failed run
/// leaves the old file alone. Until something is written, there is no file and nothing open. A
/// device or a named pipe is written to directly.
class OutputFile {
 public:
  /// Throws UsageError when it cannot be created.
  explicit OutputFile(std::filesystem::path path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  /// Removes what was written unless Complete() succeeded.
  ~OutputFile();

  /// Throws std::runtime_error when the file cannot be created any more.
  std::ostream& Stream();
  /// Closes the file and puts it in its place. Throws std::runtime_error when it could not be
  /// written.
  void Complete();

 private:
  bool Open();

  std::filesystem::path path;     ///< as given
  std::filesystem::path target;   ///< where the links of `path` lead
  std::filesystem::path partial;  ///< empty when written to directly
  std::ofstream stream;
  bool complete = false;
};

}  // namespace host
