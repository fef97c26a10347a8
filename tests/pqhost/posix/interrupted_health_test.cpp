// Ctrl-C, and too little time, while machines are judged: unknown, and nothing is written.
#include <gmock/gmock.h>
#include <signal.h>

#include <cstdlib>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "host/pqhost/pqhost.h"
#include "host/program/interruption.h"
#include "tests/support/posix/heard_signals.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Presses Ctrl-C when the first progress of a collection is shown, and keeps what is told.
class PressesAtProgress final : public std::streambuf {
 public:
  std::string told;

 private:
  int_type overflow(int_type character) override {
    if (!isPressed) raise(SIGINT);
    isPressed = true;
    told += static_cast<char>(character);
    return character;
  }

  bool isPressed = false;
};

class InterruptedHealth : public testing::Test {
 protected:
  InterruptedHealth() { host::EndCleanlyWhenAsked(7); }
  ~InterruptedHealth() override { const host::InterruptionWatch forgets; }

  /// The exit code.
  int Judge(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "health");
    arguments.insert(arguments.end(), {"--output", folder / "verdict"});
    std::ostream errorStream(&error);
    return host::RunPqhost(
        arguments,
        {.programName = "pqhost", .out = out, .error = errorStream, .errorIsTerminal = true});
  }

  const test::HeardSignals signals;
  const test::TemporaryFolder folder;
  std::ostringstream out;
  PressesAtProgress error;
};

TEST_F(InterruptedHealth, IsNoVerdictOnAMachine) {
  EXPECT_EQ(Judge({"--replay", test::Sample("hba-only"), "--format", "nagios"}), 3);
  EXPECT_THAT(error.told, HasSubstr("pqhost: interrupted: nothing is judged\n"));
  EXPECT_THAT(folder.Files(), ElementsAre());
}

TEST_F(InterruptedHealth, IsNoVerdictOnSeveral) {
  EXPECT_EQ(Judge({"--replay", test::Sample("")}), 3);
  EXPECT_THAT(error.told, HasSubstr("pqhost: interrupted: nothing is judged\n"));
  EXPECT_THAT(folder.Files(), ElementsAre());
}

TEST_F(InterruptedHealth, IsNoDatabase) {
  EXPECT_EQ(Judge({"--replay", test::Sample(""), "--format", "sqlite"}), 3);
  EXPECT_THAT(error.told, HasSubstr("pqhost: interrupted: nothing is judged\n"));
  EXPECT_THAT(folder.Files(), ElementsAre());
}

// A rule without an end: only the time ends it, and then the program.
TEST(HealthTimeLimit, EndsAsUnknownAndLeavesNoFile) {
  test::TemporaryFolder folder;
  folder.Write("endless.sql",
               "-- @rule endless\n-- @part drives\n"
               "WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n)\n"
               "SELECT 'notice', 'x', count(*) FROM n;\n");
  for (const std::string& replay : {test::Sample("hba-only"), test::Sample("")}) {
    const std::string line = "'" + test::FindBuiltProgram("pqhost").string() +
                             "' health --time-limit 1 --replay '" + replay + "' --rules '" +
                             (folder / "endless.sql") + "' --output '" + (folder / "verdict") +
                             "' 2>'" + (folder / "error") + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 3);
    EXPECT_EQ(folder.Read("error"), "pqhost: took longer than 1 second (--time-limit)\n");
    EXPECT_THAT(folder.Files(), ElementsAre("endless.sql", "error"));
  }
}

}  // namespace
