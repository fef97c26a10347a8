#include "host/formats/json_rows.h"

#include <set>
#include <string_view>
#include <utility>

namespace host {
namespace {

/// Keys that differ as bytes and read the same in UTF-8.
bool HasRepeatedKeys(const TableView& table) {
  std::set<std::string_view> keys;
  for (const ColumnView& column : table.Columns()) {
    if (!keys.insert(column.key).second) return true;
  }
  return false;
}

/// The first and the last place of a key that the row has.
std::pair<std::size_t, std::size_t> FindPlaces(const RowView& row, std::string_view key) {
  std::size_t first = 0;
  while (row.CellAt(first).Key().View() != key) ++first;
  std::size_t last = row.CellCount() - 1;
  while (row.CellAt(last).Key().View() != key) --last;
  return {first, last};
}

}  // namespace

JsonRows::JsonRows(const TableView& table) : table(table), keysRepeat(HasRepeatedKeys(table)) {}

void JsonRows::Append(std::size_t number, JsonBuffer& json) const {
  const RowView row = table.RowAt(number);
  json += "{";
  for (std::size_t place = 0; place < row.CellCount(); ++place) {
    const DecodedText key = row.CellAt(place).Key();
    const auto [first, last] = keysRepeat ? FindPlaces(row, key) : std::pair(place, place);
    if (first != place) continue;
    json.AppendText(place > 0 ? "," : "", key);
    const CellView cell = row.CellAt(last);
    if (cell.Kind() == CellKind::kNothing) {
      json += ":null";
    } else if (cell.Kind() != CellKind::kText) {
      json += ":";
      json += cell.Text();
    } else {
      json.AppendText(":", cell.Text());
    }
  }
  json += "}";
}

}  // namespace host
