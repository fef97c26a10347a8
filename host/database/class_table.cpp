#include "host/database/class_table.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/catalogue/table_sources.h"
#include "host/database/database_cuts.h"
#include "host/database/own_tables.h"

namespace host {
namespace {

const char* ChooseType(std::optional<CellKind> kind) {
  if (!kind || *kind == CellKind::kReal || *kind == CellKind::kNothing) return kAnyType;
  return *kind == CellKind::kInteger ? kIntegerType : kTextType;
}

void AddClassRows(const TableView& view, const std::vector<KnownColumn>& columns,
                  const SqlTable& table, const SqlTables::Places& places, SqlTables& tables) {
  constexpr std::size_t kNoColumn = KnownColumn::kNotThere;
  SqlTables::Places sources(table.columns.size(), kNoColumn);  // of each column among the view's
  for (std::size_t i = 0; i < columns.size(); ++i) sources[places[i]] = columns[i].place;
  SqlRows rows = tables.AddRows(table);
  SqlRows& attachments = tables.AddTo(kAttachmentsTable);
  std::vector<DecodedText> texts;  // of the row, which the database borrows
  texts.reserve(sources.size());
  for (std::size_t i = 0; i < view.RowCount(); ++i) {
    texts.clear();
    const RowView row = view.RowAt(i);
    const auto number = static_cast<std::int64_t>(i + 1);
    const std::size_t most = FindMostValueBytes(view.StoredRow(i));
    Statement& values = rows.Begin() << number;
    for (std::size_t column = tables.CountFirstColumns(); column < sources.size(); ++column) {
      const std::optional<CellView> cell =
          sources[column] == kNoColumn ? std::nullopt : row.FindCell(sources[column]);
      if (cell && cell->Kind() == CellKind::kText) {
        values.Borrow(KeepEnd(texts.emplace_back(cell->Text()), most));
      } else if (cell) {
        values.Add(cell->Kind(), KeepEnd(cell->Text(), most));
      } else {
        values << nullptr;
      }
    }
    values.Run();
    for (std::size_t place = 0; place < row.CellCount(); ++place) {
      const CellView cell = row.CellAt(place);
      if (!cell.IsFile()) continue;
      const DecodedText text = cell.Text();
      Statement& values = attachments.Begin() << view.ClassName() << number << cell.Key()
                                              << cell.FileName().value_or(cell.Key());
      if (cell.Kind() == CellKind::kText) {
        values.Borrow(KeepEnd(text, most));
      } else {
        values.Add(cell.Kind(), KeepEnd(text, most));
      }
      values.Run();
    }
  }
}

}  // namespace

void AddClassTable(const TableView& view, std::int64_t position, SqlTables& tables) {
  SqlTable& table = tables.Find(view.ClassName(), /*isOfClass=*/true);
  const TableStatus& status = view.Status();
  (tables.AddTo(kTablesTable).Begin()
   << position << view.ClassName() << table.name << view.Title() << view.Module()
   << static_cast<std::int64_t>(view.RowCount()) << status.outcome << status.text)
      .Run();
  for (const std::string& note : status.notes) {
    (tables.AddTo(kNotesTable).Begin() << view.ClassName() << note).Run();
  }
  const auto addDoubt = [&](const char* kind, const std::string& text) {
    if (text.empty()) return;
    (tables.AddTo(kDoubtsTable).Begin() << view.ClassName() << kind << text).Run();
  };
  addDoubt("missing", status.missing);
  addDoubt("old files", status.oldFiles);
  for (const std::string& label : status.unfitLabels) addDoubt("unfit label", label);
  const std::vector<KnownColumn> columns = view.ListKnownColumns();
  std::vector<SqlColumn> wanted;
  for (const KnownColumn& column : columns) {
    const bool isThere = column.place != KnownColumn::kNotThere;
    wanted.push_back({.name = column.key,
                      .key = column.key,
                      .label = column.label,
                      .type = isThere ? ChooseType(view.Columns()[column.place].kind) : kTextType,
                      .holdsNumbers = column.holdsNumbers});
  }
  const SqlTables::Places places = tables.Provide(table, wanted);
  SqlRows& described = tables.AddTo(kColumnsTable);
  for (std::size_t i = 0; i < places.size(); ++i) {
    (described.Begin() << view.ClassName() << static_cast<std::int64_t>(i + 1) << columns[i].key
                       << table.columns[places[i]].name << columns[i].label)
        .Run();
  }
  AddClassRows(view, columns, table, places, tables);
}

void AddDescribedClasses(SqlTables& tables) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& described : module.tables) {
      std::vector<SqlColumn> columns;
      for (const pq::ColumnDescription& column : described.columns) {
        columns.push_back({.name = column.key,
                           .key = column.key,
                           .label = column.label,
                           .holdsNumbers = column.kind == pq::ValueKind::kNumber});
      }
      SqlTable& table = tables.Find(described.className, /*isOfClass=*/true);
      const SqlTables::Places places = tables.Provide(table, columns);
      // Of a database that was copied only the names were known.
      for (std::size_t i = 0; i < places.size(); ++i) {
        SqlColumn& column = table.columns[places[i]];
        if (column.label.empty()) column.label = columns[i].label;
        column.holdsNumbers = column.holdsNumbers || columns[i].holdsNumbers;
      }
    }
  }
}

}  // namespace host
