// A collection: which modules and tables are asked for, in which order, and what came of it.
#pragma once

#include <boost/shared_ptr.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"
#include "host/collect/collection_listener.h"
#include "host/collect/machine_facts.h"
#include "host/collect/table_status.h"
#include "host/repository/store.h"

namespace host {

/// A module that the plug-in added, with its tables registered.
struct LoadedModule {
  boost::shared_ptr<halyard::repository::RModule> module;
  std::string name;
  std::string description;
};

/// Asks each module for its names and has it register its tables, once.
std::vector<LoadedModule> RegisterModules(
    const std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules);

/// The modules that are linked into this program, registered.
std::vector<LoadedModule> LoadLinkedModules();

/// One module to use, and its tables to enumerate, in order; a table may be there twice.
struct ModuleSelection {
  const LoadedModule* module = nullptr;
  std::vector<std::string> tables;
};

/// Modules as named, otherwise in the plug-in's order; without module names, only those that own
/// one of the named tables. Tables as named, otherwise in the order of the module's registry. The
/// result refers to `modules`. Throws UsageError for a name that does not fit.
std::vector<ModuleSelection> SelectTables(const std::vector<LoadedModule>& modules,
                                          const std::vector<std::string>& moduleNames,
                                          const std::vector<std::string>& tableNames);

/// How a table wants to be shown.
struct TableLayout {
  bool byRow = true;                   ///< one instance per line; otherwise one property per line
  std::vector<std::string> headers;    ///< as the module gave them, mostly none
  std::vector<std::uint64_t> numbers;  ///< by row: one width per column; otherwise two numbers
};

/// Calls the layout callback of `className`.
TableLayout AskLayout(const LoadedModule& module, const std::string& className);

struct CollectedModule {
  std::string name;
  std::string description;
};

struct CollectedTable {
  std::string className;
  std::string module;
  TableLayout layout;
  const Table* rows = nullptr;  ///< null when none came
  TableStatus status;           ///< how many rows, or why there are none
  std::size_t RowCount() const { return rows == nullptr ? 0 : rows->rows.size(); }
};

/// What a collection brought. Texts are bytes in the machine's code page, unless said otherwise.
struct Collection {
  MachineFacts machine;
  std::chrono::system_clock::time_point collected;
  std::vector<CollectedModule> modules;  ///< each once, in the order of use
  std::vector<CollectedTable> tables;    ///< each once, in the order of use
  /// The user named the tables that he wants.
  bool tablesNamed = false;
  /// What could not be collected, one line each. UTF-8.
  std::vector<std::string> problems;
  std::vector<LogLine> log;  ///< what the modules logged; only for formats that want it
  std::unique_ptr<halyard::repository::RRepository> repository;
};

/// Uses the selected modules: for each table first its layout, then its enumeration. `listener`
/// hears it all. Fills `modules`, `tables` and `repository` of the result. Classes that came from a
/// module without being registered become tables behind the module's own, unless `tablesNamed`.
/// Once `isEnding` (may be empty) answers true, no further table is enumerated.
Collection RunCollection(const std::vector<ModuleSelection>& selection, bool tablesNamed,
                         CollectionListener& listener, const std::function<bool()>& isEnding = {});

}  // namespace host
