#include "host/check/served_tables.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "frame/description.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/command_text.h"

namespace host {

std::vector<std::string> FindServedTables(const std::set<std::string>& classes,
                                          const std::string& program) {
  std::vector<std::string> served;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      const bool serves = std::ranges::any_of(table.commands, [&](const pq::ToolCommand& command) {
        return ToolName(command.program) == ToolName(program);
      });
      if (serves && !table.hasHollowRows && classes.contains(table.className)) {
        served.push_back(table.className);
      }
    }
  }
  return served;
}

std::string SayWhatStaysEmpty(const char* before, const std::vector<std::string>& served) {
  if (served.empty()) return {};
  if (served.size() == 1) return fmt::format("{} {} stays empty", before, served.front());
  return fmt::format("{} these stay empty: {}", before, fmt::join(served, ", "));
}

}  // namespace host
