// Tables of a form of their own in a database that is being made.
#pragma once

#include <span>
#include <string_view>

#include "host/database/database.h"
#include "host/database/sql_statement.h"

namespace host {

class PlainTable {
 public:
  struct Column {
    std::string_view name;
    const char* type;  ///< as SQL calls it
  };
  /// Makes a table, which has no rows. `database` outlives this; what is thrown is DatabaseError.
  PlainTable(Database& database, std::string_view name, std::span<const Column> columns);

  /// For a row's values, one per column, and its Run().
  Statement& Row() { return insert; }

 private:
  Statement insert;
};

}  // namespace host
