// Keeps a query to reading, and to a share of time and memory: the statement and the file may both
// come from a stranger (docs/sql.md, docs/limits.md).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>

struct sqlite3;

namespace host {

/// Bytes of a value, and of a row: twice the largest file of a recording.
inline constexpr std::size_t kMostRowBytes = std::size_t{256} << 20;

/// What to say of a statement that writes.
inline constexpr char kOnlyReading[] =
    "the query would change the database; only reading is possible";

/// Throws DatabaseError with SQLite's own words for the last failure, in one line. A null handle is
/// one that there was no memory for.
[[noreturn]] void FailAsSqlite(sqlite3* handle);

/// Takes from the connection whatever reading does without, and bounds what a statement may be, for
/// good. Tables of the program's own modules have to be added after it. Throws DatabaseError.
void HardenConnection(sqlite3* handle);

/// While it lives, statements of the connection end when their time is up.
class TimeGuard {
 public:
  TimeGuard(sqlite3* handle, std::chrono::seconds timeLimit);
  TimeGuard(const TimeGuard&) = delete;
  TimeGuard& operator=(const TimeGuard&) = delete;
  ~TimeGuard();

  /// To be called when SQLite has failed: throws DatabaseError when that is why.
  void FailIfTimeIsUp() const;

 private:
  /// SQLite's progress handler: other than 0 ends the statement.
  static int CheckTime(void* guard);

  sqlite3* handle;
  std::chrono::seconds timeLimit;
  std::chrono::steady_clock::time_point deadline;
  bool timeIsUp = false;
};

/// While it lives, the connection, which has been hardened, runs only what reads, until time or
/// memory is used up. SQLite counts memory for the process as a whole: one guard at a time.
class QueryGuard {
 public:
  /// `handle` has to outlive this. `functions` are those of our own that a query may use, in lower
  /// case. Throws DatabaseError.
  QueryGuard(sqlite3* handle, std::chrono::seconds timeLimit, std::set<std::string> functions = {});
  QueryGuard(const QueryGuard&) = delete;
  QueryGuard& operator=(const QueryGuard&) = delete;
  ~QueryGuard();

  /// Counts a row of the answer. Throws DatabaseError when the answer has become too large.
  void CountRow(std::size_t cells, std::size_t bytes);

  /// To be called when SQLite has failed with this result code: throws DatabaseError with the
  /// guard's reason, or else SQLite's.
  [[noreturn]] void Fail(int result) const;

 private:
  /// SQLite's authorizer: whether a statement may do `action`.
  static int Authorize(void* guard, int action, const char* first, const char* second,
                       const char* database, const char* trigger);

  sqlite3* handle;
  TimeGuard time;
  std::set<std::string> functions;
  std::int64_t memoryLimit = 0;  ///< bytes, for SQLite and for the answer each
  std::int64_t answerBytes = 0;
  std::string objection;  ///< why a statement was not authorized first; empty: all were
};

}  // namespace host
