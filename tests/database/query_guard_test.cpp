// Queries and database files of strangers: whatever they hold ends with a reason, soon, and leaves
// nothing behind.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "host/database/database.h"
#include "host/text/path_text.h"
#include "tests/support/program/made_database.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

using Texts = std::vector<std::string>;

constexpr char kEndless[] = "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n) ";
constexpr char kOnlyReads[] = "the query would change the database; only reading is possible";

/// The answer's cells, row by row.
Texts Ask(Database& database, const std::string& sql) {
  Texts cells;
  database.Query(
      sql, [](const Database::Names&) {},
      [&](const Database::Values& values) {
        for (const auto& value : values)
          cells.push_back((value.kind == CellKind::kNothing ? "NULL" : value.text));
      });
  return cells;
}

/// Why `sql` is not answered.
std::string FindRefusal(Database& database, const std::string& sql) {
  try {
    Ask(database, sql);
  } catch (const DatabaseError& error) {
    return error.what();
  }
  return "answered";
}

class QueryGuard : public testing::Test {
 protected:
  /// A file that `sql` made, opened.
  Database Open(const std::string& sql, std::chrono::seconds time = kUsualQueryTime) {
    test::MakeDatabase(folder / "stranger.db", sql);
    return Database(PathFromText(folder / "stranger.db"), time);
  }

  const test::TemporaryFolder folder;
};

TEST_F(QueryGuard, LetsAQueryComputeWithWhatItReads) {
  Database database = Open("CREATE TABLE t (name, size); INSERT INTO t VALUES ('b', 2), ('a', 1)");
  EXPECT_EQ(Ask(database, "SELECT upper(name), CAST(size AS TEXT) || '!' FROM t ORDER BY name"),
            (Texts{"A", "1!", "B", "2!"}));
  EXPECT_EQ(
      Ask(database, "SELECT count(*), sum(size), avg(size), group_concat(name), min(name) FROM t"),
      (Texts{"2", "3", "1.5", "b,a", "a"}));
  EXPECT_EQ(Ask(database, "SELECT name, row_number() OVER (ORDER BY size) FROM t ORDER BY name"),
            (Texts{"a", "1", "b", "2"}));
  EXPECT_EQ(Ask(database, "SELECT name FROM t WHERE name LIKE 'A%' OR name GLOB 'x*'"), Texts{"a"});
  EXPECT_EQ(Ask(database, "SELECT TRIM(' x '), Replace('ab', 'b', 'c'), ROUND(1.26, 1)"),
            (Texts{"x", "ac", "1.3"}));
  EXPECT_EQ(Ask(database, "SELECT json_extract('{\"a\":[5]}', '$.a[0]'), '{\"b\":6}' ->> 'b'"),
            (Texts{"5", "6"}));
  EXPECT_EQ(Ask(database, "SELECT value FROM json_each('[7,8]')"), (Texts{"7", "8"}));
  EXPECT_EQ(Ask(database, "SELECT strftime('%Y', '2026-11-18'), coalesce(NULL, iif(1, 2, 3))"),
            (Texts{"2026", "2"}));
  EXPECT_EQ(Ask(database, std::string(kEndless) + "SELECT x FROM n LIMIT 3"),
            (Texts{"1", "2", "3"}));
}

TEST_F(QueryGuard, LetsAQueryReadWhatTheDatabaseHolds) {
  Database database = Open("CREATE TABLE t (name, size)");
  EXPECT_EQ(Ask(database, "SELECT name FROM sqlite_schema"), Texts{"t"});
  EXPECT_EQ(Ask(database, "SELECT name FROM pragma_table_info('t')"), (Texts{"name", "size"}));
  EXPECT_THAT(Ask(database, "PRAGMA Table_Info(t)"), SizeIs(12));
}

TEST_F(QueryGuard, OpensNoOtherDatabase) {
  Database database = Open("CREATE TABLE t (name)");
  EXPECT_EQ(FindRefusal(database, "ATTACH '" + folder / "other.db" + "' AS other"),
            "a query reads one database; it cannot open or close another");
  EXPECT_EQ(FindRefusal(database, "DETACH main"),
            "a query reads one database; it cannot open or close another");
  EXPECT_EQ(FindRefusal(database, "VACUUM INTO '" + folder / "other.db" + "'"), kOnlyReads);
  EXPECT_THAT(folder.Files(), ElementsAre("stranger.db"));
}

TEST_F(QueryGuard, ChangesNothing) {
  Database database = Open(
      "CREATE TABLE t (name UNIQUE); CREATE VIEW v AS SELECT name FROM t;"
      "CREATE TRIGGER g INSTEAD OF INSERT ON v BEGIN DELETE FROM t; END");
  for (const char* sql :
       {"INSERT INTO t VALUES (1)", "INSERT INTO v VALUES (1)", "DELETE FROM t", "DROP TABLE t",
        "CREATE TEMP TABLE x (y)", "BEGIN IMMEDIATE", "BEGIN", "COMMIT", "SAVEPOINT s", "REINDEX",
        "EXPLAIN DELETE FROM t", "CREATE VIRTUAL TABLE x USING json_each"}) {
    EXPECT_EQ(FindRefusal(database, sql), kOnlyReads) << sql;
  }
  EXPECT_NE(FindRefusal(database, "UPDATE sqlite_master SET sql = ''"), "answered");
}

