#include "host/collect/selection.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "frame/add_modules.h"
#include "host/text/ascii.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"

namespace host {

using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;

namespace {

std::vector<std::string> ListTableNames(const LoadedModule& module) {
  std::vector<std::string> names;
  for (const auto& [name, handlers] : module.module->Tables()) names.push_back(name);
  return names;
}

/// The one of `names` that `typed` is meant to be; null when there is none.
const std::string* FindName(const std::vector<std::string>& names, const std::string& typed) {
  auto found = std::ranges::find(names, typed);
  if (found == names.end()) {
    found = std::ranges::find(names, LowerCase(typed),
                              [](const std::string& name) { return LowerCase(name); });
  }
  return found == names.end() ? nullptr : &*found;
}

bool HasTable(const LoadedModule& module, const std::string& table) {
  return module.module->Tables().contains(table);
}

/// The names of tables as the modules spell them; those that are no table's stay as they are.
std::vector<std::string> SpellTables(const std::vector<LoadedModule>& modules,
                                     std::vector<std::string> typed) {
  std::vector<std::string> known;
  for (const LoadedModule& module : modules) {
    for (const std::string& name : ListTableNames(module)) known.push_back(name);
  }
  for (std::string& name : typed) {
    if (const std::string* spelt = FindName(known, name)) name = *spelt;
  }
  return typed;
}

const LoadedModule& FindModule(const std::vector<LoadedModule>& modules, const std::string& name) {
  std::vector<std::string> known;
  for (const LoadedModule& module : modules) known.push_back(module.name);
  if (const std::string* spelt = FindName(known, name)) return modules[spelt - known.data()];
  throw UsageError(fmt::format("there is no module {}{} (modules: {})", name,
                               SuggestName(name, known), fmt::join(known, ", ")));
}

/// Every named table must belong to one of the chosen modules.
void CheckTables(const std::vector<LoadedModule>& modules,
                 const std::vector<const LoadedModule*>& chosen,
                 const std::vector<std::string>& tableNames) {
  for (const std::string& table : tableNames) {
    const auto owns = [&](const auto* module) { return HasTable(*module, table); };
    if (std::any_of(chosen.begin(), chosen.end(), owns)) continue;
    std::vector<std::string> known;
    for (const LoadedModule& module : modules) {
      if (HasTable(module, table)) {
        throw UsageError(
            fmt::format("table {} belongs to module {}: add --module {}, or leave "
                        "--module away",
                        table, module.name, module.name));
      }
      for (const std::string& name : ListTableNames(module)) known.push_back(name);
    }
    throw UsageError(fmt::format("there is no table {}{} (tables: {})", table,
                                 SuggestName(table, known), fmt::join(known, ", ")));
  }
}

}  // namespace

std::vector<LoadedModule> RegisterModules(const ModuleList& modules) {
  std::vector<LoadedModule> loaded;
  for (const boost::shared_ptr<RModule>& module : modules) {
    module->RegisterTables();
    loaded.push_back({module, module->GetName(), module->GetDescription()});
  }
  return loaded;
}

std::vector<LoadedModule> LoadLinkedModules() {
  ModuleList modules;
  AddModules(modules);
  return RegisterModules(modules);
}

std::vector<ModuleSelection> SelectTables(const std::vector<LoadedModule>& modules,
                                          const Selection& wanted) {
  std::vector<const LoadedModule*> chosen;
  chosen.reserve(modules.size() + wanted.modules.size());
  for (const std::string& name : wanted.modules) chosen.push_back(&FindModule(modules, name));
  if (chosen.empty()) {
    for (const LoadedModule& module : modules) chosen.push_back(&module);
  }
  const std::vector<std::string> tables = SpellTables(modules, wanted.tables);
  CheckTables(modules, chosen, tables);

  std::vector<ModuleSelection> selection;
  for (const LoadedModule* module : chosen) {
    ModuleSelection selected{module, {}};
    for (const std::string& table : tables) {
      if (HasTable(*module, table)) selected.tables.push_back(table);
    }
    if (tables.empty()) selected.tables = ListTableNames(*module);
    if (!selected.tables.empty() || tables.empty()) selection.push_back(std::move(selected));
  }
  return selection;
}

TableLayout AskLayout(const LoadedModule& module, const std::string& className) {
  RInstancesWrapper table;
  table.className = className;
  table.byRow = true;  // A layout callback that sets nothing leaves a plain list of rows.
  module.module->Tables().at(className).layoutHandler(table);
  return {table.byRow, table.headers, table.numbers};
}

}  // namespace host
