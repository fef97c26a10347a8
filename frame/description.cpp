#include "frame/description.h"

#include <utility>

namespace pq {

ToolCommand ParseToolCommand(std::string_view text, std::string file) {
  const std::size_t quote = text.find('"');
  std::string_view arguments =
      quote == std::string_view::npos ? std::string_view() : text.substr(quote + 1);
  arguments = arguments.substr(0, arguments.find_first_of("|>"));
  const std::size_t first = arguments.find_first_not_of(' ');
  arguments = first == std::string_view::npos
                  ? std::string_view()
                  : arguments.substr(first, arguments.find_last_not_of(' ') - first + 1);
  return {std::string(text.substr(0, quote)), std::string(arguments), std::move(file), false};
}

void TableDescription::AddColumn(const Column& column) {
  columns.push_back(
      {std::string(column.key), std::string(column.label), std::string(column.text), column.kind});
}

void TableDescription::AddColumns(std::span<const Column> more) {
  for (const Column& column : more) AddColumn(column);
}

void TableDescription::EndRowsAt(std::string_view label) {
  whyNoRow = "the output has no line with \"" + std::string(label) + "\", which ends a row";
}

void ModuleDescription::AddFailures(StepFailure failure,
                                    std::initializer_list<const char*> sentences,
                                    const std::string& program) {
  for (const char* sentence : sentences) failures.push_back({sentence, failure, program});
}

void ModuleDescription::AssignArea(const Area& area) {
  areas.push_back(area);
  for (TableDescription& table : tables) {
    if (table.area.empty()) table.area = area.name;
  }
  for (ToolDescription& tool : tools) {
    if (tool.area.empty()) tool.area = area.name;
  }
}

void ModuleDescription::AddPipeFailure(const char* sentence, const char* className) {
  failures.push_back({sentence, StepFailure::kBeforeTool});
  explanations.push_back(
      {sentence, "could not start", "its pipe could not be created", {className}});
}

}  // namespace pq
