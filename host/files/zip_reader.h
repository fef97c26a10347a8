// Reads a ZIP file that a stranger sent: what two programs could read in two ways is refused.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <variant>

#include "host/files/file_handle.h"

namespace host {

/// A file in a ZIP file.
struct ZipEntry {
  std::uint64_t headAt = 0;  ///< where in the ZIP file its head begins
  std::uint64_t bytesAt = 0;
  std::uint64_t packedSize = 0;
  std::uint64_t size = 0;  ///< unpacked, and what reading it takes in memory
  std::uint32_t crc = 0;
  bool isDeflated = false;
};

/// A ZIP file, on the disk or in memory.
class ZipBytes {
 public:
  explicit ZipBytes(FileHandle file) : place(std::move(file)) {}
  explicit ZipBytes(std::string bytes) : place(std::move(bytes)) {}

  std::uint64_t Size() const;
  /// `size` bytes from `offset` on; fewer where it ends, or cannot be read.
  std::string Read(std::uint64_t offset, std::uint64_t size) const;

 private:
  std::variant<FileHandle, std::string> place;
};

/// Files are stored or deflated; their names are plain in every part (plain_name.h), of printable
/// ASCII, and differ in more than case. Heads and bytes of the files, in any order, fill the ZIP
/// file up to its directory, with nothing between them, and agree with it. Not taken are ZIP64,
/// encryption, links, comments and whatever else hides data.
///
/// Errors are std::runtime_error with the reason and a remedy in one line of ASCII, without the
/// file's name.
class ZipReader {
 public:
  /// Reads the directory and all heads. Throws when there are more than `mostFiles`, folders
  /// included.
  ZipReader(ZipBytes file, std::uint64_t mostFiles);
  ZipReader(FileHandle file, std::uint64_t mostFiles)
      : ZipReader(ZipBytes(std::move(file)), mostFiles) {}

  /// By name, with "/" after each folder. Folders are left out.
  const std::map<std::string, ZipEntry>& Entries() const { return entries; }

  /// The bytes of a file of Entries(). Throws when they are not as the directory says.
  std::string Read(const ZipEntry& entry) const;

 private:
  ZipBytes file;
  std::map<std::string, ZipEntry> entries;
};

}  // namespace host
