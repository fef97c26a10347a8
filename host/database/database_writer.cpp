#include "host/database/database_writer.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <utility>

#include "host/catalogue/table_sources.h"
#include "host/database/query_guard.h"
#include "host/database/sql_statement.h"
#include "host/text/ascii.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

/// The first column of every class's table: the row's number, from 1.
constexpr char kRow[] = "row";
/// The first column of every table, if there are several machines.
constexpr char kMachineColumn[] = "machine";
constexpr char kInteger[] = "INTEGER";
constexpr char kAnyType[] = "";

constexpr char kMachine[] = "machine";
constexpr char kModules[] = "modules";
constexpr char kTables[] = "tables";
constexpr char kNotes[] = "notes";
constexpr char kDoubts[] = "doubts";
constexpr char kProblems[] = "problems";
constexpr char kColumns[] = "columns";
constexpr char kAttachments[] = "attachments";
constexpr char kLog[] = "log";

struct OwnTable {
  const char* name;
  std::string_view columns;  ///< names with blanks between them, those of numbers with an asterisk
};
constexpr OwnTable kOwnTables[] = {
    {kMachine, "name value"},
    {kModules, "position* name description"},
    // SQL does not tell upper case from lower case: `tables` and `columns` say which names the
    // classes and keys were given.
    {kTables, "position* class name title module rows* outcome status"},
    {kNotes, "class text"},
    {kDoubts, "class kind text"},
    {kProblems, "position* text"},
    {kColumns, "class position* key name label"},
    {kAttachments, "class row* key filename text"},
    {kLog, "position* level* file line* text"},
};

/// Bytes of each value of `row` that a database holds, of its end; kMostRowBytes: all.
std::size_t FindMostValueBytes(const Row& row) {
  // What a row has beside its values: the number, and a few bytes for each value.
  constexpr std::size_t kMost = kMostRowBytes - (std::size_t{1} << 16);
  constexpr std::size_t kWidestByte = 3;  // of a code page, in UTF-8
  std::size_t bytes = 0;
  for (const std::string_view value : row.Values()) bytes += value.size();
  if (bytes > kMost / kWidestByte) {
    for (const std::string_view value : row.Values()) {
      bytes += (kWidestByte - 1) * static_cast<std::size_t>(std::ranges::count_if(
                                       value, [](char c) { return (c & 0x80) != 0; }));
    }
  }
  return bytes <= kMost ? kMostRowBytes : kMost / row.ValueCount();
}

const char* ChooseType(std::optional<CellKind> kind) {
  if (!kind || *kind == CellKind::kReal || *kind == CellKind::kNothing) return kAnyType;
  return *kind == CellKind::kInteger ? kInteger : "TEXT";
}

/// `value`, an SQL expression of a trimmed text, as a number if it is one.
std::string ConvertToNumber(const std::string& value) {
  // An integer is one that is written as SQLite writes it: "0012" is a name.
  return fmt::format(
      "CASE WHEN CAST(CAST({0} AS INTEGER) AS TEXT) = {0} THEN CAST({0} AS INTEGER) "
      "WHEN {0} GLOB '*[0-9].[0-9]*' AND replace(ltrim({0}, '-'), '.', '') NOT GLOB '*[^0-9]*' "
      "AND {0} NOT GLOB '*.*.*' AND {0} NOT GLOB '--*' THEN CAST({0} AS REAL) "
      "ELSE nullif({0}, '') END",
      value);
}

}  // namespace

DatabaseWriter::DatabaseWriter(Database& database, Machines machines)
    : handle(database.handle), isForSeveral(machines == Machines::kSeveral) {
  Execute(handle, "BEGIN");
  for (const OwnTable& own : kOwnTables) {
    std::vector<SqlColumn> columns;
    for (std::string_view rest = own.columns; !rest.empty();) {
      std::string_view column = rest.substr(0, rest.find(' '));
      rest.remove_prefix(std::min(column.size() + 1, rest.size()));
      const bool isNumber = column.ends_with('*');
      if (isNumber) column.remove_suffix(1);
      columns.push_back({.name = std::string(column), .type = isNumber ? kInteger : "TEXT"});
    }
    Provide(FindTable(own.name, /*isOfClass=*/false), columns);
  }
}

