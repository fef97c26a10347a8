#include "host/check/tool_setup.h"

#include <algorithm>
#include <system_error>

#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// Tools that vendors deliver under another name than the one they are run by.
struct OtherName {
  std::string_view program;
  std::string_view fileName;
};
constexpr OtherName kOtherNames[] = {
    {"storcli.exe", "storcli64.exe"},
};

/// Whether `path`, as the modules write it, is below the folder.
bool IsBelow(std::string_view path, std::string_view folder) {
  return path.size() > folder.size() && path[folder.size()] == '\\' &&
         LowerCase(path.substr(0, folder.size())) == LowerCase(folder);
}

/// `file` is in each empty place that it fits.
void Offer(const fs::path& file, std::vector<ToolPlace>& places) {
  const std::string name = PathText(file.filename());
  for (ToolPlace& place : places) {
    if (place.isThere || !IsFileOf(place.tool.program, name)) continue;
    if (std::ranges::find(place.found, file) == place.found.end()) place.found.push_back(file);
  }
}

void SearchFolder(const fs::path& folder, const SearchLimits& limits,
                  std::vector<ToolPlace>& places) {
  std::error_code failure;
  constexpr auto kOptions = fs::directory_options::skip_permission_denied;
  fs::recursive_directory_iterator entry(folder, kOptions, failure);
  for (std::size_t count = 0;
       !failure && entry != fs::recursive_directory_iterator() && count < limits.entries; ++count) {
    std::error_code ignored;
    if (entry.depth() >= limits.depth) entry.disable_recursion_pending();
    if (entry->symlink_status(ignored).type() == fs::file_type::regular) {
      Offer(entry->path(), places);
    }
    entry.increment(failure);
  }
}

}  // namespace

std::vector<ToolPlace> ListToolPlaces(const MachineCheck& check, const fs::path& hostFolder) {
  const std::string folder = PathText(hostFolder);
  std::vector<ToolPlace> places;
  for (const CheckedArea& area : check.areas) {
    for (const CheckedTool& tool : area.tools) {
      if (!IsBelow(tool.path, folder)) continue;
      const auto known = std::ranges::find_if(
          places, [&](const ToolPlace& place) { return place.tool.path == tool.path; });
      if (known == places.end()) {
        places.push_back({.tool = tool,
                          .place = PathFromText(tool.path),
                          .isThere = tool.state == CheckedTool::State::kFound});
      } else if (tool.state == CheckedTool::State::kMissing) {
        known->tool = tool;  // where it is needed more is said of it
      }
    }
  }
  return places;
}

bool IsFileOf(std::string_view program, std::string_view fileName) {
  const std::string name = LowerCase(fileName);
  return name == LowerCase(program) ||
         std::ranges::any_of(kOtherNames, [&](const OtherName& other) {
           return other.program == LowerCase(program) && other.fileName == name;
         });
}

void FindTools(const std::vector<fs::path>& folders, const SearchLimits& limits,
               std::vector<ToolPlace>& places) {
  for (const fs::path& folder : folders) SearchFolder(folder, limits, places);
}

}  // namespace host
