#include "host/collect/collection_run.h"

#include <algorithm>

namespace host {
namespace {

using halyard::repository::RRepository;

std::vector<LoadedModule> OpenModules(Source& source, CollectionListener& listener) {
  source.Begin(listener);
  ModuleList modules;
  source.AddModules(modules);
  return RegisterModules(modules);
}

bool HasTable(const Collection& collection, const std::string& className) {
  return std::any_of(collection.tables.begin(), collection.tables.end(),
                     [&](const CollectedTable& table) { return table.className == className; });
}

}  // namespace

CollectionRun::CollectionRun(Source& source, const Selection& selection,
                             CollectionListener& listener)
    : listener(listener),
      tablesNamed(!selection.tables.empty()),
      modules(OpenModules(source, listener)),
      selected(SelectTables(modules, selection)),
      logFolder(source.LogFolder()) {
  if (pq::Platform* platform = source.Machine()) machine.emplace(*platform);
}

void CollectionRun::Enumerate(RRepository& repository, Collection& collection) {
  listener.Begin();
  listener.Plan(selected.size());
  if (listener.WantsLog()) {
    logSink.emplace([this](const LogLine& line) { listener.Log(line); });
  }
  if (RepositoryObserver* observer = listener.Calls()) calls.emplace(*observer);
  for (const ModuleSelection& one : selected) EnumerateModule(one, repository, collection);
  calls.reset();
  logSink.reset();
}

void CollectionRun::EnumerateModule(const ModuleSelection& one, RRepository& repository,
                                    Collection& collection) {
  const LoadedModule& module = *one.module;
  listener.Module(module.name, module.description);
  const bool isNew =
      std::none_of(collection.modules.begin(), collection.modules.end(),
                   [&](const CollectedModule& known) { return known.name == module.name; });
  if (isNew) collection.modules.push_back({module.name, module.description});
  for (const std::string& table : one.tables) {
    listener.Layout(table);
    const TableLayout layout = AskLayout(module, table);
    if (!listener.WantsEnd()) {
      listener.Enumerate(module.name, table);
      module.module->Tables().at(table).enumHandler(repository);
    }
    if (logSink) logSink->RethrowFailure();
    if (!HasTable(collection, table)) {
      collection.tables.push_back({table, module.name, layout, nullptr, {}});
    }
  }
  if (!tablesNamed) AddUnregistered(one, repository, collection);
}

void CollectionRun::AddUnregistered(const ModuleSelection& one, const RRepository& repository,
                                    Collection& collection) {
  for (const auto& [className, rows] : TablesOf(repository)) {
    if (IsRegistered(className) || HasTable(collection, className)) continue;
    collection.tables.push_back({className, one.module->name, {}, nullptr, {}});
  }
}

bool CollectionRun::IsRegistered(const std::string& className) const {
  return std::any_of(selected.begin(), selected.end(), [&](const ModuleSelection& one) {
    return one.module->module->Tables().contains(className);
  });
}

}  // namespace host
