#include "host/formats/tables_document.h"

#include <fmt/format.h>

#include "host/catalogue/table_sources.h"
#include "host/catalogue/table_titles.h"
#include "host/collect/collection.h"

namespace host {
namespace {

constexpr char kHead[] =
    "# Tables\n\nMade by `pqhost modules --format markdown` from what the modules register and "
    "describe. Tools stand\nbelow the folder of the host's program; files are left in its log "
    "folder.\n";

/// Numbered keys without labels of their own are shown as a range.
std::string DescribeColumns(const std::vector<pq::Column>& columns) {
  if (columns.empty()) return "none";
  if (columns.front().label.empty()) {
    return fmt::format("`{}` to `{}`: as the tool names them", columns.front().key,
                       columns.back().key);
  }
  std::string text;
  for (const pq::Column& column : columns) {
    text += fmt::format("{}`{}` {}", text.empty() ? "" : ", ", column.key, column.label);
  }
  return text;
}

std::string DescribeCommands(const std::vector<pq::ToolCommand>& commands) {
  if (commands.empty()) return "fixed rows";
  std::string text;
  for (const pq::ToolCommand& command : commands) {
    text += fmt::format("{}`{}{}{}`", text.empty() ? "" : "<br>", command.program,
                        command.arguments.empty() ? "" : " ", command.arguments);
  }
  return text;
}

std::string DescribeFiles(const std::vector<pq::ToolCommand>& commands) {
  std::string text;
  for (const pq::ToolCommand& command : commands) {
    const std::string file = fmt::format("`{}`", command.file);
    if (command.file.empty() || text.find(file) != std::string::npos) continue;
    text += (text.empty() ? "" : "<br>") + file;
  }
  return text.empty() ? "none" : text;
}

}  // namespace

std::string WriteTablesDocument() {
  std::string text = kHead;
  for (const LoadedModule& module : LoadLinkedModules()) {
    text += fmt::format(
        "\n## {} ({})\n\n| class | title | columns: key and label | tool | file |\n"
        "|---|---|---|---|---|\n",
        module.description, module.name);
    for (const auto& [name, handlers] : module.module->Tables()) {
      const pq::TableSource* source = FindTableSource(name);
      if (source == nullptr) continue;
      const bool isEmpty = source->commands.empty() && source->columns.empty();
      text += fmt::format("| `{}` | {} | {} | {} | {} |\n", name, TitleOf(name),
                          DescribeColumns(source->columns),
                          isEmpty ? "nothing fills it" : DescribeCommands(source->commands),
                          DescribeFiles(source->commands));
    }
  }
  return text;
}

}  // namespace host
