// A program that is ended at any write leaves the old file or the new one.
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "tests/support/posix/heard_signals.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::ElementsAre;

constexpr int kTooMany = 1000;

class EndedWhileWriting : public testing::Test {
 protected:
  explicit EndedWhileWriting(std::string command = "collect") : command(std::move(command)) {
    folder.Write("o", "old");
    whole =
        test::RunHost({this->command, "--replay", test::Sample("blade"), "--format", "csv"}).out;
  }

  /// The exit status, as the shell tells it, of a run that gets `signal` at its write number `at`.
  int Run(int signal, int at) {
    // The address sanitizer wants to be loaded first, but works all the same.
    const std::string line =
        "ASAN_OPTIONS=verify_asan_link_order=0 PQ_SIGNAL=" + std::to_string(signal) +
        " PQ_AT=" + std::to_string(at) + " LD_PRELOAD='" +
        test::FindBuiltProgram("signal_at_write.so").string() + "' '" +
        test::FindBuiltProgram("pqhost").string() + "' " + command + " --replay '" +
        test::Sample("blade") + "' --format csv --output '" + (folder / "o") + "' >/dev/null 2>&1";
    return WEXITSTATUS(std::system(line.c_str()));
  }

  /// For every write that there is; `then` is told the exit status.
  template <typename Then>
  void RunAtEachWrite(int signal, const Then& then) {
    int at = 1;
    for (; at < kTooMany; ++at) {
      folder.Write("o", "old");
      const int status = Run(signal, at);
      if (folder.Read("o") == whole) break;  // It has fewer writes.
      then(status);
      if (HasFailure()) return;
    }
    EXPECT_GT(at, 1);
    EXPECT_LT(at, kTooMany);
    EXPECT_EQ(folder.Read("o"), whole);
  }

  const test::HeardSignals signals;
  test::TemporaryFolder folder;
  std::string command;
  std::string whole;
};

class HealthEndedWhileWriting : public EndedWhileWriting {
 protected:
  HealthEndedWhileWriting() : EndedWhileWriting("health") {}
};

TEST_F(EndedWhileWriting, LeavesTheOldFileOrTheNewOne) {
  RunAtEachWrite(SIGKILL, [&](int status) {
    EXPECT_EQ(status, 128 + SIGKILL);
    EXPECT_EQ(folder.Read("o"), "old");
  });
}

TEST_F(EndedWhileWriting, LeavesNoPartOfAFile) {
  for (const int signal : {SIGTERM, SIGHUP}) {
    RunAtEachWrite(signal, [&](int status) {
      EXPECT_EQ(status, 1);
      EXPECT_EQ(folder.Read("o"), "old");
      EXPECT_THAT(folder.Files(), ElementsAre("o"));
    });
  }
}

TEST_F(EndedWhileWriting, WritesAllTheSameAfterTheFirstCtrlC) {
  EXPECT_EQ(Run(SIGINT, 1), 1);
  EXPECT_EQ(folder.Read("o"), whole);
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
}

// Whoever watches must not take an end for a verdict.
TEST_F(HealthEndedWhileWriting, IsUnknownAndLeavesNoPartOfAFile) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    RunAtEachWrite(signal, [&](int status) {
      EXPECT_EQ(status, 3);
      EXPECT_EQ(folder.Read("o"), "old");
      EXPECT_THAT(folder.Files(), ElementsAre("o"));
    });
  }
}

}  // namespace
