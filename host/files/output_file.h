// A result file that is either whole or not there.
#pragma once

#include <filesystem>
#include <optional>
#include <ostream>

#include "host/files/file_stream.h"
#include "host/files/partial_file.h"

namespace host {

/// Written beside its final place and renamed when it is complete; an interrupted or failed run
/// leaves the old file alone. An old file keeps its mode and owner. A device or a named pipe is
/// written to directly.
class OutputFile {
 public:
  /// `readers` are those of a new file. Throws UsageError when it cannot be created, and for a link
  /// to a file: whoever made it would choose what is replaced.
  explicit OutputFile(const std::filesystem::path& path, Readers readers = Readers::kAsUsual);

  std::ostream& Stream() { return stream; }
  /// Closes the file and puts it in its place. Throws std::runtime_error when it could not be
  /// written.
  void Complete();

 private:
  std::filesystem::path path;
  std::optional<PartialFile> partial;  ///< none when written to directly
  FileStream stream;                   ///< closed before the partial file is removed
};

/// Throws UsageError when `path` is a link that leads to a file, or to nothing.
void RefuseLink(const std::filesystem::path& path);

}  // namespace host
