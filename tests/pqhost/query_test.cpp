// pqhost query on a stranger's file: one line and exit code 2, whatever it holds.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <string>

#include "tests/support/program/host_run.h"
#include "tests/support/program/made_database.h"
#include "tests/support/temporary_folder.h"

namespace {

using test::HostRun;
using test::RunHost;
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

TEST(QueryOptions, BoundTheTimeFromOneSecondToADay) {
  for (const char* seconds : {"0", "86401", "soon"}) {
    EXPECT_THAT(RunHost({"query", "x.db", "SELECT 1", "--time-limit", seconds}).error,
                HasSubstr("--time-limit"))
        << seconds;
  }
}

}  // namespace