DatabaseWriter::SqlTable& DatabaseWriter::FindTable(std::string_view name, bool isOfClass) {
  const auto [known, isNew] = tables.try_emplace({isOfClass, std::string(name)});
  SqlTable& table = known->second;
  if (!isNew) return table;
  table.name = names.Take(name);
  table.isOfClass = isOfClass;
  if (isForSeveral) table.columns.push_back({.name = table.columnNames.Take(kMachineColumn)});
  if (isOfClass) {
    table.columns.push_back({.name = table.columnNames.Take(kRow), .type = kInteger});
  }
  return table;
}

DatabaseWriter::Places DatabaseWriter::Provide(SqlTable& table,
                                               const std::vector<SqlColumn>& columns) {
  Places places;
  for (const SqlColumn& wanted : columns) {
    // Keys that differ as bytes can read the same: each has its place.
    std::size_t place = isForSeveral ? 1 : 0;
    while (place < table.columns.size() &&
           (table.columns[place].key != wanted.key ||
            (wanted.key.empty() && table.columns[place].name != wanted.name) ||
            std::ranges::find(places, place) != places.end())) {
      ++place;
    }
    places.push_back(place);
    if (place < table.columns.size()) continue;
    SqlColumn& added = table.columns.emplace_back(wanted);
    added.name = table.columnNames.Take(wanted.name);
    if (!table.isMade) continue;
    ownRows.clear();
    Execute(handle, fmt::format("ALTER TABLE {} ADD COLUMN {} {}", QuoteName(table.name),
                                QuoteName(added.name), added.type));
  }
  if (std::exchange(table.isMade, true)) return places;
  std::vector<std::string> definitions;
  for (const SqlColumn& column : table.columns) {
    definitions.push_back(fmt::format("{} {}", QuoteName(column.name), column.type));
  }
  // The number finds a row at once, and takes no room of its own.
  if (table.isOfClass && !isForSeveral) definitions.front() += " PRIMARY KEY";
  Execute(handle,
          fmt::format("CREATE TABLE {} ({})", QuoteName(table.name), fmt::join(definitions, ", ")));
  return places;
}

DatabaseWriter::Rows::Rows(const DatabaseWriter& writer, const SqlTable& table)
    : writer(writer), insert(writer.handle, MakeInsert(table.name, table.columns.size())) {}

Statement& DatabaseWriter::Rows::Begin() {
  if (writer.isForSeveral) insert << writer.machine;
  return insert;
}

DatabaseWriter::Rows& DatabaseWriter::AddTo(const char* ownTable) {
  return ownRows.try_emplace(ownTable, *this, FindTable(ownTable, /*isOfClass=*/false))
      .first->second;
}

void DatabaseWriter::Add(const CollectionView& view, const Facts& facts, std::string_view name) {
  machine = name;
  const Collection& collection = view.GetCollection();
  AddMachine(view, facts);
  Rows& modules = AddTo(kModules);
  std::int64_t position = 0;
  for (const CollectedModule& collected : collection.modules) {
    const auto [module, description] = view.ViewModule(collected);
    (modules.Begin() << ++position << module << description).Run();
  }
  position = 0;
  for (const CollectedTable& table : collection.tables) {
    AddTable(view.ViewTable(table), ++position);
  }
  Rows& problems = AddTo(kProblems);
  position = 0;
  for (const std::string& problem : collection.problems) {
    (problems.Begin() << ++position << problem).Run();
  }
  Rows& log = AddTo(kLog);
  position = 0;
  collection.log.ForEach([&](const KeptLog::Line& line) {
    (log.Begin() << ++position << static_cast<std::int64_t>(line.level) << line.file
                 << static_cast<std::int64_t>(line.line))
        .Borrow(view.LogText(line))
        .Run();
  });
}

void DatabaseWriter::AddMachine(const CollectionView& view, const Facts& more) {
  const Collection& collection = view.GetCollection();
  const MachineFacts& facts = collection.machine;
  const Facts own = {
      {"name", facts.name},
      {"description", facts.description},
      {"recorded", facts.recorded ? "yes" : "no"},
      {"collected", FormatIsoTime(collection.collected)},
      {"languageId", std::to_string(facts.languageId)},
      {"codePage", std::to_string(facts.PrintedCodePage())},
      {"hostExecutable", std::string(view.HostExecutable())},
      {"logFolder", std::string(view.LogFolder())},
      {"recordedAt", facts.recordedAt ? FormatIsoTime(*facts.recordedAt) : ""},
      {"system", facts.system},
      {"contentKey", facts.contentKey},
      {"pqhost", kVersion},
  };
  AddFacts(own);
  AddFacts(more);
}

