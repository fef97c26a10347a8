#include "host/files/partial_file.h"

#include <windows.h>

#include <cerrno>

namespace host {

bool MoveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to) {
  // Keeps the access list of a file that is there.
  if (ReplaceFileW(to.c_str(), from.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                   nullptr)) {
    return true;
  }
  if (MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  errno = EACCES;
  return false;
}

void UnlinkFile(const wchar_t* path) { DeleteFileW(path); }

}  // namespace host
