// A collection as a database: one table per class, and tables about modules, tables, columns,
// attachments, problems and log lines, and a view per class (docs/sql.md).
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/repository/store.h"

struct sqlite3;

namespace host {

/// Why a database could not be made, opened or asked, in UTF-8 and in one line.
class DatabaseError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

inline constexpr std::chrono::seconds kUsualQueryTime{30};

/// What to say of a query that took longer.
std::string DescribeTimeout(std::chrono::seconds timeLimit);

class Database {
 public:
  /// An empty one in memory.
  explicit Database(std::chrono::seconds queryTime = kUsualQueryTime);
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

 private:
  friend class DatabaseWriter;

  sqlite3* handle = nullptr;
  std::chrono::seconds queryTime;
};

}  // namespace host