TEST_F(QueryGuard, UsesNoPragmaThatSetsSomething) {
  Database database = Open("CREATE TABLE t (name)");
  for (const char* name : {"journal_mode", "trusted_schema", "writable_schema", "temp_store",
                           "temp_store_directory", "hard_heap_limit", "optimize"}) {
    const std::string refusal = std::string("a query cannot use PRAGMA ") + name;
    EXPECT_EQ(FindRefusal(database, std::string("PRAGMA ") + name), refusal);
    EXPECT_EQ(FindRefusal(database, std::string("PRAGMA ") + name + " = 1"), refusal);
  }
}

TEST_F(QueryGuard, UsesNoFunctionThatReachesBeyondTheDatabase) {
  Database database = Open("CREATE TABLE t (name)");
  for (const char* call : {"load_extension('x')", "sqlite_log(1, 'x')", "randomblob(9)",
                           "sqlite_compileoption_get(1)", "total_changes()"}) {
    // Where SQLite was built without it, there is no such function.
    EXPECT_THAT(FindRefusal(database, std::string("SELECT ") + call),
                testing::AnyOf(HasSubstr("a query cannot use the function "),
                               HasSubstr("no such function: ")))
        << call;
  }
  EXPECT_EQ(FindRefusal(database, "SELECT Total_Changes()"),
            "a query cannot use the function total_changes");
}

TEST_F(QueryGuard, EndsAQueryAfterItsTime) {
  Database database = Open("CREATE TABLE t (name)", std::chrono::seconds(1));
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(FindRefusal(database, std::string(kEndless) + "SELECT count(*) FROM n"),
            "the query took longer than 1 second: ask for less, or allow more with --time-limit");
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
  EXPECT_EQ(Ask(database, "SELECT 1"), Texts{"1"});
}

TEST_F(QueryGuard, BoundsTheMemoryOfAQuery) {
  Database database = Open("CREATE TABLE t (name)");
  const std::string much = std::string(kEndless) +
                           "SELECT max(y) FROM (SELECT zeroblob(99999) || x"
                           " AS y FROM n ORDER BY y LIMIT -1 OFFSET 1)";
  EXPECT_EQ(FindRefusal(database, much),
            "the query needs more than 256 MiB of memory: ask for less, such as fewer rows or "
            "columns to sort");
  EXPECT_EQ(Ask(database, "SELECT 1"), Texts{"1"});
}

TEST_F(QueryGuard, BoundsAValue) {
  Database database = Open("CREATE TABLE t (name)");
  for (const char* value : {"hex(zeroblob(4e8))", "length(hex(zeroblob(15e7)))"}) {
    EXPECT_EQ(FindRefusal(database, std::string("SELECT ") + value),
              "the query makes a value of more than 256 MiB: ask for a part of it, as with substr")
        << value;
  }
}

TEST_F(QueryGuard, BoundsTheAnswer) {
  Database database = Open("CREATE TABLE t (name)");
  const std::string refusal =
      "the answer is larger than 256 MiB: ask for less of it, such as fewer columns, or with LIMIT";
  std::size_t rows = 0;
  const auto ask = [&](const std::string& columns) {
    rows = 0;
    try {
      database.Query(
          kEndless + ("SELECT " + columns) + " FROM n", [](const Database::Names&) {},
          [&](const Database::Values&) { ++rows; });
    } catch (const DatabaseError& error) {
      return std::string(error.what());
    }
    return std::string("answered");
  };
  EXPECT_EQ(ask("zeroblob(9999999)"), refusal);
  EXPECT_EQ(rows, 26U);
  // Every row lacks other columns, so each has its own list of names.
  std::string gaps;
  for (int bit = 0; bit < 20; ++bit) {
    gaps += (bit == 0 ? "" : ", ") +
            ("nullif(x >> " + std::to_string(bit) + " & 1, 0) AS \"" + std::string(4000, 'n')) +
            "\"";
  }
  EXPECT_EQ(ask(gaps), refusal);
  EXPECT_LT(rows, 2000U);
}

TEST_F(QueryGuard, BoundsAStatement) {
  Database database = Open("CREATE TABLE t (name)");
  std::string deep = "1";
  std::string wide = "SELECT 1";
  for (int i = 0; i < 250; ++i) deep += "+1";
  for (int i = 0; i < 60; ++i) wide += " UNION ALL SELECT 1";
  EXPECT_THAT(FindRefusal(database, "SELECT " + deep), HasSubstr("maximum depth 200"));
  EXPECT_THAT(FindRefusal(database, wide), HasSubstr("too many terms in compound SELECT"));
  EXPECT_THAT(FindRefusal(database, "SELECT '" + std::string(1'000'000, 'x') + "'"),
              HasSubstr("too long"));
  EXPECT_THAT(FindRefusal(database, "SELECT 'x' LIKE '" + std::string(1001, '%') + "'"),
              HasSubstr("LIKE or GLOB pattern too complex"));
}

