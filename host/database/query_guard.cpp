#include "host/database/query_guard.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "host/database/database.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::int64_t kMebibyte = std::int64_t{1024} * 1024;

struct Limit {
  int id;
  int most;
};
/// What one statement may be, also the statements that a file's schema consists of.
constexpr Limit kStatementLimits[] = {
    {SQLITE_LIMIT_LENGTH, static_cast<int>(kMostRowBytes)},
    {SQLITE_LIMIT_SQL_LENGTH, 1'000'000},
    {SQLITE_LIMIT_COLUMN, 2'000},  // As for the tables that are written.
    {SQLITE_LIMIT_EXPR_DEPTH, 200},
    {SQLITE_LIMIT_COMPOUND_SELECT, 50},
    {SQLITE_LIMIT_VDBE_OP, 100'000},
    {SQLITE_LIMIT_FUNCTION_ARG, 100},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 1'000},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_WORKER_THREADS, 0},
};

struct Setting {
  int id;
  int value;
};
constexpr Setting kSettings[] = {
    {SQLITE_DBCONFIG_DEFENSIVE, 1},
    {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
    {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
    {SQLITE_DBCONFIG_ENABLE_FTS3_TOKENIZER, 0},
    {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
};

/// Sorting on disk would leave a stranger's endless rows, or a customer's, in a temporary file.
constexpr char kPragmas[] = "PRAGMA temp_store=MEMORY; PRAGMA cell_size_check=ON";

/// The virtual tables that stay; all others read a file's bytes as structures of their own.
const char* const kVirtualTables[] = {"json_each", "json_tree", nullptr};

/// What a statement may read about the database.
constexpr std::string_view kReadingPragmas[] = {
    "database_list", "foreign_key_list", "index_info", "index_list", "index_xinfo",
    "page_count",    "page_size",        "table_info", "table_list", "table_xinfo",
};

/// Functions of values alone, and the clock. In alphabetical order; versions of SQLite differ in
/// which of them they have.
constexpr std::string_view kFunctions[] = {
    "->",
    "->>",
    "abs",
    "acos",
    "acosh",
    "asin",
    "asinh",
    "atan",
    "atan2",
    "atanh",
    "avg",
    "ceil",
    "ceiling",
    "char",
    "coalesce",
    "concat",
    "concat_ws",
    "cos",
    "cosh",
    "count",
    "cume_dist",
    "current_date",
    "current_time",
    "current_timestamp",
    "date",
    "datetime",
    "degrees",
    "dense_rank",
    "exp",
    "first_value",
    "floor",
    "format",
    "glob",
    "group_concat",
    "hex",
    "if",
    "ifnull",
    "iif",
    "instr",
    "json",
    "json_array",
    "json_array_length",
    "json_error_position",
    "json_extract",
    "json_group_array",
    "json_group_object",
    "json_insert",
    "json_object",
    "json_patch",
    "json_pretty",
    "json_quote",
    "json_remove",
    "json_replace",
    "json_set",
    "json_type",
    "json_valid",
    "julianday",
    "lag",
    "last_value",
    "lead",
    "length",
    "like",
    "likelihood",
    "likely",
    "ln",
    "log",
    "log10",
    "log2",
    "lower",
    "ltrim",
    "max",
    "min",
    "mod",
    "nth_value",
    "ntile",
    "nullif",
    "octet_length",
    "percent_rank",
    "pi",
    "pow",
    "power",
    "printf",
    "quote",
    "radians",
    "random",
    "rank",
    "replace",
    "round",
    "row_number",
    "rtrim",
    "sign",
    "sin",
    "sinh",
    "soundex",
    "sqlite_version",
    "sqrt",
    "strftime",
    "string_agg",
    "substr",
    "substring",
    "sum",
    "tan",
    "tanh",
    "time",
    "timediff",
    "total",
    "trim",
    "trunc",
    "typeof",
    "unhex",
    "unicode",
    "unistr",
    "unistr_quote",
    "unixepoch",
    "unlikely",
    "upper",
    "zeroblob",
};
static_assert(std::ranges::is_sorted(kFunctions));
static_assert(std::ranges::is_sorted(kReadingPragmas));

template <std::size_t kCount>
bool IsIn(const std::string_view (&names)[kCount], const char* name) {
  return std::ranges::binary_search(names, LowerCase(name));
}

/// Why a statement may not do this; empty: it may.
std::string FindObjection(int action, const char* first, const char* second) {
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE:
      return {};
    case SQLITE_UPDATE:
      // A virtual table declares its columns in this way; SQLite lets nobody else.
      if (std::string_view(first) == "sqlite_master") return {};
      return kOnlyReading;
    case SQLITE_FUNCTION:
      if (IsIn(kFunctions, second)) return {};
      return fmt::format("a query cannot use the function {}", second);
    case SQLITE_PRAGMA:
      if (IsIn(kReadingPragmas, first)) return {};
      return fmt::format("a query cannot use PRAGMA {}", first);
    case SQLITE_ATTACH:
    case SQLITE_DETACH:
      return "a query reads one database; it cannot open or close another";
    default:
      return kOnlyReading;
  }
}

/// 0 when it cannot be read; the query then fails for the same reason.
std::int64_t ReadNumber(sqlite3* handle, const char* sql) {
  std::int64_t number = 0;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(handle, sql, -1, &statement, nullptr) == SQLITE_OK &&
      sqlite3_step(statement) == SQLITE_ROW) {
    number = sqlite3_column_int64(statement, 0);
  }
  sqlite3_finalize(statement);
  return number;
}

/// For what a database needs that says nothing about its size.
constexpr std::int64_t kLeastMemory = 256 * kMebibyte;

/// Enough to sort all that the database holds. A file can say that it is larger than any disk, so
/// there is an end to that.
std::int64_t ChooseMemoryLimit(sqlite3* handle) {
  constexpr std::int64_t kMostMemory = 4096 * kMebibyte;
  const std::int64_t pages = ReadNumber(handle, "PRAGMA page_count");
  const std::int64_t pageSize = ReadNumber(handle, "PRAGMA page_size");
  return std::min(kLeastMemory + 2 * pages * pageSize, kMostMemory);
}

}  // namespace

void FailAsSqlite(sqlite3* handle) {
  constexpr std::size_t kMostColumns = 300;  // The words may quote a whole statement of the file.
  std::string text = CleanUtf8(sqlite3_errmsg(handle));
  std::replace(text.begin(), text.end(), '\n', ' ');
  throw DatabaseError(CutText(text, kMostColumns));
}

void HardenConnection(sqlite3* handle) {
  for (const Limit& limit : kStatementLimits) sqlite3_limit(handle, limit.id, limit.most);
  for (const Setting& setting : kSettings) {
    sqlite3_db_config(handle, setting.id, setting.value, nullptr);
  }
  const char* kept[std::size(kVirtualTables)];
  std::ranges::copy(kVirtualTables, kept);
  const bool isDone = sqlite3_drop_modules(handle, kept) == SQLITE_OK &&
                      sqlite3_exec(handle, kPragmas, nullptr, nullptr, nullptr) == SQLITE_OK;
  if (!isDone) FailAsSqlite(handle);
}

TimeGuard::TimeGuard(sqlite3* handle, std::chrono::seconds timeLimit)
    : handle(handle), timeLimit(timeLimit), deadline(std::chrono::steady_clock::now() + timeLimit) {
  constexpr int kStepsBetweenChecks = 1000;  // a fraction of a millisecond
  sqlite3_progress_handler(handle, kStepsBetweenChecks, &TimeGuard::CheckTime, this);
}

TimeGuard::~TimeGuard() { sqlite3_progress_handler(handle, 0, nullptr, nullptr); }

int TimeGuard::CheckTime(void* guard) {
  auto& self = *static_cast<TimeGuard*>(guard);
  self.timeIsUp = std::chrono::steady_clock::now() >= self.deadline;
  return self.timeIsUp ? 1 : 0;
}

void TimeGuard::FailIfTimeIsUp() const {
  if (timeIsUp) throw MakeTimeout(timeLimit);
}

QueryGuard::QueryGuard(sqlite3* handle, std::chrono::seconds timeLimit,
                       std::set<std::string> functions)
    : handle(handle), time(handle, timeLimit), functions(std::move(functions)) {
  sqlite3_set_authorizer(handle, &QueryGuard::Authorize, this);
  const std::int64_t used = sqlite3_memory_used();
  sqlite3_hard_heap_limit64(used + kLeastMemory);
  memoryLimit = ChooseMemoryLimit(handle);
  sqlite3_hard_heap_limit64(used + memoryLimit);
}

QueryGuard::~QueryGuard() {
  sqlite3_hard_heap_limit64(0);
  sqlite3_set_authorizer(handle, nullptr, nullptr);
}

int QueryGuard::Authorize(void* guard, int action, const char* first, const char* second,
                          const char* /*database*/, const char* /*trigger*/) {
  auto& self = *static_cast<QueryGuard*>(guard);
  if (action == SQLITE_FUNCTION && self.functions.contains(LowerCase(second))) return SQLITE_OK;
  const std::string objection = FindObjection(action, first, second);
  if (self.objection.empty()) self.objection = objection;
  return objection.empty() ? SQLITE_OK : SQLITE_DENY;
}

void QueryGuard::CountRow(std::size_t cells, std::size_t bytes) {
  // What a row and a cell take beside their text, as a collection keeps them.
  constexpr std::size_t kRowBytes = 100;
  constexpr std::size_t kCellBytes = 32;
  answerBytes += static_cast<std::int64_t>(kRowBytes + cells * kCellBytes + bytes);
  if (answerBytes <= memoryLimit) return;
  throw DatabaseLimitError(fmt::format("the answer is larger than {} MiB", memoryLimit / kMebibyte),
                           "ask for less of it, such as fewer columns, or with LIMIT");
}

void QueryGuard::Fail(int result) const {
  time.FailIfTimeIsUp();
  if (!objection.empty()) throw DatabaseError(objection);
  if (result == SQLITE_NOMEM) {
    throw DatabaseLimitError(
        fmt::format("the query needs more than {} MiB of memory", memoryLimit / kMebibyte),
        "ask for less, such as fewer rows or columns to sort");
  }
  // SQLite has other words for a statement that is too long.
  if (result == SQLITE_TOOBIG &&
      std::string_view(sqlite3_errmsg(handle)) == sqlite3_errstr(SQLITE_TOOBIG)) {
    throw DatabaseLimitError(
        fmt::format("the query makes a value of more than {} MiB", kMostRowBytes / kMebibyte),
        "ask for a part of it, as with substr");
  }
  FailAsSqlite(handle);
}

}  // namespace host
