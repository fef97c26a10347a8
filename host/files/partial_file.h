// Files that are not complete yet.
#pragma once

#include <filesystem>

#include "host/files/file_handle.h"

namespace host {

/// A new file beside `target`, under a name of its own. It is removed with the object, and by
/// RemovePartialFiles(), unless it was put in the place of `target`.
class PartialFile {
 public:
  /// Throws std::runtime_error when the file cannot be made.
  PartialFile(std::filesystem::path target, Readers readers);
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile();

  const std::filesystem::path& Path() const { return path; }
  /// To be written, once.
  FileHandle TakeHandle() { return std::move(handle); }

  /// Replaces `target`; the file has to be closed. False leaves the reason in errno.
  bool PutInPlace();

 private:
  void Forget();

  std::filesystem::path target;
  std::filesystem::path path;  ///< empty once it is in its place
  FileHandle handle;
};

/// Removes those that there are. For signal handlers, right before the program ends.
void RemovePartialFiles();

/// Puts `from` in the place of `to`, whose access it gets where the system keeps that with the
/// name.
bool MoveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to);

/// Removes a file; nothing but a system call.
void UnlinkFile(const std::filesystem::path::value_type* path);

}  // namespace host
