#include "host/files/places.h"

#include <algorithm>
#include <system_error>

#include "host/files/file_handle.h"

namespace host {
namespace {

namespace fs = std::filesystem;

fs::path MakeAbsolute(const fs::path& path) {
  std::error_code ignored;
  fs::path whole = fs::absolute(path, ignored).lexically_normal();
  return whole.has_filename() ? whole : whole.parent_path();  // without a slash at the end
}

/// Without the links of the folders that exist.
fs::path FollowLinks(const fs::path& path) {
  if (fs::path real = FindRealFolder(path); !real.empty()) return real;
  const fs::path folder = path.parent_path();
  return folder == path ? path : FollowLinks(folder) / path.filename();
}

bool StartsWith(const fs::path& path, const fs::path& folder) {
  return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
         folder.end();
}

}  // namespace

bool IsInFolder(const fs::path& path, const fs::path& folder) {
  const fs::path whole = MakeAbsolute(path);
  const fs::path room = MakeAbsolute(folder);
  return StartsWith(whole, room) || StartsWith(FollowLinks(whole), FollowLinks(room));
}

bool AreSameFile(const fs::path& one, const fs::path& other) {
  std::error_code ignored;
  return fs::equivalent(one, other, ignored) ||
         FollowLinks(MakeAbsolute(one)) == FollowLinks(MakeAbsolute(other));
}

}  // namespace host