void DatabaseWriter::AddFacts(const Facts& facts) {
  Rows& rows = AddTo(kMachine);
  for (const auto& [name, value] : facts) (rows.Begin() << name << value).Run();
}

void DatabaseWriter::AddFacts(const Facts& facts, std::string_view name) {
  machine = name;
  AddFacts(facts);
}

void DatabaseWriter::AddRows(
    std::string_view name, const std::vector<PlainColumn>& columns, std::size_t rowCount,
    const std::function<void(std::size_t row, Statement& values)>& addValues) {
  SqlTable& table = FindTable(name, /*isOfClass=*/false);
  std::vector<SqlColumn> wanted;
  for (const PlainColumn& column : columns) {
    wanted.push_back({.name = std::string(column.name), .type = column.type});
  }
  Provide(table, wanted);
  Rows rows(*this, table);
  for (std::size_t row = 0; row < rowCount; ++row) {
    Statement& values = rows.Begin();
    addValues(row, values);
    values.Run();
  }
}

void DatabaseWriter::AddTable(const TableView& view, std::int64_t position) {
  SqlTable& table = FindTable(view.ClassName(), /*isOfClass=*/true);
  const TableStatus& status = view.Status();
  (AddTo(kTables).Begin() << position << view.ClassName() << table.name << view.Title()
                          << view.Module() << static_cast<std::int64_t>(view.RowCount())
                          << status.outcome << status.text)
      .Run();
  for (const std::string& note : status.notes) {
    (AddTo(kNotes).Begin() << view.ClassName() << note).Run();
  }
  const auto addDoubt = [&](const char* kind, const std::string& text) {
    if (!text.empty()) (AddTo(kDoubts).Begin() << view.ClassName() << kind << text).Run();
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
                      .type = isThere ? ChooseType(view.Columns()[column.place].kind) : "TEXT",
                      .holdsNumbers = column.holdsNumbers});
  }
  const Places places = Provide(table, wanted);
  Rows& described = AddTo(kColumns);
  for (std::size_t i = 0; i < places.size(); ++i) {
    (described.Begin() << view.ClassName() << static_cast<std::int64_t>(i + 1) << columns[i].key
                       << table.columns[places[i]].name << columns[i].label)
        .Run();
  }
  AddRows(view, columns, table, places);
}

