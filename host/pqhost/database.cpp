#include "host/pqhost/database.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string_view>

#include "host/pqhost/output_file.h"
#include "host/pqhost/row_cells.h"
#include "host/pqhost/table_sources.h"
#include "host/pqhost/text.h"
#include "host/pqhost/version.h"

namespace host {
namespace {

// `tables` and `columns` tell which names the classes and keys got where SQL tells no upper case
// from lower case.
constexpr char kSchema[] = R"(
CREATE TABLE machine (name TEXT, value TEXT);
CREATE TABLE modules (position INTEGER PRIMARY KEY, name TEXT, description TEXT);
CREATE TABLE tables (position INTEGER PRIMARY KEY, class TEXT, name TEXT, title TEXT, module TEXT,
                     rows INTEGER, outcome TEXT, status TEXT);
CREATE TABLE columns (class TEXT, position INTEGER, key TEXT, name TEXT, label TEXT,
                      PRIMARY KEY (class, position));
CREATE TABLE attachments (class TEXT, row INTEGER, key TEXT, filename TEXT, text TEXT);
CREATE TABLE log (position INTEGER PRIMARY KEY, level INTEGER, file TEXT, line INTEGER, text TEXT);
)";
constexpr std::string_view kOwnTables[] = {"machine", "modules",     "tables",
                                           "columns", "attachments", "log"};
/// Every class's table has this column first: the row's place, from 1.
constexpr std::string_view kRowColumn = "row";

struct CloseStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, CloseStatement>;

[[noreturn]] void Fail(sqlite3* handle) {
  std::string text = handle == nullptr ? "out of memory" : sqlite3_errmsg(handle);
  std::replace(text.begin(), text.end(), '\n', ' ');
  throw DatabaseError(text);
}

void Execute(sqlite3* handle, const char* sql) {
  if (sqlite3_exec(handle, sql, nullptr, nullptr, nullptr) != SQLITE_OK) Fail(handle);
}

/// An SQL name, whatever it holds.
std::string Quoted(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

/// A statement that is run many times with other values.
class Insert {
 public:
  Insert(sqlite3* handle, const std::string& table, std::size_t columnCount) : handle(handle) {
    std::string places = "?";
    for (std::size_t i = 1; i < columnCount; ++i) places += ",?";
    const std::string sql = fmt::format("INSERT INTO {} VALUES ({})", Quoted(table), places);
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &raw, nullptr) != SQLITE_OK) Fail(handle);
    statement.reset(raw);
  }

  Insert& operator<<(const std::string& text) {
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
    if (result != SQLITE_DONE) Fail(handle);
    sqlite3_reset(statement.get());
    sqlite3_clear_bindings(statement.get());
    bound = 0;
  }

 private:
  void Check(int result) const {
    if (result != SQLITE_OK) Fail(handle);
  }

  sqlite3* handle;
  StatementHandle statement;
  int bound = 0;
};

/// Gives out names that differ without regard to case, as SQL wants them.
class UniqueNames {
 public:
  template <typename Taken>
  explicit UniqueNames(const Taken& takenNames) {
    for (const std::string_view name : takenNames) taken.insert(Folded(name));
  }
  std::string Take(const std::string& wanted) {
    std::string name = wanted;
    for (int i = 2; !taken.insert(Folded(name)).second; ++i) {
      name = fmt::format("{}_{}", wanted, i);
    }
    return name;
  }

 private:
  static std::string Folded(std::string_view name) {
    std::string folded(name);
    for (char& c : folded) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return folded;
  }
  std::set<std::string> taken;
};

class Filler {
 public:
  Filler(sqlite3* handle, const Collection& collection)
      : handle(handle), collection(collection), decode(collection.machine.codePage) {}

  void Fill() {
    Execute(handle, kSchema);
    AddMachine();
    Insert modules(handle, "modules", 3);
    std::int64_t position = 0;
    for (const CollectedModule& module : collection.modules) {
      (modules << ++position << decode(module.name) << decode(module.description)).Run();
    }
    Insert tables(handle, "tables", 8);
    UniqueNames names(kOwnTables);
    position = 0;
    for (const CollectedTable& table : collection.tables) {
      const std::string name = names.Take(decode(table.className));
      (tables << ++position << decode(table.className) << name << decode(TitleOf(table.className))
              << decode(table.module) << static_cast<std::int64_t>(table.RowCount())
              << table.status.outcome << table.status.text)
          .Run();
      AddTable(table, name);
    }
    Insert log(handle, "log", 5);
    position = 0;
    for (const LogLine& line : collection.log) {
      (log << ++position << static_cast<std::int64_t>(line.level) << line.file
           << static_cast<std::int64_t>(line.line) << decode(line.text))
          .Run();
    }
  }

