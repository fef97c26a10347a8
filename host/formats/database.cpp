#include "host/formats/database.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "host/collect/table_view.h"
#include "host/files/whole_file.h"
#include "host/formats/query_guard.h"
#include "host/formats/shown_cell.h"
#include "host/text/ascii.h"
#include "host/text/hex_text.h"
#include "host/text/path_text.h"
#include "host/text/time_text.h"
#include "host/text/version.h"

namespace host {
namespace {

// SQL does not tell upper case from lower case: `tables` and `columns` say which names the classes
// and keys were given.
constexpr char kSchema[] = R"(
CREATE TABLE machine (name TEXT, value TEXT);
CREATE TABLE modules (position INTEGER PRIMARY KEY, name TEXT, description TEXT);
CREATE TABLE tables (position INTEGER PRIMARY KEY, class TEXT, name TEXT, title TEXT, module TEXT,
                     rows INTEGER, outcome TEXT, status TEXT);
CREATE TABLE notes (class TEXT, text TEXT);
CREATE TABLE columns (class TEXT, position INTEGER, key TEXT, name TEXT, label TEXT,
                      PRIMARY KEY (class, position));
CREATE TABLE attachments (class TEXT, row INTEGER, key TEXT, filename TEXT, text TEXT);
CREATE TABLE log (position INTEGER PRIMARY KEY, level INTEGER, file TEXT, line INTEGER, text TEXT);
)";
constexpr std::string_view kOwnTables[] = {"machine", "modules",     "tables", "notes",
                                           "columns", "attachments", "log"};
/// The first column of every class's table: the row's number, from 1.
constexpr std::string_view kRowColumn = "row";

struct CloseStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, CloseStatement>;

void Execute(sqlite3* handle, const char* sql) {
  if (sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK) FailAsSqlite(handle);
}

/// `name` as an SQL identifier; any text can be one.
std::string Quote(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

/// An INSERT statement that is run once per row.
class Insert {
 public:
  Insert(sqlite3* handle, const std::string& table, std::size_t columnCount) : handle(handle) {
    std::string places = "?";
    for (std::size_t i = 1; i < columnCount; ++i) places += ",?";
    const std::string sql = fmt::format("INSERT INTO {} VALUES ({})", Quote(table), places);
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &raw, nullptr) != SQLITE_OK)
      FailAsSqlite(handle);
    statement.reset(raw);
  }

  Insert& operator<<(std::string_view text) {
    Check(sqlite3_bind_text64(statement.get(), ++bound, text.data(), text.size(), SQLITE_TRANSIENT,
                              SQLITE_UTF8));
    return *this;
  }
  Insert& operator<<(std::int64_t number) {
    Check(sqlite3_bind_int64(statement.get(), ++bound, number));
    return *this;
  }
  void SkipColumn() { ++bound; }

  void Run() {
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_DONE) FailAsSqlite(handle);
    sqlite3_reset(statement.get());
    sqlite3_clear_bindings(statement.get());
    bound = 0;
  }

 private:
  void Check(int result) const {
    if (result != SQLITE_OK) FailAsSqlite(handle);
  }

  sqlite3* handle;
  StatementHandle statement;
  int bound = 0;
};

/// Gives out names that differ in more than case, as SQL needs them.
class UniqueNames {
 public:
  template <typename Taken>
  explicit UniqueNames(const Taken& takenNames) {
    for (const std::string_view name : takenNames) taken.insert(LowerCase(name));
  }
  std::string Take(std::string_view wanted) {
    std::string name(wanted);
    for (int i = 2; !taken.insert(LowerCase(name)).second; ++i) {
      name = fmt::format("{}_{}", wanted, i);
    }
    return name;
  }

 private:
  std::set<std::string> taken;
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

class Filler {
 public:
  Filler(sqlite3* handle, const Collection& collection)
      : handle(handle), collection(collection), view(collection) {}

  void Fill() {
    Execute(handle, kSchema);
    AddMachine();
    Insert modules(handle, "modules", 3);
    std::int64_t position = 0;
    for (const CollectedModule& module : collection.modules) {
      const auto [name, description] = view.ViewModule(module);
      (modules << ++position << name << description).Run();
    }
    Insert tables(handle, "tables", 8);
    Insert notes(handle, "notes", 2);
    UniqueNames names(kOwnTables);
    position = 0;
    for (const CollectedTable& collected : collection.tables) {
      const TableView table = view.ViewTable(collected);
      const std::string name = names.Take(table.ClassName());
      (tables << ++position << table.ClassName() << name << table.Title() << table.Module()
              << static_cast<std::int64_t>(table.RowCount()) << table.Status().outcome
              << table.Status().text)
          .Run();
      for (const std::string& note : table.Status().notes) {
        (notes << table.ClassName() << note).Run();
      }
      AddTable(table, name);
    }
    Insert log(handle, "log", 5);
    position = 0;
    for (const LogLine& line : collection.log) {
      (log << ++position << static_cast<std::int64_t>(line.level) << line.file
           << static_cast<std::int64_t>(line.line) << view.LogText(line))
          .Run();
    }
  }

