// Makes the tables of a database (docs/sql.md) from collections.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/collect/table_view.h"
#include "host/database/database.h"
#include "host/database/sql_names.h"
#include "host/database/sql_statement.h"

namespace host {

enum class Machines { kOne, kSeveral };

/// A line of UTF-8 for each table of which a database does not hold all, since SQLite would not
/// give it back: of values that are too large together, the end is kept.
std::vector<std::string> DescribeDatabaseCuts(const Collection& collection);

/// Adds collections to a database. What it throws is DatabaseError.
class DatabaseWriter {
 public:
  /// `database` is empty and outlives this. If it is for several machines, each table begins with a
  /// column `machine`.
  DatabaseWriter(Database& database, Machines machines);

  using Facts = std::vector<std::pair<std::string, std::string>>;  ///< name and value
  /// Adds a collection, with more `facts` of its machine, which is called `machine` if there are
  /// several.
  void Add(const CollectionView& view, const Facts& facts = {}, std::string_view machine = {});

  /// The same of a machine of which nothing else is known.
  void AddFacts(const Facts& facts, std::string_view machine);

  /// Keeps a name for AddRows: a class that comes later and is called so gets another one.
  void Reserve(std::string_view table) { FindTable(table, /*isOfClass=*/false); }
  struct PlainColumn {
    std::string_view name;
    const char* type;  ///< as SQL calls it
  };
  /// Adds rows to a table that is not of a class, of the machine added last; `addValues` adds those
  /// of a row, which counts from 0.
  void AddRows(std::string_view table, const std::vector<PlainColumn>& columns,
               std::size_t rowCount,
               const std::function<void(std::size_t row, Statement& values)>& addValues);
  /// Adds the tables of another database; for several machines.
  void Copy(Database& from, std::string_view machine);
  /// Takes all rows of a machine out again.
  void Remove(std::string_view machine);
  /// To be called last: adds the classes that no collection has, and the views.
  void Complete();

 private:
  struct SqlColumn {
    std::string name;
    std::string key = {};  ///< of the property; empty of a column that is not of a property
    std::string label = {};
    const char* type = "TEXT";
    bool holdsNumbers = false;
  };
  struct SqlTable {
    std::string name;
    bool isOfClass = false;
    bool isMade = false;
    std::vector<SqlColumn> columns = {};
    UniqueNames columnNames = {};
  };
  using Places = std::vector<std::size_t>;  ///< among the columns of an SqlTable

  /// Rows of a table, which all begin with the machine if there are several.
  class Rows {
   public:
    Rows(const DatabaseWriter& writer, const SqlTable& table);
    Statement& Begin();

   private:
    const DatabaseWriter& writer;
    Statement insert;
  };
  Rows& AddTo(const char* ownTable);

  /// The table of a class, or one of another name; it need not be made yet.
  SqlTable& FindTable(std::string_view name, bool isOfClass);
  /// Makes `table` with `columns`, or adds those that it lacks; returns where each of them is.
  Places Provide(SqlTable& table, const std::vector<SqlColumn>& columns);
  void AddMachine(const CollectionView& view, const Facts& facts);
  void AddFacts(const Facts& facts);
  void AddTable(const TableView& view, std::int64_t position);
  void AddRows(const TableView& view, const std::vector<KnownColumn>& columns,
               const SqlTable& table, const Places& places);
  void CopyTable(Database& from, const std::string& name);
  void MakeView(const SqlTable& table);

  sqlite3* handle;
  bool isForSeveral;
  std::string machine;  ///< whose tables are being added
  UniqueNames names;    ///< of tables and views
  /// By whether they are of a class, then by class or name.
  std::map<std::pair<bool, std::string>, SqlTable> tables;
  std::map<std::string_view, Rows> ownRows;  ///< by table; prepared when they are first needed
};

}  // namespace host
