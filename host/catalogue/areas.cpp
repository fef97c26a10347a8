#include "host/catalogue/areas.h"

#include <algorithm>

#include "host/catalogue/table_sources.h"

namespace host {
namespace {

void AddOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::ranges::find(names, name) == names.end()) names.push_back(name);
}

std::vector<std::string> CollectAreas() {
  std::vector<std::string> areas;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) AddOnce(areas, table.area);
    for (const pq::ToolDescription& tool : module.tools) AddOnce(areas, tool.area);
  }
  std::erase(areas, pq::kSampleArea.name);
  areas.emplace_back(pq::kSampleArea.name);
  return areas;
}

/// Where an area comes in the list.
std::size_t RankArea(const std::string& area) {
  const std::vector<std::string>& areas = ListAreas();
  const auto found = std::ranges::find(areas, area);
  const auto other = areas.end() - 1;  // Right before the samples.
  return 2 * static_cast<std::size_t>((found == areas.end() ? other : found) - areas.begin()) +
         (found == areas.end() ? 0 : 1);
}

}  // namespace

const std::vector<std::string>& ListAreas() {
  static const std::vector<std::string> kAreas = CollectAreas();
  return kAreas;
}

std::string FindDevice(std::string_view area) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::Area& known : module.areas) {
      if (area == known.name && known.device != nullptr) return known.device;
    }
  }
  return {};
}

std::vector<TableGroup> GroupByArea(const std::vector<TableToGroup>& tables) {
  std::vector<TableGroup> groups;
  for (std::size_t i = 0; i < tables.size(); ++i) {
    const pq::TableDescription* known = FindTableDescription(tables[i].className);
    const std::string& area = known == nullptr ? tables[i].moduleDescription : known->area;
    auto group = std::ranges::find(groups, area, &TableGroup::area);
    if (group == groups.end()) group = groups.insert(groups.end(), {area, {}, {}});
    AddOnce(group->modules, tables[i].module);
    group->tables.push_back(i);
  }
  std::ranges::stable_sort(groups, {},
                           [](const TableGroup& group) { return RankArea(group.area); });
  return groups;
}

}  // namespace host
