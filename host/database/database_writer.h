// Makes the tables of a database (docs/sql.md) from collections.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/collect/table_view.h"
#include "host/database/database.h"
#include "host/database/sql_statement.h"
#include "host/database/sql_tables.h"

namespace host {

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
  void Reserve(std::string_view table) { tables.Find(table, /*isOfClass=*/false); }
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
  void Remove(std::string_view machine) { tables.Remove(machine); }
  /// To be called last: adds the classes that no collection has, and the views.
  void Complete();

 private:
  void AddMachine(const CollectionView& view, const Facts& facts);
  void AddFacts(const Facts& facts);

  sqlite3* handle;
  SqlTables tables;
};

}  // namespace host
