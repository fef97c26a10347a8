#include "host/database/outside_table.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
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

TEST(OutsideTable, HasNumberedRows) {
  const std::vector<Wheel> wheels{{"left", 7}, {"right", 5}};
  Database database;
  database.AddTable(MakeWheels(wheels));
  EXPECT_EQ(AskOutside(database, "SELECT rowid, name FROM wheels ORDER BY size"),
            "2|right|1|left|");
}

TEST(OutsideFunction, TakesValuesOfEachKind) {
  Database database;
  std::vector<SqlValue> taken;
  database.AddFunction("same", [&](const SqlValue& value) {
    if (!std::holds_alternative<std::string_view>(value)) taken.push_back(value);
    return value;
  });
  EXPECT_EQ(AskOutside(database, "SELECT same(-7), same(0.5), same('a'), same(NULL)"),
            "-7|0.5|a||");
  EXPECT_EQ(taken, (std::vector<SqlValue>{std::int64_t{-7}, 0.5, SqlValue()}));
}

TEST(OutsideFunction, FailsTheQueryWithItsOwnWords) {
  Database database;
  database.AddFunction("refuse", [](const SqlValue&) -> SqlValue {
    throw std::runtime_error("there is no such wheel");
  });
  EXPECT_THAT(
      [&] { AskOutside(database, "SELECT refuse(1)"); },
      testing::ThrowsMessage<host::DatabaseError>(testing::HasSubstr("there is no such wheel")));
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
