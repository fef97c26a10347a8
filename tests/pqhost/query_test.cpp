// pqhost query on a stranger's file: one line and exit code 2, whatever it holds.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/program/host_run.h"
#include "tests/support/program/made_database.h"
#include "tests/support/temporary_folder.h"

namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

constexpr char kSchema[] =
    "CREATE TABLE t (a); INSERT INTO t VALUES (5);"
    "CREATE VIEW endless AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n)"
    "  SELECT count(*) FROM n;"
    "CREATE VIEW flood AS WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n)"
    "  SELECT hex(zeroblob(9999)) FROM n;"
    "CREATE VIEW large AS SELECT hex(zeroblob(4e8));"
    "CREATE VIEW out AS SELECT load_extension('x')";

class HostileDatabase : public testing::Test {
 protected:
  HostileDatabase() { test::MakeDatabase(folder / "x.db", kSchema); }

  /// The complaint of a run that has to fail.
  std::string AskInVain(const std::string& sql, const char* seconds = "100") {
    const HostRun run = RunHost({"query", folder / "x.db", sql, "--time-limit", seconds});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, StartsWith("pqhost: "));
    EXPECT_EQ(std::ranges::count(run.error, '\n'), 1);
    EXPECT_THAT(folder.Files(), ElementsAre("x.db"));
    return run.error;
  }

  const test::TemporaryFolder folder;
};

TEST_F(HostileDatabase, CanBeAskedForItsRows) {
  const HostRun run = RunHost({"query", folder / "x.db", "SELECT a FROM t", "--format", "csv"});
  EXPECT_EQ(run.out, "a\r\n5\r\n");
  EXPECT_EQ(run.exitCode, 0);
}

TEST_F(HostileDatabase, GetsNoMoreTimeThanTheQuery) {
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(AskInVain("SELECT * FROM endless", "2"), HasSubstr("longer than 2 seconds"));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST_F(HostileDatabase, GetsNoMoreMemoryThanTheQuery) {
  EXPECT_THAT(AskInVain("SELECT * FROM large"), HasSubstr("more than 256 MiB"));
  EXPECT_THAT(AskInVain("SELECT * FROM flood"), HasSubstr("larger than 256 MiB"));
}

TEST_F(HostileDatabase, ReachesNothingElse) {
  EXPECT_THAT(AskInVain("SELECT * FROM out"), HasSubstr("load_extension"));
  EXPECT_THAT(AskInVain("ATTACH '" + folder / "y.db" + "' AS y"), HasSubstr("cannot open"));
  EXPECT_THAT(AskInVain("PRAGMA journal_mode = WAL"), HasSubstr("PRAGMA journal_mode"));
}

TEST_F(HostileDatabase, LeavesNoResultOfAQueryThatFails) {
  const HostRun run =
      RunHost({"query", folder / "x.db", "SELECT * FROM large", "--output", folder / "answer"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(folder.Files(), ElementsAre("x.db"));
}

TEST(Query, KeepsTypesAndNullsInJson) {
  const test::TemporaryFolder folder;
  test::MakeDatabase(folder / "x.db", "CREATE TABLE t (a)");
  const std::string sql =
      "SELECT 9007199254740993 AS i, 1.5 AS r, 't' AS t, NULL AS n, 9e999 AS e "
      "UNION ALL SELECT 'x', NULL, 1, 2.0, -1";
  const HostRun run = RunHost({"query", folder / "x.db", "--format", "json", sql});
  const auto answer = nlohmann::json::parse(run.out);
  EXPECT_EQ(answer["machine"], nullptr);
  EXPECT_EQ(answer["tables"][0]["rows"].dump(),
            R"([{"e":"Inf","i":9007199254740993,"n":null,"r":1.5,"t":"t"},)"
            R"({"e":-1,"i":"x","n":2.0,"r":null,"t":1}])");
}

TEST(Query, HasTheHeadOfAnAnswerWithoutRows) {
  const test::TemporaryFolder folder;
  test::MakeDatabase(folder / "x.db", "CREATE TABLE t (a, b)");
  EXPECT_EQ(RunHost({"query", folder / "x.db", "SELECT a, b FROM t", "--format", "csv"}).out,
            "a,b\r\n");
  const HostRun run = RunHost({"query", folder / "x.db", "SELECT a, b FROM t", "--format", "json"});
  EXPECT_EQ(nlohmann::json::parse(run.out)["tables"][0]["columns"][1]["key"], "b");
}

TEST(Query, AsksSeveralRecordingsAndDatabasesAsOne) {
  const test::TemporaryFolder folder;
  RunHost({"collect", "--replay", Sample("hba-only"), "--format", "sqlite", "--output",
           folder / "night.db"});
  const HostRun run = RunHost({"query", folder / "night.db", "--replay", Sample("hba-only"),
                               "--replay", Sample("two-socket-server"), "--format", "csv",
                               "SELECT machine, count(*), max(row) FROM v_pinfo GROUP BY machine"});
  EXPECT_EQ(run.out,
            "machine,count(*),max(row)\r\n"
            "hba-only,3,3\r\nnight,3,3\r\ntwo-socket-server,24,24\r\n");
}

TEST(Query, AsksAllRecordingsOfAFolder) {
  const HostRun run = RunHost({"query", "--replay", Sample(""), "--format", "csv",
                               "SELECT machine FROM machine WHERE name = 'description'"});
  EXPECT_THAT(run.out, HasSubstr("hba-only\r\n"));
  EXPECT_THAT(run.out, HasSubstr("two-socket-server\r\n"));
}

TEST(Query, TellsAndLeavesOutWhatCannotBeRead) {
  const test::TemporaryFolder folder;
  folder.Write("broken.db", "no database");
  const HostRun run = RunHost({"query", folder / "broken.db", "--replay", Sample("hba-only"),
                               "SELECT DISTINCT machine FROM tables", "--format", "csv"});
  EXPECT_EQ(run.out, "machine\r\nhba-only\r\n");
  EXPECT_THAT(run.error, HasSubstr("broken.db: "));
  EXPECT_EQ(run.exitCode, 1);
  const HostRun none = RunHost({"query", folder / "broken.db", folder / "none.db", "SELECT 1"});
  EXPECT_THAT(none.error, HasSubstr("none of what there is to be asked could be read"));
  EXPECT_EQ(none.exitCode, 2);
}

TEST(Query, RefusesALogFolderThatItWouldNotFill) {
  const test::TemporaryFolder folder;
  const HostRun run =
      RunHost({"query", "--replay", Sample("blade"), "--log-folder", folder / "logs", "SELECT 1"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("--log-folder has no use here without this machine's tools"));
  EXPECT_FALSE(std::filesystem::exists(folder / "logs"));
}

TEST(QueryOptions, BoundTheTimeFromOneSecondToADay) {
  for (const char* seconds : {"0", "86401", "soon"}) {
    EXPECT_THAT(RunHost({"query", "x.db", "SELECT 1", "--time-limit", seconds}).error,
                HasSubstr("--time-limit"))
        << seconds;
  }
}

}  // namespace
