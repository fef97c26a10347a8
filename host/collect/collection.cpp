#include "host/collect/collection.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <set>

#include "frame/add_modules.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"

namespace host {

using halyard::repository::RInstancesWrapper;
using halyard::repository::RModule;
using halyard::repository::RRepository;

namespace {

std::vector<std::string> TableNames(const LoadedModule& module) {
  std::vector<std::string> names;
  for (const auto& [name, handlers] : module.module->Tables()) names.push_back(name);
  return names;
}

bool HasTable(const LoadedModule& module, const std::string& table) {
  return module.module->Tables().contains(table);
}

const LoadedModule& FindModule(const std::vector<LoadedModule>& modules, const std::string& name) {
  std::vector<std::string> known;
  for (const LoadedModule& module : modules) {
    if (module.name == name) return module;
    known.push_back(module.name);
  }
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
      for (const std::string& name : TableNames(module)) known.push_back(name);
    }
    throw UsageError(fmt::format("there is no table {}{} (tables: {})", table,
                                 SuggestName(table, known), fmt::join(known, ", ")));
  }
}

/// Keeps the log and the repository's observers in place for the time of one collection.
class LogSinkInUse {
 public:
  explicit LogSinkInUse(CollectionListener& listener) {
    SetLogSink([&listener](const LogLine& line) { listener.Log(line); });
  }
  LogSinkInUse(const LogSinkInUse&) = delete;
  LogSinkInUse& operator=(const LogSinkInUse&) = delete;
  ~LogSinkInUse() { SetLogSink({}); }
};

}  // namespace

std::vector<LoadedModule> RegisterModules(const std::vector<boost::shared_ptr<RModule>>& modules) {
  std::vector<LoadedModule> loaded;
  for (const boost::shared_ptr<RModule>& module : modules) {
    module->RegisterTables();
    loaded.push_back({module, module->GetName(), module->GetDescription()});
  }
  return loaded;
}

std::vector<LoadedModule> LoadLinkedModules() {
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  return RegisterModules(modules);
}

std::vector<ModuleSelection> SelectTables(const std::vector<LoadedModule>& modules,
                                          const std::vector<std::string>& moduleNames,
                                          const std::vector<std::string>& tableNames) {
  std::vector<const LoadedModule*> chosen;
  chosen.reserve(modules.size() + moduleNames.size());
  for (const std::string& name : moduleNames) chosen.push_back(&FindModule(modules, name));
  if (chosen.empty()) {
    for (const LoadedModule& module : modules) chosen.push_back(&module);
  }
  CheckTables(modules, chosen, tableNames);

  std::vector<ModuleSelection> selection;
  for (const LoadedModule* module : chosen) {
    ModuleSelection selected{module, {}};
    for (const std::string& table : tableNames) {
      if (HasTable(*module, table)) selected.tables.push_back(table);
    }
    if (tableNames.empty()) selected.tables = TableNames(*module);
    if (!selected.tables.empty() || tableNames.empty()) selection.push_back(std::move(selected));
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

Collection RunCollection(const std::vector<ModuleSelection>& selection, bool tablesNamed,
                         CollectionListener& listener, const std::function<bool()>& isEnding) {
  Collection collection;
  collection.collected = std::chrono::system_clock::now();
  collection.tablesNamed = tablesNamed;
  collection.repository = std::make_unique<RRepository>();
  const std::map<std::string, Table>& stored = TablesOf(*collection.repository);

  const LogSinkInUse logSink(listener);
  std::set<std::string> modulesSeen;
  std::set<std::string> tablesSeen;
  std::set<std::string> registered;
  for (const ModuleSelection& selected : selection) {
    for (const std::string& table : TableNames(*selected.module)) registered.insert(table);
  }
  for (const ModuleSelection& selected : selection) {
    const LoadedModule& module = *selected.module;
    listener.Module(module.name, module.description);
    if (modulesSeen.insert(module.name).second) {
      collection.modules.push_back({module.name, module.description});
    }
    for (const std::string& table : selected.tables) {
      listener.Layout(table);
      const TableLayout layout = AskLayout(module, table);
      if (!isEnding || !isEnding()) {
        listener.Enumerate(module.name, table);
        module.module->Tables().at(table).enumHandler(*collection.repository);
      }
      if (tablesSeen.insert(table).second) {
        collection.tables.push_back({table, module.name, layout, nullptr, {}});
      }
    }
    if (tablesNamed) continue;
    for (const auto& [className, table] : stored) {
      if (!registered.contains(className) && tablesSeen.insert(className).second) {
        collection.tables.push_back({className, module.name, {}, nullptr, {}});
      }
    }
  }
  for (CollectedTable& table : collection.tables) {
    const auto found = stored.find(table.className);
    if (found != stored.end()) table.rows = &found->second;
  }
  return collection;
}

}  // namespace host
