// The files and folders of a recorded machine. Paths are Windows paths: compared without case, with
// doubled backslashes as good as single ones, relative ones below the working folder.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "host/recorded/recording.h"

namespace host {

/// The result of a try to change the files.
enum class FileResult { kDone, kAccessDenied, kNoSuchPath, kExists };

class MachineFiles {
 public:
  /// The host's folder, the log folder and the working folder exist, unless the recording says
  /// otherwise; other folders when a file is below them, or once they were made.
  explicit MachineFiles(const Recording& recording);

  bool FolderExists(std::string_view path) const;
  /// The bytes of a file; nothing when there is no such file.
  std::optional<Bytes> Find(std::string_view path) const;

  /// Whether `path` is a file of the recording that nothing has written since.
  bool IsFromBefore(std::string_view path) const;

  /// Makes `path` an empty file, unless it cannot be written.
  FileResult Create(std::string_view path);
  /// Gives `path`, which was created, its bytes.
  void Store(std::string_view path, Bytes bytes);
  /// Makes a folder, and those between.
  FileResult MakeFolder(std::string_view path);

  /// `path` in full: with its drive, single backslashes, none at the end.
  std::string FullPath(std::string_view path) const;
  /// File name to bytes of the files right in a folder.
  std::map<std::string, Bytes> ListFiles(std::string_view folder) const;
  /// All files by their full path, spelled as it was first written.
  std::map<std::string, Bytes> All() const;

 private:
  struct StoredFile {
    std::string path;
    Bytes bytes;
    bool isFromBefore = false;
  };

  /// Equal for two paths of one file or folder.
  std::string MakeKey(std::string_view path) const;
  void AddFolder(std::string key);
  bool HasFolder(const std::string& key) const;
  bool IsReadOnly(std::string key) const;

  std::string workingFolder;
  std::map<std::string, StoredFile> files;  ///< by key
  std::set<std::string> folders;            ///< keys
  std::set<std::string> readOnly;           ///< keys
};

/// The part of a path before its last backslash; empty when it has none.
std::string_view FolderOf(std::string_view path);
/// The part of a path after its last backslash.
std::string_view FileNameOf(std::string_view path);

}  // namespace host
