// A collection in UTF-8, its values found by row and column: all that a writer needs to know of it.
// A value is decoded each time it is asked for, and ASCII is not even copied. Views refer to the
// collection, which must not change as long as they are in use.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/collect/collection.h"
#include "host/text/decoder.h"

namespace host {

enum class Attachments { kShown, kLeftOut };

/// How all views of a collection read it.
struct ViewSettings {
  TextDecoder decoder;
  Attachments attachments = Attachments::kShown;
};

/// One property of a row, with its value.
class CellView {
 public:
  CellView(const ViewSettings& settings, const Row& row, std::size_t place)
      : settings(settings), row(row), place(place) {}

  DecodedText Key() const { return settings.decoder.Decode(GetColumn().key); }
  /// The row's own label; other rows may label the key otherwise.
  DecodedText Label() const { return settings.decoder.Decode(GetColumn().label); }
  DecodedText Text() const { return settings.decoder.Decode(GetBytes()); }
  /// kNothing also for a whole file that is left out.
  CellKind Kind() const { return IsLeftOut() ? CellKind::kNothing : GetColumn().kind; }
  /// Bytes of the value as it was collected.
  std::size_t ByteSize() const { return GetBytes().size(); }
  /// The value is a whole file.
  bool IsFile() const;
  std::optional<DecodedText> FileName() const;

 private:
  const Column& GetColumn() const { return row.shape->columns[place]; }
  bool IsLeftOut() const { return settings.attachments == Attachments::kLeftOut && IsFile(); }
  std::string_view GetBytes() const { return IsLeftOut() ? std::string_view() : row.Value(place); }

  const ViewSettings& settings;
  Row row;
  std::size_t place;
};

/// A property with attributes, such as a whole file with its name.
struct AttachmentView {
  DecodedText key;
  /// Name and value; each name once, with the value that it was given last.
  std::vector<std::pair<DecodedText, DecodedText>> attributes;
  std::optional<std::size_t> byteSize;  ///< of the property's value; none when that is not there
};

class RowView {
 public:
  /// For each column of the table its place among the row's properties, or kMissing.
  using Places = std::vector<std::size_t>;
  static constexpr std::size_t kMissing = static_cast<std::size_t>(-1);

  RowView(const ViewSettings& settings, const Row& row, const Places& places)
      : settings(settings), row(row), places(places) {}

  /// The row's properties, in its own order.
  std::size_t CellCount() const { return row.ValueCount(); }
  CellView CellAt(std::size_t place) const { return {settings, row, place}; }

  /// The property of a column of the table; none when the row has no such property.
  std::optional<CellView> FindCell(std::size_t column) const;

  /// The properties with attributes, in the order in which these came.
  std::vector<AttachmentView> ListAttachments() const;

 private:
  std::optional<std::size_t> FindByteSize(std::string_view key) const;

  const ViewSettings& settings;
  Row row;
  const Places& places;
};

/// A key that some row of a table has.
struct ColumnView {
  DecodedText key;
  DecodedText label;                     ///< the first that a row gave it
  std::vector<DecodedText> otherLabels;  ///< that later rows gave it, each once
  /// Of all its cells; none when they differ.
  std::optional<CellKind> kind = CellKind::kText;
  bool hasFiles = false;  ///< some row has a whole file there
};

/// A column of a table, whether a row has its key or not.
struct KnownColumn {
  std::string key;
  std::string label;              ///< as rows have it, otherwise as described; may be empty
  bool holdsNumbers = false;      ///< texts that are numbers, or words where there is none
  std::size_t place = kNotThere;  ///< among the columns of the table's view
  static constexpr std::size_t kNotThere = static_cast<std::size_t>(-1);
};

/// A table of a collection.
class TableView {
 public:
  /// Reads the rows' keys and labels, but none of their values.
  TableView(const ViewSettings& settings, const CollectedTable& table);

  DecodedText ClassName() const { return settings.decoder.Decode(table.className); }
  DecodedText Title() const;
  DecodedText Module() const { return settings.decoder.Decode(table.module); }
  const TableStatus& Status() const { return table.status; }

  bool IsByRow() const { return table.layout.byRow; }
  std::vector<DecodedText> ListHeaders() const;
  const std::vector<std::uint64_t>& LayoutNumbers() const { return table.layout.numbers; }

  /// The keys of its rows, in the order in which they first came; without rows, those that are
  /// known.
  const std::vector<ColumnView>& Columns() const { return columns; }
  /// The columns that the table is known to have, then others of its rows: the same for a class on
  /// every machine, but for these.
  std::vector<KnownColumn> ListKnownColumns() const;
  std::size_t RowCount() const { return table.RowCount(); }
  /// `number` counts from 0.
  RowView RowAt(std::size_t number) const;
  Row StoredRow(std::size_t number) const { return table.rows->rows[number]; }
  /// One after the other, which takes less than one by one by their numbers.
  const Rows& StoredRows() const { return table.rows->rows; }
  /// Of one of these.
  RowView View(const Row& stored) const {
    return {settings, stored, placesByShape.at(stored.shape)};
  }
  /// One when all rows have the same, otherwise one per row.
  std::vector<DecodedText> ListInstanceKeys() const;

 private:
  const ViewSettings& settings;
  const CollectedTable& table;
  std::vector<ColumnView> columns;
  std::map<const RowShape*, RowView::Places> placesByShape;
};

struct ModuleView {
  DecodedText name;
  DecodedText description;
};

/// The texts of a collection, with the one decoder for all of them, which views of tables refer to.
class CollectionView {
 public:
  explicit CollectionView(const Collection& collection,
                          Attachments attachments = Attachments::kShown)
      : collection(collection), settings{TextDecoder(collection.machine.codePage), attachments} {}

  const Collection& GetCollection() const { return collection; }

  DecodedText HostExecutable() const {
    return settings.decoder.Decode(collection.machine.hostExecutable);
  }
  DecodedText LogFolder() const { return settings.decoder.Decode(collection.machine.logFolder); }
  ModuleView ViewModule(const CollectedModule& module) const {
    return {settings.decoder.Decode(module.name), settings.decoder.Decode(module.description)};
  }
  TableView ViewTable(const CollectedTable& table) const { return {settings, table}; }
  DecodedText LogText(const KeptLog::Line& line) const {
    return settings.decoder.Decode(line.text);
  }
  /// Something that was found in one of the values, such as a tool's version.
  DecodedText Excerpt(std::string_view bytes) const { return settings.decoder.Decode(bytes); }

 private:
  const Collection& collection;
  ViewSettings settings;
};

}  // namespace host
