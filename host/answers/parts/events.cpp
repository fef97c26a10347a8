// Events packed as rows of the columns that part_tables.h describes.
#include <algorithm>
#include <bit>
#include <functional>
#include <string>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/parts.h"

namespace host {
namespace {

const std::vector<PartColumn>& GetEventColumns() {
  static const std::vector<PartColumn>& kColumns =
      std::ranges::find(GetPartTables(), "events", &PartTable::name)->columns;
  return kColumns;
}

/// Which ids there are, each by the row that had it first. A set of texts would take as much memory
/// as the entries themselves.
class RowsById {
 public:
  explicit RowsById(const Events& events)
      : events(events), slots(std::bit_ceil(2 * events.size() + 1), kNone) {}

  bool Has(std::string_view id) const { return slots[FindSlot(id)] != kNone; }
  /// The first row with the row's id, which can be itself.
  std::size_t Add(std::size_t row) {
    std::uint32_t& slot = slots[FindSlot(events.GetText(row, EventColumn::kId))];
    if (slot == kNone) slot = static_cast<std::uint32_t>(row);
    return slot;
  }

 private:
  static constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

  std::size_t FindSlot(std::string_view id) const {
    const std::size_t mask = slots.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(id) & mask;
    while (slots[slot] != kNone && events.GetText(slots[slot], EventColumn::kId) != id) {
      slot = (slot + 1) & mask;
    }
    return slot;
  }

  const Events& events;
  std::vector<std::uint32_t> slots;
};

}  // namespace

Event Events::operator[](std::size_t row) const {
  Event event;
  auto column = GetEventColumns().begin();
  rows.ForEach(row, [&](const PartValue& value) { (column++)->set(event, value); });
  return event;
}

std::string_view Events::GetText(std::size_t row, EventColumn column) const {
  const PartValue value = Get(row, column);
  const auto* text = std::get_if<std::string_view>(&value);
  return text == nullptr ? std::string_view() : *text;
}

Integer Events::GetInteger(std::size_t row, EventColumn column) const {
  const PartValue value = Get(row, column);
  const auto* number = std::get_if<std::int64_t>(&value);
  return number == nullptr ? Integer() : *number;
}

void Events::push_back(const Event& event) {
  const std::vector<PartColumn>& columns = GetEventColumns();
  std::vector<PartValue> values;
  values.reserve(columns.size());
  for (const PartColumn& column : columns) values.push_back(column.get(event));
  rows.Add(values);
}

void Events::MakeIdsUnique() {
  RowsById known(*this);
  std::vector<std::uint32_t> count;  // of the ids, each at the row that had it first
  for (std::size_t row = 0; row < size(); ++row) {
    const std::size_t first = known.Add(row);
    if (first == row) continue;
    if (count.empty()) count.resize(size(), 1);
    const std::string id(GetText(row, EventColumn::kId));
    std::string other;
    do other = id + " #" + std::to_string(++count[first]);
    while (known.Has(other));
    SetId(row, other);
    known.Add(row);
  }
}

}  // namespace host