 private:
  void AddMachine() {
    const MachineFacts& machine = collection.machine;
    const auto time = std::chrono::time_point_cast<std::chrono::seconds>(collection.collected);
    const std::pair<const char*, std::string> facts[] = {
        {"name", machine.name},
        {"description", machine.description},
        {"recorded", machine.recorded ? "yes" : "no"},
        {"collected", fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", time)},
        {"languageId", std::to_string(machine.languageId)},
        {"codePage", std::to_string(machine.codePage)},
        {"hostExecutable", decode(machine.hostExecutable)},
        {"logFolder", decode(machine.logFolder)},
        {"pqhost", kVersion},
    };
    Insert insert(handle, "machine", 2);
    for (const auto& [name, value] : facts) (insert << std::string(name) << value).Run();
  }

  void AddTable(const CollectedTable& table, const std::string& name) {
    static const Table kNoRows;
    const Table& rows = table.rows == nullptr ? kNoRows : *table.rows;
    const std::string className = decode(table.className);
    std::string definition = fmt::format("{} INTEGER PRIMARY KEY", Quoted(kRowColumn));
    UniqueNames names(std::vector<std::string_view>{kRowColumn});
    Insert columns(handle, "columns", 5);
    std::int64_t position = 0;
    for (const Column& column : rows.columns) {
      const std::string columnName = names.Take(decode(column.key));
      definition +=
          fmt::format(", {} {}", Quoted(columnName), column.isInteger ? "INTEGER" : "TEXT");
      (columns << className << ++position << decode(column.key) << columnName
               << decode(column.label))
          .Run();
    }
    Execute(handle, fmt::format("CREATE TABLE {} ({})", Quoted(name), definition).c_str());

    Insert insert(handle, name, rows.columns.size() + 1);
    Insert attachments(handle, "attachments", 5);
    RowCells cells(rows);
    std::int64_t number = 0;
    for (const Row& row : rows.rows) {
      insert << ++number;
      for (const std::size_t place : cells.PlacesIn(row)) {
        if (place == RowCells::kMissing) {
          insert.SkipColumn();
        } else {
          insert << decode(row.Values()[place]);
        }
      }
      insert.Run();
      for (std::size_t i = 0; i < row.Values().size(); ++i) {
        const std::string& key = row.shape->columns[i].key;
        if (!IsAttachment(*row.shape, key)) continue;
        const std::string* fileName = FindAttribute(*row.shape, key, "filename");
        (attachments << className << number << decode(key)
                     << decode(fileName == nullptr ? key : *fileName) << decode(row.Values()[i]))
            .Run();
      }
    }
  }

  sqlite3* handle;
  const Collection& collection;
  TextDecoder decode;
};

std::optional<std::string> ReadColumn(sqlite3_stmt* statement, int column) {
  if (sqlite3_column_type(statement, column) == SQLITE_NULL) return std::nullopt;
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
  const int size = sqlite3_column_bytes(statement, column);
  return text == nullptr ? std::string() : std::string(text, static_cast<std::size_t>(size));
}

}  // namespace

Database::Database() {
  if (sqlite3_open(":memory:", &handle) != SQLITE_OK) Fail(handle);
}

Database::Database(const std::filesystem::path& file) {
  const std::u8string path = file.u8string();
  const int result = sqlite3_open_v2(reinterpret_cast<const char*>(path.c_str()), &handle,
                                     SQLITE_OPEN_READONLY, nullptr);
  try {
    if (result != SQLITE_OK) Fail(handle);
    Execute(handle, "SELECT 1 FROM sqlite_schema");  // The file is looked at only now.
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

std::string Database::Serialize() {
  sqlite3_int64 size = 0;
  const std::unique_ptr<unsigned char, decltype(&sqlite3_free)> bytes(
      sqlite3_serialize(handle, "main", &size, 0), &sqlite3_free);
  if (bytes == nullptr) Fail(nullptr);
  return {reinterpret_cast<const char*>(bytes.get()), static_cast<std::size_t>(size)};
}

void Database::Query(const std::string& sql, const std::function<void(const Names&)>& onColumns,
                     const std::function<void(const Values&)>& onRow) {
  sqlite3_stmt* raw = nullptr;
  const char* rest = nullptr;
  if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &raw, &rest) != SQLITE_OK) Fail(handle);
  const StatementHandle statement(raw);
  if (statement == nullptr) throw DatabaseError("there is no statement in the query");
  if (std::string_view(rest).find_first_not_of(" \t\r\n;") != std::string_view::npos) {
    throw DatabaseError("the query has more than one statement");
  }
  if (sqlite3_stmt_readonly(raw) == 0) {
    throw DatabaseError("the query would change the database; only reading is possible");
  }
  const int count = sqlite3_column_count(raw);
  Names names;
  for (int i = 0; i < count; ++i) names.emplace_back(sqlite3_column_name(raw, i));
  onColumns(names);
  Values values(static_cast<std::size_t>(count));
  int result = SQLITE_ROW;
  while ((result = sqlite3_step(raw)) == SQLITE_ROW) {
    for (int i = 0; i < count; ++i) values[static_cast<std::size_t>(i)] = ReadColumn(raw, i);
    onRow(values);
  }
  if (result != SQLITE_DONE) Fail(handle);
}

}  // namespace host
