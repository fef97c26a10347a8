// pqhost modules: what there is to collect.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "frame/add_modules.h"
#include "host/pqhost/collection.h"
#include "host/pqhost/commands.h"
#include "host/pqhost/live.h"
#include "host/pqhost/screen_text.h"
#include "host/pqhost/table_sources.h"
#include "host/pqhost/tables_document.h"
#include "host/pqhost/text.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

/// Names come from the library; they are ASCII, and whatever else comes must stay valid UTF-8.
std::string Clean(const std::string& text) {
  return EscapeControls(TextDecoder(kUtf8CodePage)(text));
}

std::string DescribeLayout(const TableLayout& layout) {
  if (!layout.byRow) return "one property per line";
  if (!layout.headers.empty()) return Clean(fmt::format("{}", fmt::join(layout.headers, ", ")));
  if (layout.numbers.empty()) return "one row per line";
  return fmt::format("{} columns ({} wide)", layout.numbers.size(),
                     fmt::join(layout.numbers, ", "));
}

Json LayoutJson(const TableLayout& layout) {
  Json headers = Json::array();
  for (const std::string& header : layout.headers) headers.push_back(Clean(header));
  return {{"by", layout.byRow ? "row" : "property"},
          {"headers", headers},
          {layout.byRow ? "widths" : "numbers", layout.numbers}};
}

void WriteList(const std::vector<LoadedModule>& modules, const Console& console) {
  const char* const bold = console.colors ? "\x1b[1m" : "";
  const char* const plain = console.colors ? "\x1b[0m" : "";
  std::size_t nameWidth = 0;
  std::size_t titleWidth = 0;
  for (const LoadedModule& module : modules) {
    for (const auto& [name, handlers] : module.module->Tables()) {
      nameWidth = std::max(nameWidth, MeasureWidth(Clean(name)));
      titleWidth = std::max(titleWidth, MeasureWidth(Clean(TitleOf(name))));
    }
  }
  const char* separator = "";
  for (const LoadedModule& module : modules) {
    console.out << separator << bold << Clean(module.name) << plain << "  "
                << Clean(module.description) << '\n';
    separator = "\n";
    for (const auto& [name, handlers] : module.module->Tables()) {
      const std::string line = fmt::format("  {}  {}  {}", PadText(Clean(name), nameWidth),
                                           PadText(Clean(TitleOf(name)), titleWidth),
                                           DescribeLayout(AskLayout(module, name)));
      console.out << CutText(line, std::max(console.width, 20U)) << '\n';
    }
  }
}

void WriteJsonList(const std::vector<LoadedModule>& modules, const Console& console) {
  Json list = Json::array();
  for (const LoadedModule& module : modules) {
    Json tables = Json::array();
    for (const auto& [name, handlers] : module.module->Tables()) {
      tables.push_back({{"class", Clean(name)},
                        {"title", Clean(TitleOf(name))},
                        {"layout", LayoutJson(AskLayout(module, name))}});
    }
    list.push_back({{"name", Clean(module.name)},
                    {"description", Clean(module.description)},
                    {"tables", tables}});
  }
  const Json all = {{"format", 1}, {"modules", list}};
  console.out << all.dump(2) << '\n';
}

}  // namespace

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
    WriteJsonList(modules, console);
  } else if (options.format == "markdown") {
    console.out << WriteTablesDocument();
  } else {
    WriteList(modules, console);
  }
  return kExitDone;
}

}  // namespace host
