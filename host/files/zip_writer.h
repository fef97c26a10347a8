// Writes a ZIP file.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

namespace host {

/// The same files in the same order give the same bytes: no time is kept, and a file is packed only
/// where that makes it smaller. Whoever unpacks them is the only one who may read them.
class ZipWriter {
 public:
  /// Writes to `out` from its place on, which is the start of the ZIP file.
  explicit ZipWriter(std::ostream& out) : out(out) {}

  /// Adds the file `name`: names as ZipReader takes them, each once. Throws std::runtime_error when
  /// a ZIP file has no room for it. A failed write is left to the stream.
  void Add(std::string_view name, std::string_view bytes);
  /// Writes the directory; nothing can be added afterwards.
  void Complete();

 private:
  std::ostream& out;
  std::string directory;
  std::uint64_t written = 0;
  std::uint16_t count = 0;
};

}  // namespace host
