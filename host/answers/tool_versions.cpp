#include "host/answers/tool_versions.h"

#include <algorithm>
#include <string_view>

#include "host/catalogue/table_sources.h"

namespace host {
namespace {

/// Rows that are looked at: a tool names its version at the top.
constexpr std::size_t kRowsLookedAt = 5;

std::string GetRestOfLine(std::string_view text, std::size_t at) {
  std::string_view rest = text.substr(at);
  rest = rest.substr(0, rest.find_first_of("\r\n"));
  const std::size_t first = rest.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return std::string(rest.substr(first, rest.find_last_not_of(' ') - first + 1));
}

std::string FindVersion(const Table& table, std::string_view label) {
  const std::size_t count = std::min(table.rows.size(), kRowsLookedAt);
  for (std::size_t i = 0; i < count; ++i) {
    for (const std::string_view value : table.rows[i].Values()) {
      const std::size_t at = value.find(label);
      if (at != std::string::npos) return GetRestOfLine(value, at + label.size());
    }
  }
  return {};
}

}  // namespace

std::vector<ToolVersion> FindToolVersions(const Collection& collection) {
  std::vector<ToolVersion> versions;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::VersionLine& line : module.versionLines) {
      const bool known = std::any_of(versions.begin(), versions.end(),
                                     [&](const ToolVersion& v) { return v.tool == line.tool; });
      const auto table = std::find_if(
          collection.tables.begin(), collection.tables.end(),
          [&](const CollectedTable& t) { return t.className == line.className && t.rows; });
      if (known || table == collection.tables.end()) continue;
      std::string version = FindVersion(*table->rows, line.label);
      if (!version.empty()) versions.push_back({line.tool, std::move(version)});
    }
  }
  return versions;
}

}  // namespace host
