#include "host/database/outside_table.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "host/database/prepared_query.h"

namespace {

using host::Database;
using host::OutsideTable;
using host::SqlValue;

struct Wheel {
  std::string name;
  std::optional<std::int64_t> size;
};

OutsideTable MakeWheels(const std::vector<Wheel>& wheels) {
  return {"wheels",
          {{"name", "TEXT"}, {"size", "INTEGER"}},
          [&] { return wheels.size(); },
          [&](std::size_t row, std::size_t column) -> SqlValue {
            if (column == 0) return std::string_view(wheels[row].name);
            return wheels[row].size ? SqlValue(*wheels[row].size) : SqlValue();
          }};
}

/// The answer's values, each with a bar after it.
std::string AskOutside(Database& database, const std::string& sql) {
  std::string told;
  database.Query(
      sql, [](const Database::Names&) {},
      [&](const Database::Values& values) {
        for (const Database::Value& value : values) told += value.text + "|";
      });
  return told;
}

TEST(OutsideTable, IsReadWhereItIs) {
  std::vector<Wheel> wheels{{"left", 7}, {"right", std::nullopt}};
  Database database;
  database.AddTable(MakeWheels(wheels));
  EXPECT_EQ(AskOutside(database, "SELECT name, size FROM wheels"), "left|7|right||");
  wheels.push_back({"spare", 5});
  EXPECT_EQ(AskOutside(database, "SELECT name FROM wheels WHERE size < 7"), "spare|");
  EXPECT_EQ(AskOutside(database, "SELECT count(*) FROM wheels a JOIN wheels b ON a.name = b.name"),
            "3|");
}

// SQLite, through which nothing may be thrown, has words for it.
TEST(OutsideTable, FailsTheQueryWhereMemoryEnds) {
  Database database;
  database.AddTable({"rows",
                     {{"a", "TEXT"}},
                     [] { return std::size_t{1}; },
                     [](std::size_t, std::size_t) -> SqlValue { throw std::bad_alloc(); }});
  database.AddTable({"none",
                     {{"a", "TEXT"}},
                     []() -> std::size_t { throw std::bad_alloc(); },
                     [](std::size_t, std::size_t) { return SqlValue(); }});
  for (const char* sql : {"SELECT a FROM rows", "SELECT a FROM none"}) {
    EXPECT_THROW(host::PreparedQuery(database, sql).Run([](const Database::Values&) {}),
                 host::DatabaseError)
        << sql;
  }
}

TEST(OutsideTable, ComesBeforeATableOfItsName) {
  const std::vector<Wheel> wheels{{"left", 7}};
  Database database;
  database.Run("CREATE TABLE wheels (name)");
  database.AddTable(MakeWheels(wheels));
  EXPECT_EQ(AskOutside(database, "SELECT name FROM wheels"), "left|");
  EXPECT_EQ(AskOutside(database, "SELECT count(*) FROM main.wheels"), "0|");
}

TEST(OutsideTable, IsNotChanged) {
  const std::vector<Wheel> wheels{{"left", 7}};
  Database database;
  database.AddTable(MakeWheels(wheels));
  for (const char* sql : {"DELETE FROM wheels", "UPDATE wheels SET size = 1", "DROP TABLE wheels",
                          "INSERT INTO wheels VALUES ('new', 1)"}) {
    EXPECT_THROW(AskOutside(database, sql), host::DatabaseError) << sql;
  }
}

TEST(PreparedQuery, AnswersAnewEachTime) {
  std::vector<Wheel> wheels{{"left", 7}};
  Database database;
  database.AddTable(MakeWheels(wheels));
  host::PreparedQuery query(database, "SELECT sum(size) AS total FROM wheels");
  EXPECT_EQ(query.Columns(), Database::Names{"total"});
  std::string told;
  const auto take = [&](const Database::Values& values) { told += values.front().text + "|"; };
  query.Run(take);
  wheels[0].size = 8;
  query.Run(take);
  EXPECT_EQ(told, "7|8|");
}

TEST(PreparedQuery, EndsAfterItsTime) {
  Database database(std::chrono::seconds(0));
  host::PreparedQuery query(database,
                            "WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n) "
                            "SELECT max(i) FROM n");
  EXPECT_THROW(query.Run([](const Database::Values&) {}), host::DatabaseError);
}

}  // namespace
