// pqhost modules: the modules and tables that can be collected.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "frame/add_modules.h"
#include "host/collect/collection.h"
#include "host/formats/modules_list.h"
#include "host/formats/parts_document.h"
#include "host/formats/prometheus.h"
#include "host/formats/tables_document.h"
#include "host/live/live.h"
#include "host/pqhost/commands/commands.h"

namespace host {
namespace {

constexpr char kModulesFooter[] = R"(Examples:
  pqhost modules
  pqhost modules --format json
)";

struct ModulesOptions {
  std::optional<std::filesystem::path> plugin;
  std::string format = "table";
};

int RunModules(const ModulesOptions& options, const Console& console) {
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
  } else if (options.format == "parts") {
    console.out << WritePartsDocument();
  } else if (options.format == "metrics") {
    console.out << WriteMetricsDocument();
  } else {
    WriteModulesList(modules, DescribeScreen(console), console.out);
  }
  return kExitDone;
}

CommandRun DefineModules(OptionSet& set) {
  const auto options = std::make_shared<ModulesOptions>();
  set.AddPath("--plugin", OptionValue::kFile, options->plugin, "Ask this library (Windows)");
  set.AddChoice("--format", {"table", "json", "markdown", "parts", "metrics"}, options->format,
                "Format: table, json, markdown; or parts or metrics, which is markdown on those");
  return [options](const Console& console) { return RunModules(*options, console); };
}

}  // namespace

const Command kModulesCommand = {"modules", "List the modules and their tables", kModulesFooter,
                                 &DefineModules};

}  // namespace host
