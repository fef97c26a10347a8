#include "host/recording/folder_rules.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/recording/strict_json.h"
#include "host/text/path_text.h"

namespace host {
namespace {

namespace fs = std::filesystem;

bool HasPartThatGoesUp(std::string_view name) {
  while (!name.empty()) {
    const std::string_view part = name.substr(0, name.find('/'));
    if (part == "..") return true;
    name.remove_prefix(std::min(part.size() + 1, name.size()));
  }
  return false;
}

/// Whether `name` means the same file on every system.
bool IsPortableName(std::string_view name) {
  const bool hasForbidden = std::any_of(name.begin(), name.end(), [](char c) {
    return c == '\\' || c == ':' || static_cast<unsigned char>(c) < ' ';
  });
  return !name.empty() && name.front() != '/' && !hasForbidden && !HasPartThatGoesUp(name);
}

}  // namespace

FolderRules::FolderRules(fs::path folder)
    : folder(std::move(folder)), realFolder(FindRealFolder(this->folder)) {}

fs::path FolderRules::ResolveName(const std::string& name) const {
  if (!IsPortableName(name)) {
    throw std::runtime_error(QuoteText(name) +
                             " has to name a file in the recording's folder, by a path with / "
                             "that does not leave it");
  }
  return folder / PathFromText(name);
}

FileHandle FolderRules::Open(const fs::path& path) const {
  FileHandle file = OpenToRead(path);
  const fs::path real = FindRealPath(file, path);
  const bool isInside =
      !realFolder.empty() && !real.empty() &&
      std::mismatch(realFolder.begin(), realFolder.end(), real.begin(), real.end()).first ==
          realFolder.end();
  if (!isInside) throw std::runtime_error("leads out of the recording's folder");
  return file;
}

}  // namespace host
