// The tables of a database that is being made: what they and their columns are called there, and
// the rows that come into them.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/database/sql_names.h"
#include "host/database/sql_statement.h"

namespace host {

enum class Machines { kOne, kSeveral };

inline constexpr char kIntegerType[] = "INTEGER";
inline constexpr char kTextType[] = "TEXT";
inline constexpr char kAnyType[] = "";

/// The first column of every class's table: the row's number, from 1.
inline constexpr char kRowColumn[] = "row";

struct SqlColumn {
  std::string name;
  std::string key = {};  ///< of the property; empty of a column that is not of a property
  std::string label = {};
  const char* type = kTextType;
  bool holdsNumbers = false;
};

struct SqlTable {
  std::string name;
  bool isOfClass = false;
  bool isMade = false;
  std::vector<SqlColumn> columns = {};
  UniqueNames columnNames = {};
};

/// Rows of a table, which all begin with the machine if there are several.
class SqlRows {
 public:
  /// Of the machine that `machine` names when a row begins; null: there is only one.
  SqlRows(sqlite3* handle, const SqlTable& table, const std::string* machine);

  /// A row without values yet, but for the machine.
  Statement& Begin();

 private:
  const std::string* machine;
  Statement insert;
};

/// All tables. What it throws is DatabaseError.
class SqlTables {
 public:
  using Places = std::vector<std::size_t>;  ///< among the columns of an SqlTable

  SqlTables(sqlite3* handle, Machines machines)
      : handle(handle), isForSeveral(machines == Machines::kSeveral) {}
  SqlTables(const SqlTables&) = delete;
  SqlTables& operator=(const SqlTables&) = delete;

  /// Whose rows come from now on, if there are several machines.
  void BeginMachine(std::string_view name) { machine = name; }

  /// The table of a class, or one of another name; it need not be made yet.
  SqlTable& Find(std::string_view name, bool isOfClass);
  /// Makes `table` with `columns`, or adds those that it lacks; returns where each of them is.
  Places Provide(SqlTable& table, const std::vector<SqlColumn>& columns);
  /// How many columns each table of a class has before those of its properties.
  std::size_t CountFirstColumns() const { return isForSeveral ? 2 : 1; }

  /// Rows of a table that has all its columns.
  SqlRows AddRows(const SqlTable& table) const {
    return {handle, table, isForSeveral ? &machine : nullptr};
  }
  /// The same of a table that is not of a class, by its literal name; prepared once. They stay
  /// where they are until a table gets another column.
  SqlRows& AddTo(const char* table);
  /// Takes all rows of a machine out again.
  void Remove(std::string_view name);

  /// Makes a view, for people, of each table of a class.
  void MakeViews();

 private:
  sqlite3* handle;
  bool isForSeveral;
  std::string machine;
  UniqueNames names;  ///< of tables and views
  /// By whether they are of a class, then by class or name.
  std::map<std::pair<bool, std::string>, SqlTable> tables;
  std::map<std::string_view, SqlRows> ownRows;  ///< by table; prepared when they are first needed
};

}  // namespace host
