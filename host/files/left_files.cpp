#include "host/files/left_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

#include "host/files/output_file.h"
#include "host/text/ascii.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// With single backslashes and in small letters: equal for equal files.
std::string Normal(std::string_view path) {
  std::string normal;
  for (const char c : path) {
    if (c == '\\' && normal.ends_with('\\')) continue;
    normal += LowerCase(c);
  }
  return normal;
}

std::string WithSingleBackslashes(std::string_view path) {
  std::string single;
  for (const char c : path) {
    if (c != '\\' || !single.ends_with('\\')) single += c;
  }
  return single;
}

/// What stands behind `folder` in `path`; none when it does not lie there.
std::optional<std::string> PathBelow(const std::string& path, const std::string& folder) {
  std::string start = Normal(folder);
  if (!start.ends_with('\\')) start += '\\';
  const std::string normal = Normal(path);
  if (!normal.starts_with(start)) return std::nullopt;
  return WithSingleBackslashes(path).substr(start.size());
}

/// A name that means the same thing on every file system, and nothing outside the folder.
bool IsPlainName(std::string_view name) {
  constexpr std::string_view kRefused{"/\\:*?\"<>|\0", 10};
  const bool hasControl =
      std::any_of(name.begin(), name.end(), [](char c) { return c >= 0 && c < ' '; });
  return !name.empty() && name != "." && name != ".." && !hasControl &&
         name.find_first_of(kRefused) == std::string_view::npos;
}

/// The path of a file below `target`; empty when a part of its name cannot be used.
fs::path PathIn(const fs::path& target, std::string_view below) {
  fs::path path = target;
  while (true) {
    const std::size_t end = std::min(below.find('\\'), below.size());
    const std::string_view name = below.substr(0, end);
    if (!IsPlainName(name)) return {};
    path /= fs::path(std::u8string(name.begin(), name.end()));
    if (end == below.size()) return path;
    below.remove_prefix(end + 1);
  }
}

bool WriteFile(const fs::path& path, const std::string& content) {
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  return !file.fail();
}

}  // namespace

void CreateFolder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (!fs::is_directory(folder)) {
    throw UsageError(fmt::format("cannot create the folder {}: {}", PathText(folder),
                                 error ? error.message() : "a file stands in its place"));
  }
}

LeftFiles WriteLeftFiles(const std::map<std::string, Bytes>& files, const std::string& logFolder,
                         const TextDecoder& decode, const fs::path& target) {
  LeftFiles left;
  for (const auto& [path, content] : files) {
    const std::optional<std::string> below = PathBelow(path, logFolder);
    if (!below) continue;
    const std::string name = decode(*below);
    const fs::path file = PathIn(target, name);
    if (file.empty()) {
      left.problems.push_back(fmt::format("not written: {}: no name for a file here", name));
    } else if (WriteFile(file, content)) {
      ++left.written;
    } else {
      const std::string why = ExplainUnwritable(file);
      left.problems.push_back(fmt::format("cannot write {}: {}", PathText(file), why));
    }
  }
  return left;
}

}  // namespace host
