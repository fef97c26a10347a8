// Which modules and tables a collection uses, and in which order.
#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"

namespace host {

/// The modules and tables that a user asks for.
struct Selection {
  std::vector<std::string> modules;  ///< in the order named; empty: all
  std::vector<std::string> tables;   ///< in the order named, also twice; empty: all
};

using ModuleList = std::vector<boost::shared_ptr<halyard::repository::RModule>>;

/// A module that the plug-in added, with its tables registered.
struct LoadedModule {
  boost::shared_ptr<halyard::repository::RModule> module;
  std::string name;
  std::string description;
};

/// Asks each module for its names and has it register its tables, once.
std::vector<LoadedModule> RegisterModules(const ModuleList& modules);

/// The modules that are linked into this program, registered.
std::vector<LoadedModule> LoadLinkedModules();

/// One module to use, and its tables to enumerate, in order; a table may be there twice.
struct ModuleSelection {
  const LoadedModule* module = nullptr;
  std::vector<std::string> tables;
};

/// Names are compared without case where none is exactly the same. Modules as named, otherwise in
/// the plug-in's order; without module names, only those that own one of the named tables. Tables
/// as named, otherwise in the order of the module's registry. The result refers to `modules`.
/// Throws UsageError for a name that does not fit.
std::vector<ModuleSelection> SelectTables(const std::vector<LoadedModule>& modules,
                                          const Selection& wanted);

/// How a table wants to be shown.
struct TableLayout {
  bool byRow = true;                   ///< one instance per line; otherwise one property per line
  std::vector<std::string> headers;    ///< as the module gave them, mostly none
  std::vector<std::uint64_t> numbers;  ///< by row: one width per column; otherwise two numbers
};

/// Calls the layout callback of `className`.
TableLayout AskLayout(const LoadedModule& module, const std::string& className);

}  // namespace host
