// The files of a recording, in its folder or in its ZIP file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "host/recording/reading_rules.h"

namespace host {

/// Files by their names in UTF-8, with "/" after each folder. Errors are std::runtime_error with
/// the reason alone.
class StoredFiles {
 public:
  /// Throws to refuse a file of so many bytes.
  using SizeCheck = std::function<void(std::uint64_t bytes)>;

  virtual ~StoredFiles() = default;
  /// Whether there is anything of that name, be it readable or not.
  virtual bool Has(const std::string& name) const = 0;
  /// The bytes of the file `name`, which the caller may name (CheckFileName). `checkSize` is asked
  /// before any of them is read or unpacked.
  virtual std::string Read(const std::string& name, const SizeCheck& checkSize) const = 0;
  /// The place of the file `name`, for messages.
  virtual std::string Describe(const std::string& name) const = 0;
};

/// Throws std::runtime_error, with the name in quotes, when it leads out of the recording or not to
/// the same file on every system.
void CheckFileName(const std::string& name);

/// Those of the folder or ZIP file `recording`. No file leads out of it. Throws std::runtime_error
/// with the reason alone when it is neither, or a ZIP file that is not taken (ZipReader).
std::unique_ptr<StoredFiles> OpenStoredFiles(const std::filesystem::path& recording,
                                             const RecordingLimits& limits);
/// The same of the bytes of a ZIP file, which messages call `name`.
std::unique_ptr<StoredFiles> OpenZippedFiles(std::string bytes, const std::filesystem::path& name,
                                             const RecordingLimits& limits);

}  // namespace host