 private:
  void AddMachine() {
    const MachineFacts& machine = collection.machine;
    const std::pair<const char*, std::string> facts[] = {
        {"name", machine.name},
        {"description", machine.description},
        {"recorded", machine.recorded ? "yes" : "no"},
        {"collected", FormatIsoTime(collection.collected)},
        {"languageId", std::to_string(machine.languageId)},
        {"codePage", std::to_string(machine.codePage)},
        {"hostExecutable", std::string(view.HostExecutable())},
        {"logFolder", std::string(view.LogFolder())},
        {"pqhost", kVersion},
    };
    Insert insert(handle, "machine", 2);
    for (const auto& [name, value] : facts) (insert << name << value).Run();
  }

  void CreateTable(const TableView& table, const std::string& name) {
    std::string definition = fmt::format("{} INTEGER PRIMARY KEY", Quote(kRowColumn));
    UniqueNames names(std::vector<std::string_view>{kRowColumn});
    Insert columns(handle, "columns", 5);
    std::int64_t position = 0;
    for (const ColumnView& column : table.Columns()) {
      const std::string columnName = names.Take(column.key);
      definition +=
          fmt::format(", {} {}", Quote(columnName), column.isInteger ? "INTEGER" : "TEXT");
      (columns << table.ClassName() << ++position << column.key << columnName << column.label)
          .Run();
    }
    Execute(handle, fmt::format("CREATE TABLE {} ({})", Quote(name), definition).c_str());
  }

  void AddTable(const TableView& table, const std::string& name) {
    CreateTable(table, name);
    Insert rows(handle, name, table.Columns().size() + 1);
    Insert attachments(handle, "attachments", 5);
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const RowView row = table.RowAt(i);
      const auto number = static_cast<std::int64_t>(i + 1);
      const std::size_t most = FindMostValueBytes(table.StoredRow(i));
      rows << number;
      for (std::size_t column = 0; column < table.Columns().size(); ++column) {
        if (const std::optional<CellView> cell = row.FindCell(column)) {
          rows << KeepEnd(cell->Text(), most);
        } else {
          rows.SkipColumn();
        }
      }
      rows.Run();
      for (std::size_t place = 0; place < row.CellCount(); ++place) {
        const CellView cell = row.CellAt(place);
        if (!cell.IsFile()) continue;
        (attachments << table.ClassName() << number << cell.Key()
                     << cell.FileName().value_or(cell.Key()) << KeepEnd(cell.Text(), most))
            .Run();
      }
    }
  }

  sqlite3* handle;
  const Collection& collection;
  CollectionView view;
};

/// For a file to be read. Immutable: no locks, and no journal is read, rolled back or left.
constexpr char kReadOnly[] = "?mode=ro&immutable=1";

/// `file` as a name that no character of can mean anything to SQLite.
std::string MakeUri(const std::filesystem::path& file, const char* options) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
  std::string uri = "file:";
  for (const char8_t byte : std::filesystem::absolute(file).u8string()) {
    const char c = static_cast<char>(byte);
    if (kPlain.find(c) == std::string_view::npos) {
      uri += '%' + HexText({&c, 1});
    } else {
      uri += c;
    }
  }
  return uri + options;
}

/// Changes that SQLite keeps beside a file until it is closed would be left out without a word.
void RefuseOpenChanges(const std::filesystem::path& file) {
  for (const char* suffix : {"-wal", "-journal"}) {
    std::filesystem::path beside = file;
    beside += suffix;
    std::error_code error;
    const auto size = std::filesystem::file_size(beside, error);
    if (error || size == 0) continue;
    throw DatabaseError(
        fmt::format("{} has changes that are not in the database yet: let the program that writes "
                    "it close it, or move that file away to ask without them",
                    PathText(beside)));
  }
}

void CheckDatabaseFile(const std::filesystem::path& file) {
  try {
    CheckIsPlainFile(file);
  } catch (const std::runtime_error& error) {
    throw DatabaseError(fmt::format("{}: {}", PathText(file), error.what()));
  }
  RefuseOpenChanges(file);
}

/// Runs one statement and reads its rows.
class Reader {
 public:
  Reader(sqlite3* handle, std::chrono::seconds timeLimit)
      : handle(handle), guard(handle, timeLimit) {}