TEST_F(QueryGuard, HoldsAViewToTheSame) {
  Database database = Open(std::string("CREATE VIEW out AS SELECT load_extension('x');") +
                               "CREATE VIEW endless AS " + kEndless + "SELECT count(*) FROM n;" +
                               "CREATE VIEW large AS SELECT hex(zeroblob(4e8))",
                           std::chrono::seconds(1));
  EXPECT_THAT(FindRefusal(database, "SELECT * FROM out"), HasSubstr("load_extension"));
  EXPECT_THAT(FindRefusal(database, "SELECT * FROM endless"), HasSubstr("longer than 1 second"));
  EXPECT_THAT(FindRefusal(database, "SELECT * FROM large"), HasSubstr("more than 256 MiB"));
}

TEST_F(QueryGuard, ReadsNoVirtualTableOfAFile) {
  for (const char* module : {"fts5", "fts4", "fts3tokenize", "rtree", "dbstat", "fts5vocab"}) {
    const test::TemporaryFolder own;
    test::MakeDatabase(own / "x.db",
                       std::string("PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES "
                                   "('table', 'v', 'v', 0, 'CREATE VIRTUAL TABLE v USING ") +
                           module + "(main)')");
    Database database(PathFromText(own / "x.db"));
    EXPECT_EQ(FindRefusal(database, "SELECT * FROM v"), std::string("no such module: ") + module);
  }
}

TEST_F(QueryGuard, SaysInOneShortLineWhatIsWrongWithASchema) {
  test::MakeDatabase(folder / "x.db",
                     "PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES ('table', "
                     "'a' || char(10) || hex(zeroblob(9999)), 't', 2, 'CREATE TABLE t (')");
  try {
    const Database database(PathFromText(folder / "x.db"));
    FAIL();
  } catch (const DatabaseError& error) {
    const std::string text = error.what();
    EXPECT_THAT(text, AllOf(HasSubstr("x.db: "), HasSubstr("malformed database schema")));
    EXPECT_EQ(text.find('\n'), std::string::npos);
    EXPECT_LT(text.size(), 1000U);
  }
}

TEST_F(QueryGuard, SaysThatAFileIsDamaged) {
  test::MakeDatabase(folder / "x.db",
                     std::string("CREATE TABLE t (a);") + kEndless +
                         "INSERT INTO t SELECT hex(zeroblob(900)) FROM n LIMIT 99");
  std::string bytes = folder.Read("x.db");
  for (std::size_t at = 4096; at < bytes.size(); ++at) bytes[at] = '\x85';
  folder.Write("x.db", bytes);
  Database database(PathFromText(folder / "x.db"));
  EXPECT_EQ(FindRefusal(database, "SELECT * FROM t"), "database disk image is malformed");
  folder.Write("x.db", "SQLite format 3 or not");
  EXPECT_THROW(Database(PathFromText(folder / "x.db")), DatabaseError);
}

TEST_F(QueryGuard, LeavesNothingBesideAFile) {
  Database database =
      Open("PRAGMA journal_mode = WAL; CREATE TABLE t (a); INSERT INTO t VALUES (1)");
  EXPECT_EQ(Ask(database, "SELECT a FROM t"), Texts{"1"});
  EXPECT_THAT(folder.Files(), ElementsAre("stranger.db"));
}

TEST_F(QueryGuard, RefusesAFileWithoutItsLastChanges) {
  for (const char* suffix : {"-wal", "-journal"}) {
    const test::TemporaryFolder own;
    test::MakeDatabase(own / "x.db", "CREATE TABLE t (a)");
    own.Write(std::string("x.db") + suffix, "");
    EXPECT_NO_THROW(Database(PathFromText(own / "x.db"))) << suffix;
    own.Write(std::string("x.db") + suffix, "changes");
    try {
      const Database database(PathFromText(own / "x.db"));
      FAIL() << suffix;
    } catch (const DatabaseError& error) {
      EXPECT_THAT(error.what(), AllOf(HasSubstr(std::string("x.db") + suffix),
                                      HasSubstr("not in the database yet")));
    }
  }
}

TEST_F(QueryGuard, OpensAFileWhateverItsName) {
  for (const char* name : {"a b.db", "50%41.db", "a#b.db", "größe 连.db", "file:x;y&mode=rwc"}) {
    const test::TemporaryFolder own;
    test::MakeDatabase(own / "plain.db", "CREATE TABLE t (a); INSERT INTO t VALUES (1)");
    std::filesystem::path path = own.Path() / PathFromText(name);
    std::error_code error;
    std::filesystem::rename(own.Path() / "plain.db", path, error);
    if (error) continue;  // No name for this system.
    Database database(path);
    EXPECT_EQ(Ask(database, "SELECT a FROM t"), Texts{"1"}) << name;
  }
}

TEST_F(QueryGuard, RefusesAFolder) {
  try {
    const Database database(folder.Path());
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_THAT(error.what(), testing::EndsWith(": is no plain file"));
  }
}

}  // namespace
}  // namespace host
