#include "host/formats/json_parts.h"

#include <cstddef>
#include <string_view>
#include <variant>

namespace host {
namespace {

void AppendJsonPart(const PartTable& table, const Part& part, JsonBuffer& json) {
  char separator = '{';
  for (const PartColumn& column : table.columns) {
    json.AppendText({&separator, 1}, column.name);
    separator = ',';
    json += ":";
    const PartValue value = column.get(part);
    if (const auto* text = std::get_if<std::string_view>(&value)) {
      json.AppendText("", *text);
    } else {
      json += FormatPartValue(value, "null");
    }
  }
  json += "}";
}

}  // namespace

void AppendJsonParts(const Parts& parts, JsonBuffer& json) {
  const char* separator = "\n";
  for (const PartTable& table : GetPartTables()) {
    json += separator;
    json.AppendText("", table.name);
    json += ": [";
    for (std::size_t row = 0; row < table.count(parts); ++row) {
      json += row == 0 ? "\n  " : ",\n  ";
      AppendJsonPart(table, *table.at(parts, row), json);
      json.Flush();
    }
    json += "]";
    separator = ",\n";
  }
  json += "\n";
}

}  // namespace host
