// pqhost modules: what there is to collect.

#include "frame/add_modules.h"
#include "host/collect/collection.h"
#include "host/formats/modules_list.h"
#include "host/formats/tables_document.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"

namespace host {

int RunModulesCommand(const Options& options, const Console& console) {
  std::unique_ptr<LiveLibrary> library;  // Outlives the modules that it added.
  std::vector<boost::shared_ptr<halyard::repository::RModule>> added;
  if (options.plugin) {
    library = LoadLiveLibrary(*options.plugin, {});
    library->AddModules(added);
  } else {
    AddModules(added);
  }
  const std::vector<LoadedModule> modules = RegisterModules(added);
  if (options.format == "json") {
    WriteModulesJson(modules, console.out);
  } else if (options.format == "markdown") {
    console.out << WriteTablesDocument();
  } else {
    WriteModulesList(modules, {console.outIsTerminal, console.colors, console.width}, console.out);
  }
  return kExitDone;
}

}  // namespace host
