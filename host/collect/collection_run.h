// The steps of a collection: open, register, select, bind, enumerate.
#pragma once

#include <optional>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/collect/collection.h"
#include "host/collect/collection_listener.h"
#include "host/collect/selection.h"
#include "host/collect/source.h"
#include "host/logger/logger.h"
#include "host/repository/observer.h"

namespace host {

/// One collection that is ready to run. While it lives, machine, logger and repository observer are
/// bound to the thread that made it.
class CollectionRun {
 public:
  /// Opens `source` and registers its modules. Both outlive the run. Throws UsageError when
  /// `selection` names something that does not exist.
  CollectionRun(Source& source, const Selection& selection, CollectionListener& listener);

  /// Enumerates the selected tables into `repository`; fills `modules` and `tables` of
  /// `collection`, but for the tables' rows and statuses.
  void Enumerate(halyard::repository::RRepository& repository, Collection& collection);

 private:
  void EnumerateModule(const ModuleSelection& selected,
                       halyard::repository::RRepository& repository, Collection& collection);
  /// Adds tables for classes that no module registered.
  void AddUnregistered(const ModuleSelection& selected,
                       const halyard::repository::RRepository& repository, Collection& collection);
  bool IsRegistered(const std::string& className) const;

  CollectionListener& listener;
  bool tablesNamed;
  std::vector<LoadedModule> modules;
  std::vector<ModuleSelection> selected;
  LogFolderInUse logFolder;
  std::optional<pq::MachineInUse> machine;
  std::optional<LogSinkInUse> logSink;
  std::optional<RepositoryObserverInUse> calls;
};

}  // namespace host