  /// Throws DatabaseError unless `sql` is one statement that only reads.
  void Prepare(const std::string& sql) {
    sqlite3_stmt* raw = nullptr;
    const char* rest = nullptr;
    const auto size = static_cast<int>(sql.size());
    const int result = sqlite3_prepare_v2(handle, sql.c_str(), size, &raw, &rest);
    statement.reset(raw);
    if (result != SQLITE_OK) guard.Fail(result);
    if (statement == nullptr) throw DatabaseError("there is no statement in the query");
    if (std::string_view(rest).find_first_not_of(" \t\r\n;") != std::string_view::npos) {
      throw DatabaseError("the query has more than one statement");
    }
    if (sqlite3_stmt_readonly(raw) == 0) throw DatabaseError(kOnlyReading);
  }

  Database::Names ListColumns() const {
    Database::Names names;
    const int count = sqlite3_column_count(statement.get());
    for (int i = 0; i < count; ++i) names.emplace_back(sqlite3_column_name(statement.get(), i));
    return names;
  }

  /// Whether there was one more row.
  bool TakeRow(Database::Values& values) {
    const int result = sqlite3_step(statement.get());
    if (result == SQLITE_DONE) return false;
    if (result != SQLITE_ROW) guard.Fail(result);
    std::size_t bytes = 0;
    std::vector<bool> gaps;
    for (std::size_t i = 0; i < values.size(); ++i) {
      values[i] = ReadColumn(static_cast<int>(i));
      if (values[i]) bytes += values[i]->size();
      gaps.push_back(!values[i]);
    }
    // Rows that lack the same columns share the names of those that they have.
    if (gapsSeen.insert(std::move(gaps)).second) bytes += CountNameBytes();
    guard.CountRow(values.size(), bytes);
    return true;
  }

 private:
  std::optional<std::string> ReadColumn(int column) const {
    sqlite3_stmt* const row = statement.get();
    if (sqlite3_column_type(row, column) == SQLITE_NULL) return std::nullopt;
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
    if (text == nullptr && sqlite3_errcode(handle) == SQLITE_NOMEM) guard.Fail(SQLITE_NOMEM);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
    return text == nullptr ? std::string() : std::string(text, size);
  }

  /// Key and label of each column.
  std::size_t CountNameBytes() const {
    constexpr std::size_t kNoText = sizeof(std::string);
    std::size_t bytes = 0;
    for (const std::string& name : ListColumns()) bytes += 2 * (kNoText + name.size());
    return bytes;
  }

  sqlite3* handle;
  QueryGuard guard;
  StatementHandle statement;
  std::set<std::vector<bool>> gapsSeen;  ///< NULLs of a row
};

}  // namespace

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

std::string DescribeTimeout(std::chrono::seconds timeLimit) {
  const auto seconds = static_cast<std::size_t>(timeLimit.count());
  return fmt::format("the query took longer than {}: ask for less, or allow more with --time-limit",
                     FormatCount(seconds, "second"));
}

Database::Database(std::chrono::seconds queryTime) : queryTime(queryTime) {
  if (sqlite3_open(":memory:", &handle) != SQLITE_OK) FailAsSqlite(handle);
}

Database::Database(const NewFile& file) : queryTime(kUsualQueryTime) {
  // If all goes wrong, the file goes too: it needs no journal, and no waiting for the disk.
  constexpr char kNoJournal[] = "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF";
  const int result = sqlite3_open_v2(MakeUri(file.path, "?mode=rw").c_str(), &handle,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_URI, nullptr);
  try {
    if (result != SQLITE_OK) FailAsSqlite(handle);
    Execute(handle, kNoJournal);
  } catch (const DatabaseError&) {
    sqlite3_close(handle);
    throw;
  }
}

Database::Database(const std::filesystem::path& file, std::chrono::seconds queryTime)
    : queryTime(queryTime) {
  CheckDatabaseFile(file);
  const int result = sqlite3_open_v2(MakeUri(file, kReadOnly).c_str(), &handle,
                                     SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, nullptr);
  try {
    if (result != SQLITE_OK) FailAsSqlite(handle);
    // The file is looked at only now.
    Query(
        "SELECT 1 FROM sqlite_schema LIMIT 1", [](const Names&) {}, [](const Values&) {});
  } catch (const DatabaseError& error) {
    sqlite3_close(handle);
    throw DatabaseError(fmt::format("{}: {}", PathText(file), error.what()));
  }
}

Database::~Database() { sqlite3_close(handle); }

void Database::Fill(const Collection& collection) {
  Execute(handle, "BEGIN");
  Filler(handle, collection).Fill();
  Execute(handle, "COMMIT");
}

void Database::Query(const std::string& sql, const std::function<void(const Names&)>& onColumns,
                     const std::function<void(const Values&)>& onRow) {
  Reader reader(handle, queryTime);
  reader.Prepare(sql);
  const Names names = reader.ListColumns();
  onColumns(names);
  Values values(names.size());
  while (reader.TakeRow(values)) onRow(values);
}

}  // namespace host
