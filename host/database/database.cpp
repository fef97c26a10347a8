#include "host/database/database.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <memory>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "host/database/outside_table.h"
#include "host/database/query_guard.h"
#include "host/database/sql_statement.h"
#include "host/files/whole_file.h"
#include "host/text/count_text.h"
#include "host/text/hex_text.h"
#include "host/text/path_text.h"

namespace host {
namespace {

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
  Reader(sqlite3* handle, std::chrono::seconds timeLimit, std::set<std::string> functions)
      : handle(handle), guard(handle, timeLimit, std::move(functions)) {}

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

  Database::Names ListColumns() const { return ListColumnNames(statement.get()); }

  /// Whether there was one more row.
  bool TakeRow(Database::Values& values) {
    const int result = sqlite3_step(statement.get());
    if (result == SQLITE_DONE) return false;
    if (result != SQLITE_ROW) guard.Fail(result);
    std::size_t bytes = 0;
    std::vector<CellKind> kinds;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!ReadColumn(statement.get(), static_cast<int>(i), values[i])) guard.Fail(SQLITE_NOMEM);
      bytes += values[i].text.size();
      kinds.push_back(values[i].kind);
    }
    // Rows whose values are of the same kinds share the names of their columns.
    if (kindsSeen.insert(std::move(kinds)).second) bytes += CountNameBytes();
    guard.CountRow(values.size(), bytes);
    return true;
  }

 private:
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
  std::set<std::vector<CellKind>> kindsSeen;  ///< of rows
};

/// What SQLite calls for a function of AddFunction.
void CallFunction(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const auto& function = *static_cast<Database::Function*>(sqlite3_user_data(context));
  try {
    GiveResult(context, function(TakeValue(values[0])), Lifetime::kUntilNextCall);
  } catch (const std::exception& error) {
    sqlite3_result_error(context, error.what(), -1);
  }
}

}  // namespace

DatabaseLimitError MakeTimeout(std::chrono::seconds timeLimit) {
  const auto seconds = static_cast<std::size_t>(timeLimit.count());
  return {"the query took longer than " + FormatCount(seconds, "second"),
          "ask for less, or allow more with --time-limit"};
}

Database::Database(std::chrono::seconds queryTime, Temporary temporary)
    : queryTime(queryTime), temporary(temporary) {
  // SQLite's own temporary file: made when the memory for it is used up, and deleted at once.
  const char* const name = temporary == Temporary::kNoFile ? ":memory:" : "";
  constexpr char kMemory[] = "PRAGMA cache_size=-8192";  // KiB
  try {
    if (sqlite3_open(name, &handle) != SQLITE_OK) FailAsSqlite(handle);
    Execute(handle, kMemory);
  } catch (const DatabaseError&) {
    sqlite3_close(handle);
    throw;
  }
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
    throw DatabaseError(
        fmt::format("{}: {}: name another file, or get it again", PathText(file), error.what()));
  }
}

Database::~Database() { sqlite3_close(handle); }

void Database::Run(const std::string& sql) { Execute(handle, sql); }

void Database::AddFunction(const std::string& name, Function function) {
  Function& kept = functions[name] = std::move(function);
  const int result =
      sqlite3_create_function(handle, name.c_str(), 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, &kept,
                              &CallFunction, nullptr, nullptr);
  if (result != SQLITE_OK) FailAsSqlite(handle);
}

void Database::AddTable(OutsideTable table) {
  Harden();
  const OutsideTable& kept = outsideTables.emplace_back(std::move(table));
  AddOutsideTable(handle, kept);
}

void Database::Harden() {
  if (isHardened) return;
  HardenConnection(handle);
  if (temporary == Temporary::kInFile) {
    Execute(handle, "PRAGMA temp_store=FILE; PRAGMA temp.cache_size=-4096");
  }
  isHardened = true;
}

void Database::Query(const std::string& sql, const std::function<void(const Names&)>& onColumns,
                     const std::function<void(const Values&)>& onRow) {
  Harden();
  std::set<std::string> known;
  for (const auto& function : functions) known.insert(function.first);
  Reader reader(handle, queryTime, std::move(known));
  reader.Prepare(sql);
  const Names names = reader.ListColumns();
  onColumns(names);
  Values values(names.size());
  while (reader.TakeRow(values)) onRow(values);
}

}  // namespace host
