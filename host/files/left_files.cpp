#include "host/files/left_files.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "host/files/plain_name.h"
#include "host/files/whole_file.h"
#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {
namespace {

namespace fs = std::filesystem;

std::string SingleBackslashes(std::string_view path) {
  std::string single;
  for (const char c : path) {
    if (c != '\\' || !single.ends_with('\\')) single += c;
  }
  return single;
}

/// The part of `path` after `folder`; none when it is not in there. Case makes no difference.
std::optional<std::string> FindPathBelow(std::string_view path, std::string_view folder) {
  std::string start = SingleBackslashes(folder);
  if (!start.ends_with('\\')) start += '\\';
  const std::string single = SingleBackslashes(path);
  if (!LowerCase(single).starts_with(LowerCase(start))) return std::nullopt;
  return single.substr(start.size());
}

/// The path of a file below `target`; empty when a part of its name cannot be used.
fs::path MakePath(const fs::path& target, std::string_view below) {
  fs::path path = target;
  while (true) {
    const std::size_t end = std::min(below.find('\\'), below.size());
    const std::string_view name = below.substr(0, end);
    if (!IsPlainName(name)) return {};
    path /= PathFromText(name);
    if (end == below.size()) return path;
    below.remove_prefix(end + 1);
  }
}

}  // namespace

LeftFiles WriteLeftFiles(const std::map<std::string, Bytes>& files, const std::string& logFolder,
                         const TextDecoder& decode, const fs::path& target) {
  LeftFiles left;
  for (const auto& [path, content] : files) {
    const std::optional<std::string> below = FindPathBelow(path, logFolder);
    if (!below) continue;
    const std::string name = decode(*below);
    const fs::path file = MakePath(target, name);
    if (file.empty()) {
      left.problems.push_back(fmt::format("not written: {}: no name for a file here", name));
      continue;
    }
    try {
      CreateWholeFile(file, content);
      ++left.written;
    } catch (const std::runtime_error& problem) {
      left.problems.emplace_back(problem.what());
    }
  }
  return left;
}

}  // namespace host
