#include "host/redact/known_values.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "host/redact/recording_texts.h"
#include "host/redact/value_finder.h"

namespace host {
namespace {

constexpr std::size_t kLongestCell = 80;

void AddSerials(const Parts& parts, ValueList& values) {
  for (const PartTable& table : GetPartTables()) {
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
      if (table.columns[column].name != "serial") continue;
      for (std::size_t row = 0; row < table.count(parts); ++row) {
        const PartValue value = table.Get(parts, row, column);
        if (const auto* text = std::get_if<std::string_view>(&value)) {
          values.Add(ValueKind::kSerial, *text);
        }
      }
    }
  }
}

/// What is in columns whose label or key tells the kind.
void AddLabelledCells(const Table& table, ValueList& values) {
  std::map<const RowShape*, std::vector<std::pair<std::size_t, ValueKind>>> kinds;
  for (const Row& row : table.rows) {
    const auto [known, isNew] = kinds.try_emplace(row.shape);
    for (std::size_t i = 0; isNew && i < row.shape->columns.size(); ++i) {
      const Column& column = row.shape->columns[i];
      const ValueKind* kind = FindLabelKind(column.label);
      if (kind == nullptr) kind = FindLabelKind(column.key);
      if (kind != nullptr) known->second.emplace_back(i, *kind);
    }
    for (const auto& [place, kind] : known->second) {
      const std::string_view value = row.Value(place);
      const std::size_t begin = value.find_first_not_of(' ');
      if (begin == std::string_view::npos || value.size() > kLongestCell) continue;
      values.Add(kind, value.substr(begin, value.find_last_not_of(' ') + 1 - begin));
    }
  }
}

}  // namespace

void AddKnownValues(const Recording& recording, ValueList& values) {
  if (recording.submission) {
    values.Add(ValueKind::kHost, recording.submission->name);
    for (const std::string& serial : recording.submission->serials) {
      values.Add(ValueKind::kSerial, serial);
    }
  }
  Recording replayed = recording;
  for (RecordedCommand& command : replayed.commands) {
    // It can be long, and its place tells all that is in it.
    if (PlaceOfOutput(command) == TextPlace::kConnections) command.standardOutput.clear();
  }
  const Collection collection = Collect(replayed);
  AddSerials(ReadParts(collection), values);
  for (const CollectedTable& table : collection.tables) {
    if (table.rows != nullptr) AddLabelledCells(*table.rows, values);
  }
}

}  // namespace host
