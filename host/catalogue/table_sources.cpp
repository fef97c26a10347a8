#include "host/catalogue/table_sources.h"

#include <algorithm>

namespace host {

const std::vector<pq::ModuleDescription>& GetModuleDescriptions() {
  static const std::vector<pq::ModuleDescription> kModules = pq::DescribeModules();
  return kModules;
}

const pq::ModuleDescription* FindModuleDescription(std::string_view name) {
  const auto& modules = GetModuleDescriptions();
  const auto found = std::ranges::find(modules, name, &pq::ModuleDescription::name);
  return found == modules.end() ? nullptr : &*found;
}

const pq::TableDescription* FindTableDescription(std::string_view className) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    const auto found =
        std::ranges::find(module.tables, className, &pq::TableDescription::className);
    if (found != module.tables.end()) return &*found;
  }
  return nullptr;
}

std::string TitleOf(const std::string& className) {
  const pq::TableDescription* table = FindTableDescription(className);
  return table == nullptr ? className : table->title;
}

}  // namespace host
