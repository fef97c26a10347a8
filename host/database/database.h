// A collection as a database: one table per class, and tables about modules, tables, columns,
// attachments, problems and log lines, and a view per class (docs/sql.md).
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <list>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/repository/store.h"

struct sqlite3;

namespace host {

/// Why a database could not be made, opened or asked, in UTF-8 and in one line.
class DatabaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A query that is right, and too much for the time or the memory that one may have.
class DatabaseLimitError : public DatabaseError {
 public:
  /// "the query took longer than 30 seconds", and what to do about that.
  DatabaseLimitError(const std::string& excess, const std::string& remedy)
      : DatabaseError(excess + ": " + remedy), excess(excess) {}
  const std::string& Excess() const { return excess; }

 private:
  std::string excess;
};

inline constexpr std::chrono::seconds kUsualQueryTime{30};

/// What to say of a query that took longer.
DatabaseLimitError MakeTimeout(std::chrono::seconds timeLimit);

/// Nothing, a number or a text, in the program's own hands.
using SqlValue = std::variant<std::monostate, std::int64_t, double, std::string_view>;

/// A table that is kept elsewhere: queries read its rows there, and nothing is copied.
struct OutsideTable {
  struct Column {
    std::string_view name;
    const char* type;  ///< as SQL calls it
  };
  std::string name;
  std::vector<Column> columns;
  std::function<std::size_t()> countRows;
  /// Rows and columns count from 0. A text has to stay where it is while the query runs.
  std::function<SqlValue(std::size_t row, std::size_t column)> getValue;
};

class Database {
 public:
  /// Where temporary tables are, and what is sorted.
  enum class Temporary {
    kInMemory,  ///< so that an endless query meets its limit
    kInFile,    ///< of nobody but the owner, gone with the program; for queries of our own
    kNoFile,    ///< nor is any other table in one: for a process that may open none
  };
  /// An empty one of no name. Beyond a few megabytes it is in such a file, too: rows take many
  /// times the memory of the text that they are of.
  explicit Database(std::chrono::seconds queryTime = kUsualQueryTime,
                    Temporary temporary = Temporary::kInMemory);
  /// An empty file that nobody else uses.
  struct NewFile {
    std::filesystem::path path;
  };
  /// An empty one in `file`, which has all of it once this object has ended.
  explicit Database(const NewFile& file);
  /// Opens a plain file as it is, for reading only; nothing is written beside it. Throws
  /// DatabaseError.
  explicit Database(const std::filesystem::path& file,
                    std::chrono::seconds queryTime = kUsualQueryTime);
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database();

  using Names = std::vector<std::string>;
  /// NULL is kNothing; bytes are taken for text.
  struct Value {
    CellKind kind = CellKind::kNothing;
    std::string text = {};
    bool operator==(const Value&) const = default;
  };
  /// One per column.
  using Values = std::vector<Value>;
  /// Runs one statement that only reads. `onColumns` is called once, then `onRow` for each row.
  /// Throws DatabaseError, also for a statement that would write, for more than one, and for one
  /// that takes more time or memory than a query may (docs/limits.md). Nothing can be added after
  /// it.
  void Query(const std::string& sql, const std::function<void(const Names&)>& onColumns,
             const std::function<void(const Values&)>& onRow);

  /// Runs statements of the program's own, which may make tables. To be called before any query.
  void Run(const std::string& sql);
  /// Of one value. A text that it returns stays until its next call. What it throws is the query's
  /// error.
  using Function = std::function<SqlValue(const SqlValue&)>;
  /// Gives queries a function that has no other effect than its value. `name` is in lower case.
  void AddFunction(const std::string& name, Function function);
  /// Adds a table, which comes before another of its name. Throws DatabaseError.
  void AddTable(OutsideTable table);

 private:
  friend class DatabaseWriter;
  friend class PlainTable;
  friend class PreparedQuery;

  /// Nothing but what reading needs is possible from now on; and what AddTable adds.
  void Harden();

  sqlite3* handle = nullptr;
  std::chrono::seconds queryTime;
  Temporary temporary = Temporary::kInMemory;
  bool isHardened = false;
  std::map<std::string, Function> functions;  ///< by name
  std::list<OutsideTable> outsideTables;      ///< where they are is known to SQLite
};

}  // namespace host
