#include "host/answers/health/machine_areas.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "host/text/nearest_name.h"

namespace host {
namespace {

constexpr std::pair<std::string_view, std::string_view> kAreasOfTables[] = {
    {"drives", "drives"},           {"volumes", "arrays"},
    {"groups", "arrays"},           {"missing_drives", "arrays"},
    {"controllers", "controllers"}, {"cache_backups", "controllers"},
    {"enclosures", "drives"},       {"sensors", "sensors"},
    {"power_supplies", "power"},    {"leds", "bmc"},
    {"self_tests", "bmc"},          {"events", "log"},
};

}  // namespace

const std::vector<std::string>& ListMachineAreas() {
  static const std::vector<std::string> kAreas{
      "arrays", "drives",  "controllers", "cooling", "temperatures", "power", "voltages",
      "memory", "sensors", "bmc",         "log",     "network",      "amt",   "collection"};
  return kAreas;
}

std::string DescribeUnknownArea(std::string_view name) {
  const std::vector<std::string>& areas = ListMachineAreas();
  if (std::ranges::find(areas, name) != areas.end()) return {};
  return fmt::format("there is no area {}{}; areas are {}", name, SuggestName(name, areas),
                     fmt::join(areas, ", "));
}

std::string_view FindAreaOfTable(std::string_view table) {
  for (const auto& [name, area] : kAreasOfTables) {
    if (name == table) return area;
  }
  return "collection";
}

}  // namespace host
