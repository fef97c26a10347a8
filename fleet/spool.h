// The folder into which a door, a share or a copy puts recordings: SPOOL/SITE/NAME.zip. A folder in
// it makes its site known; who may write there speaks for that site.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

#include "host/files/file_handle.h"

namespace fleet {

/// A file as it was when it was looked at.
struct SpooledFile {
  std::filesystem::path path;
  std::uint64_t number = 0;  ///< of the file, whatever its name
  std::uint64_t bytes = 0;
  std::chrono::nanoseconds written{};  ///< since 1970, as whoever wrote it says
  std::chrono::nanoseconds changed{};  ///< the same or its name, by our clock

  bool operator==(const SpooledFile&) const = default;
};

class Spool {
 public:
  /// For this program alone. Throws UsageError when it is no folder, or another one has it.
  explicit Spool(std::filesystem::path folder);

  /// All functions throw UsageError when the spool cannot be read or changed.
  /// Calls `take` for each site, in the order of their names.
  void ForEachSite(const std::function<void(const std::string& site)>& take) const;
  /// Calls `take` for each plain file of `site` that is called .zip, until it returns false.
  void ForEachFile(const std::string& site,
                   const std::function<bool(const SpooledFile& file)>& take) const;
  /// Removes what was taken in, unless another file has its name by now.
  void Remove(const SpooledFile& file) const;
  /// Moves what was refused to SPOOL/.refused/SITE/.
  void SetAside(const SpooledFile& file, const std::string& site) const;
  /// Whether the door lets anything in for `site`; for the whole spool when that is empty: the door
  /// looks for the file ".closed" there.
  void SetClosed(const std::string& site, bool isClosed) const;

 private:
  std::filesystem::path folder;
  host::FileHandle lock;
};

}  // namespace fleet
