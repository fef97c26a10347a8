#include "host/collect/table_view.h"

#include <algorithm>
#include <set>

#include "host/catalogue/table_sources.h"

namespace host {
namespace {

/// The value of an attribute of the property `key`, the one set last; null when it has none.
const std::string* FindAttribute(const RowShape& shape, std::string_view key,
                                 std::string_view name) {
  const auto found =
      std::find_if(shape.attributes.rbegin(), shape.attributes.rend(),
                   [&](const Attribute& a) { return a.propertyKey == key && a.name == name; });
  return found == shape.attributes.rend() ? nullptr : &found->value;
}

/// The columns of a table before it has rows.
const std::vector<pq::ColumnDescription>& FindDescribedColumns(const CollectedTable& table) {
  const pq::TableDescription* description = FindTableDescription(table.className);
  return description == nullptr ? table.columns : description->columns;
}

bool HoldsFile(const RowShape& shape, std::string_view key) {
  const std::string* raw = FindAttribute(shape, key, "raw");
  return raw != nullptr && *raw == "true";
}

}  // namespace

bool CellView::IsFile() const { return HoldsFile(*row.shape, GetColumn().key); }

std::optional<DecodedText> CellView::FileName() const {
  const std::string* name = FindAttribute(*row.shape, GetColumn().key, "filename");
  if (name == nullptr) return std::nullopt;
  return settings.decoder.Decode(*name);
}

std::optional<CellView> RowView::FindCell(std::size_t column) const {
  if (places[column] == kMissing) return std::nullopt;
  return CellAt(places[column]);
}

std::optional<std::size_t> RowView::FindByteSize(std::string_view key) const {
  for (std::size_t place = 0; place < CellCount(); ++place) {
    const CellView cell = CellAt(place);
    if (cell.Key().View() != key) continue;
    if (cell.Kind() == CellKind::kNothing) return std::nullopt;
    return cell.ByteSize();
  }
  return std::nullopt;
}

std::vector<AttachmentView> RowView::ListAttachments() const {
  std::vector<AttachmentView> attachments;
  for (const Attribute& attribute : row.shape->attributes) {
    DecodedText key = settings.decoder.Decode(attribute.propertyKey);
    auto attachment =
        std::find_if(attachments.begin(), attachments.end(),
                     [&](const AttachmentView& a) { return a.key.View() == key.View(); });
    if (attachment == attachments.end()) {
      const std::optional<std::size_t> byteSize = FindByteSize(key);
      attachments.push_back({std::move(key), {}, byteSize});
      attachment = attachments.end() - 1;
    }
    auto& attributes = attachment->attributes;
    DecodedText name = settings.decoder.Decode(attribute.name);
    DecodedText value = settings.decoder.Decode(attribute.value);
    const auto known = std::find_if(attributes.begin(), attributes.end(), [&](const auto& entry) {
      return entry.first.View() == name.View();
    });
    if (known == attributes.end()) {
      attributes.emplace_back(std::move(name), std::move(value));
    } else {
      known->second = std::move(value);
    }
  }
  return attachments;
}

TableView::TableView(const ViewSettings& settings, const CollectedTable& table)
    : settings(settings), table(table) {
  if (table.rows == nullptr) {
    for (const pq::ColumnDescription& column : FindDescribedColumns(table)) {
      columns.push_back({DecodedText(std::string_view(column.key)),
                         DecodedText(std::string_view(column.label)),
                         {}});
    }
    return;
  }
  std::map<std::string_view, std::size_t> columnsByKey;
  std::set<std::pair<std::size_t, std::string_view>> labels;
  for (const Column& column : table.rows->columns) {
    columnsByKey.emplace(column.key, columns.size());
    labels.emplace(columns.size(), column.label);
    columns.push_back({settings.decoder.Decode(column.key),
                       settings.decoder.Decode(column.label),
                       {},
                       column.kind});
  }
  for (const Row& row : table.rows->rows) {
    const RowShape& shape = *row.shape;
    const auto [known, isNew] =
        placesByShape.try_emplace(&shape, columns.size(), RowView::kMissing);
    if (!isNew) continue;
    for (std::size_t place = 0; place < shape.columns.size(); ++place) {
      const Column& property = shape.columns[place];
      const std::size_t at = columnsByKey.at(property.key);
      known->second[at] = place;
      ColumnView& column = columns[at];
      if (column.kind != property.kind) column.kind.reset();
      column.hasFiles = column.hasFiles || HoldsFile(shape, property.key);
      if (labels.emplace(at, property.label).second) {
        column.otherLabels.push_back(settings.decoder.Decode(property.label));
      }
    }
  }
}

std::vector<KnownColumn> TableView::ListKnownColumns() const {
  std::vector<KnownColumn> known;
  std::map<std::string, std::size_t, std::less<>> places;
  for (const pq::ColumnDescription& column : FindDescribedColumns(table)) {
    places.emplace(column.key, known.size());
    known.push_back({column.key, column.label, column.kind == pq::ValueKind::kNumber});
  }
  for (std::size_t place = 0; place < columns.size(); ++place) {
    const std::string key(columns[place].key);
    // Keys that differ as bytes can read the same: each has its place.
    auto at = places.find(key);
    if (at == places.end() || known[at->second].place != KnownColumn::kNotThere) {
      at = places.insert_or_assign(key, known.size()).first;
      known.push_back({key, {}});
    }
    if (RowCount() > 0) known[at->second].place = place;
    if (!columns[place].label.View().empty()) known[at->second].label = columns[place].label.View();
  }
  return known;
}

DecodedText TableView::Title() const {
  const std::string title = TitleOf(table.className);  // The class name itself, if not known.
  return DecodedText(settings.decoder(title));
}

std::vector<DecodedText> TableView::ListHeaders() const {
  std::vector<DecodedText> headers;
  for (const std::string& header : table.layout.headers)
    headers.push_back(settings.decoder.Decode(header));
  return headers;
}

RowView TableView::RowAt(std::size_t number) const { return View(StoredRow(number)); }

std::vector<DecodedText> TableView::ListInstanceKeys() const {
  std::vector<DecodedText> keys;
  if (RowCount() == 0) return keys;
  const Rows& rows = table.rows->rows;
  const std::string& first = rows.front().shape->instanceKey;
  const bool areSame =
      std::all_of(placesByShape.begin(), placesByShape.end(),
                  [&](const auto& entry) { return entry.first->instanceKey == first; });
  const std::size_t count = areSame ? 1 : rows.size();
  keys.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    keys.push_back(settings.decoder.Decode(rows[i].shape->instanceKey));
  }
  return keys;
}

}  // namespace host
