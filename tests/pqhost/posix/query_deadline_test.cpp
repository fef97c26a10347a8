// One step of a statement that takes longer than anybody waits: SQLite cannot be asked to end it.
#include <gmock/gmock.h>

#include <chrono>
#include <iostream>

#include "host/pqhost/pqhost.h"
#include "tests/support/program/made_database.h"
#include "tests/support/temporary_folder.h"

namespace {

TEST(QueryDeadlineDeathTest, EndsWhatSqliteDoesNotEnd) {
  const test::TemporaryFolder folder;
  test::MakeDatabase(folder / "x.db",
                     "CREATE VIEW slow AS SELECT instr(replace(hex(zeroblob(9e6)), '0', 'a'),"
                     " replace(hex(zeroblob(4e6)), '0', 'a') || 'b')");
  const host::Console console{.programName = "pqhost", .out = std::cout, .error = std::cerr};
  EXPECT_EXIT(host::RunPqhost({"query", folder / "x.db", "SELECT * FROM slow", "--time-limit", "1",
                               "--output", folder / "answer"},
                              console),
              testing::ExitedWithCode(2),
              "^pqhost: the query took longer than 1 second: [^\n]*\n$");
  EXPECT_EQ(folder.Files(), std::vector<std::string>{"x.db"});
}

}  // namespace
