#include "host/formats/modules_list.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/catalogue/areas.h"
#include "host/catalogue/table_sources.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

/// The library's names are ASCII; whatever else comes must become valid UTF-8 and be harmless.
std::string Clean(const std::string& text) { return EscapeControls(CleanUtf8(text)); }

std::string DescribeLayout(const TableLayout& layout) {
  if (!layout.byRow) return "one property per line";
  if (!layout.headers.empty()) return Clean(fmt::format("{}", fmt::join(layout.headers, ", ")));
  if (layout.numbers.empty()) return "one row per line";
  return fmt::format("{} columns ({} wide)", layout.numbers.size(),
                     fmt::join(layout.numbers, ", "));
}

Json MakeLayout(const TableLayout& layout) {
  Json headers = Json::array();
  for (const std::string& header : layout.headers) headers.push_back(Clean(header));
  return {{"by", layout.byRow ? "row" : "property"},
          {"headers", headers},
          {layout.byRow ? "widths" : "numbers", layout.numbers}};
}

}  // namespace

void WriteModulesList(const std::vector<LoadedModule>& modules, const Screen& screen,
                      std::ostream& out) {
  const char* const bold = screen.colors ? "\x1b[1m" : "";
  const char* const plain = screen.colors ? "\x1b[0m" : "";
  std::size_t nameWidth = 0;
  std::size_t titleWidth = 0;
  std::vector<TableToGroup> tables;
  std::vector<const LoadedModule*> owners;  // of the tables
  for (const LoadedModule& module : modules) {
    for (const auto& [name, handlers] : module.module->Tables()) {
      tables.push_back({name, module.name, module.description});
      owners.push_back(&module);
      nameWidth = std::max(nameWidth, MeasureWidth(Clean(name)));
      titleWidth = std::max(titleWidth, MeasureWidth(Clean(TitleOf(name))));
    }
  }
  const char* separator = "";
  for (const TableGroup& group : GroupByArea(tables)) {
    out << separator << bold << Clean(group.area) << plain << "  "
        << Clean(fmt::format("{}", fmt::join(group.modules, ", "))) << '\n';
    separator = "\n";
    for (const std::size_t i : group.tables) {
      const std::string& name = tables[i].className;
      const std::string line = fmt::format("  {}  {}  {}", PadText(Clean(name), nameWidth),
                                           PadText(Clean(TitleOf(name)), titleWidth),
                                           DescribeLayout(AskLayout(*owners[i], name)));
      out << CutText(line, std::max(screen.width, 20U)) << '\n';
    }
  }
}

void WriteModulesJson(const std::vector<LoadedModule>& modules, std::ostream& out) {
  Json list = Json::array();
  for (const LoadedModule& module : modules) {
    Json tables = Json::array();
    for (const auto& [name, handlers] : module.module->Tables()) {
      tables.push_back(
          {{"class", Clean(name)},
           {"title", Clean(TitleOf(name))},
           {"area", Clean(GroupByArea({{name, module.name, module.description}}).front().area)},
           {"layout", MakeLayout(AskLayout(module, name))}});
    }
    list.push_back({{"name", Clean(module.name)},
                    {"description", Clean(module.description)},
                    {"tables", tables}});
  }
  const Json all = {{"format", 1}, {"modules", list}};
  out << all.dump(2) << '\n';
}

}  // namespace host
