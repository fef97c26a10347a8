// A database with a collection in it, and what it answers.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/database/database_writer.h"

namespace test {

/// Adds `collection` to an empty database of one machine.
inline void FillDatabase(host::Database& database, const host::Collection& collection) {
  host::DatabaseWriter writer(database, host::Machines::kOne);
  writer.Add(host::CollectionView(collection));
  writer.Complete();
}

/// The rows of an answer, with | between the values.
inline std::vector<std::string> AskRows(host::Database& database, const std::string& sql) {
  std::vector<std::string> rows;
  database.Query(
      sql, [](const host::Database::Names&) {},
      [&](const host::Database::Values& values) {
        std::string row;
        for (const host::Database::Value& value : values) {
          if (&value != values.data()) row += '|';
          row += value.kind == host::CellKind::kNothing ? "NULL" : value.text;
        }
        rows.push_back(std::move(row));
      });
  return rows;
}

}  // namespace test
