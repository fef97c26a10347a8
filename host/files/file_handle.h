// Files of the system, opened so that nobody else decides which file it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <utility>

namespace host {

/// An open file, closed with the object. Programs that are started do not inherit it. A failed call
/// leaves the reason in errno.
class FileHandle {
 public:
  explicit FileHandle(int descriptor = kClosed) : descriptor(descriptor) {}
  FileHandle(FileHandle&& other) noexcept : descriptor(std::exchange(other.descriptor, kClosed)) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(descriptor, other.descriptor);
    return *this;
  }
  ~FileHandle() { Close(); }

  bool IsOpen() const { return descriptor != kClosed; }
  int Descriptor() const { return descriptor; }

  /// Writes all of `bytes`.
  bool Write(std::string_view bytes);
  /// Reads until `size` bytes or the end; how many.
  std::size_t Read(char* bytes, std::size_t size) const;
  /// The same from `offset` on; where Read() goes on afterwards is not settled.
  std::size_t ReadAt(std::uint64_t offset, char* bytes, std::size_t size) const;
  /// In bytes.
  std::uint64_t Size() const;
  bool Close();

 private:
  static constexpr int kClosed = -1;

  int descriptor;
};

enum class Readers {
  kOwner,          ///< on Windows those of the folder, which is the owner's where it should be
  kOwnerAnywhere,  ///< the owner alone, whatever the folder is
  kAsUsual,
};

/// Makes a file that nobody has made before, not even as a link to somewhere else.
FileHandle CreateNewFile(const std::filesystem::path& path, Readers readers);

/// Empties a plain file, or makes it, for its owner alone; refuses a link. Devices and pipes are
/// opened as they are.
FileHandle OpenToOverwrite(const std::filesystem::path& path);

/// Opens a plain file to read it; anything else is refused, without waiting for a pipe's writer.
/// Throws std::runtime_error with the reason alone.
FileHandle OpenToRead(const std::filesystem::path& path);

/// Where an open file really is: its path without links. Empty when the system cannot tell. `path`
/// is what it was opened by.
std::filesystem::path FindRealPath(const FileHandle& file, const std::filesystem::path& path);

/// Whether others than this user and the system's administrators may read or change an open file,
/// or own it; also when the system does not tell.
bool IsOpenToOthers(const FileHandle& file);

/// Where a folder really is.
std::filesystem::path FindRealFolder(const std::filesystem::path& folder);

/// Gives `file`, which is to replace `replaced`, its mode and owner, as far as the system lets us.
void CopyAccess(const std::filesystem::path& replaced, const FileHandle& file);

}  // namespace host
