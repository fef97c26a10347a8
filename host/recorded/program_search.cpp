#include "host/recorded/program_search.h"

#include <algorithm>

namespace host {
namespace {

/// The parts between semicolons that are not empty, without quotes.
std::vector<std::string> SplitList(std::string_view list) {
  std::vector<std::string> parts;
  while (!list.empty()) {
    const std::size_t length = std::min(list.find(';'), list.size());
    std::string part(list.substr(0, length));
    std::erase(part, '"');
    if (!part.empty()) parts.push_back(std::move(part));
    list.remove_prefix(std::min(length + 1, list.size()));
  }
  return parts;
}

bool HasExtension(std::string_view program) {
  return program.substr(program.find_last_of("\\/:") + 1).find('.') != std::string_view::npos;
}

}  // namespace

bool NamesFolder(std::string_view path) {
  return path.find_first_of("\\/:") != std::string_view::npos;
}

std::vector<std::string> ListProgramPaths(std::string_view program, std::string_view folders,
                                          std::string_view extensions) {
  // Of two files in one folder the one with the very name comes first. A name without an extension
  // is never taken as it is.
  std::vector<std::string> endings;
  if (HasExtension(program)) endings.emplace_back();
  for (std::string& extension : SplitList(extensions)) endings.push_back(std::move(extension));

  std::vector<std::string> beginnings;
  if (NamesFolder(program)) {
    beginnings.emplace_back();
  } else {
    for (std::string& folder : SplitList(folders)) {
      if (!folder.ends_with('\\')) folder += '\\';
      beginnings.push_back(std::move(folder));
    }
  }
  std::vector<std::string> paths;
  for (const std::string& beginning : beginnings) {
    for (const std::string& ending : endings) {
      paths.emplace_back(beginning).append(program).append(ending);
    }
  }
  return paths;
}

}  // namespace host