void DatabaseWriter::AddRows(const TableView& view, const std::vector<KnownColumn>& columns,
                             const SqlTable& table, const Places& places) {
  constexpr std::size_t kNoColumn = KnownColumn::kNotThere;
  Places sources(table.columns.size(), kNoColumn);  // of each column among the view's
  for (std::size_t i = 0; i < columns.size(); ++i) sources[places[i]] = columns[i].place;
  Rows rows(*this, table);
  Rows& attachments = AddTo(kAttachments);
  std::vector<DecodedText> texts;  // of the row, which the database borrows
  texts.reserve(sources.size());
  for (std::size_t i = 0; i < view.RowCount(); ++i) {
    texts.clear();
    const RowView row = view.RowAt(i);
    const auto number = static_cast<std::int64_t>(i + 1);
    const std::size_t most = FindMostValueBytes(view.StoredRow(i));
    Statement& values = rows.Begin() << number;
    for (std::size_t column = isForSeveral ? 2 : 1; column < sources.size(); ++column) {
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

void DatabaseWriter::Copy(Database& from, std::string_view name) {
  machine = name;
  std::vector<std::string> copied;
  from.Query(
      "SELECT name FROM pragma_table_list WHERE schema = 'main' AND type = 'table' "
      "AND name NOT LIKE 'sqlite!_%' ESCAPE '!'",
      [](const Database::Names&) {},
      [&](const Database::Values& values) { copied.push_back(values.front().text); });
  for (const std::string& table : copied) CopyTable(from, table);
}

void DatabaseWriter::CopyTable(Database& from, const std::string& name) {
  SqlTable* table = nullptr;
  Places places;
  std::optional<Rows> rows;
  from.Query(
      fmt::format("SELECT * FROM {}", QuoteName(name)),
      [&](const Database::Names& columnNames) {
        const bool isOfClass = !columnNames.empty() && columnNames.front() == kRow;
        table = &FindTable(name, isOfClass);
        std::vector<SqlColumn> wanted;
        for (const std::string& column : columnNames) {
          const bool isProperty = isOfClass && !wanted.empty();
          wanted.push_back(
              {.name = column, .key = isProperty ? column : std::string(), .type = kAnyType});
        }
        places = Provide(*table, wanted);
        rows.emplace(*this, *table);
      },
      [&](const Database::Values& values) {
        std::vector<const Database::Value*> sources(table->columns.size());
        for (std::size_t i = 0; i < places.size(); ++i) sources[places[i]] = &values[i];
        Statement& insert = rows->Begin();
        for (std::size_t column = 1; column < sources.size(); ++column) {
          const Database::Value* value = sources[column];
          if (value == nullptr) {
            insert << nullptr;
          } else {
            insert.Add(value->kind, value->text);
          }
        }
        insert.Run();
      });
}

void DatabaseWriter::Remove(std::string_view name) {
  for (const auto& [key, table] : tables) {
    if (!table.isMade) continue;
    Statement remove(handle, fmt::format("DELETE FROM {} WHERE {} = ?", QuoteName(table.name),
                                         QuoteName(table.columns.front().name)));
    remove << name;
    remove.Run();
  }
}

void DatabaseWriter::Complete() {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& described : module.tables) {
      std::vector<SqlColumn> columns;
      for (const pq::ColumnDescription& column : described.columns) {
        columns.push_back({.name = column.key,
                           .key = column.key,
                           .label = column.label,
                           .holdsNumbers = column.kind == pq::ValueKind::kNumber});
      }
      SqlTable& table = FindTable(described.className, /*isOfClass=*/true);
      const Places places = Provide(table, columns);
      // Of a database that was copied only the names were known.
      for (std::size_t i = 0; i < places.size(); ++i) {
        SqlColumn& column = table.columns[places[i]];
        if (column.label.empty()) column.label = columns[i].label;
        column.holdsNumbers = column.holdsNumbers || columns[i].holdsNumbers;
      }
    }
  }
  for (const auto& [key, table] : tables) {
    if (table.isOfClass) MakeView(table);
  }
  Execute(handle, "COMMIT");
}

void DatabaseWriter::MakeView(const SqlTable& table) {
  UniqueNames columnNames;
  std::vector<std::string> trimmed;
  std::vector<std::string> shown;
  for (const SqlColumn& column : table.columns) {
    if (column.key.empty()) {
      trimmed.push_back(QuoteName(column.name));
      shown.push_back(QuoteName(columnNames.Take(column.name)));
      continue;
    }
    const std::string value = fmt::format("c{}", trimmed.size());
    trimmed.push_back(fmt::format("trim({}, char(9, 10, 11, 12, 13, 32, 160)) AS {}",
                                  QuoteName(column.name), value));
    std::string name = MakeSnakeCase(column.label);
    if (name.empty()) name = LowerCase(column.key);
    const bool isNumber = column.holdsNumbers || std::string_view(column.type) == kInteger;
    shown.push_back(fmt::format(
        "{} AS {}", isNumber ? ConvertToNumber(value) : fmt::format("nullif({}, '')", value),
        QuoteName(columnNames.Take(name))));
  }
  Execute(handle,
          fmt::format("CREATE VIEW {} AS SELECT {} FROM (SELECT {} FROM {})",
                      QuoteName(names.Take("v_" + LowerCase(table.name))), fmt::join(shown, ", "),
                      fmt::join(trimmed, ", "), QuoteName(table.name)));
}

std::vector<std::string> DescribeDatabaseCuts(const Collection& collection) {
  const TextDecoder decode(collection.machine.codePage);
  std::vector<std::string> lines;
  for (const CollectedTable& table : collection.tables) {
    if (table.rows == nullptr) continue;
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const Row& row = table.rows->rows[i];
      const std::size_t most = FindMostValueBytes(row);
      if (most == kMostRowBytes) continue;
      lines.push_back(
          fmt::format("{}: row {} is too large for a database, which has of each value "
                      "the last {} bytes; other formats have all of it",
                      decode(table.className), i + 1, most));
    }
  }
  return lines;
}

}  // namespace host
