// Signals that end the program.

#include "host/program/interruption.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <filesystem>

#include "host/files/partial_file.h"
#include "tests/support/posix/heard_signals.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

class Interruption : public testing::Test {
 protected:
  Interruption() { EndCleanlyWhenAsked(7); }

  const test::HeardSignals signals;
};
using InterruptionDeathTest = Interruption;

TEST_F(Interruption, IsRequestedByTheFirstSignal) {
  const InterruptionWatch watch;
  EXPECT_FALSE(IsInterruptionRequested());
  raise(SIGINT);
  EXPECT_TRUE(IsInterruptionRequested());
}

TEST_F(InterruptionDeathTest, EndsTheProgramAtTheSecondSignal) {
  EXPECT_EXIT(
      {
        const InterruptionWatch watch;
        raise(SIGINT);
        raise(SIGINT);
      },
      testing::ExitedWithCode(7), "");
}

TEST_F(Interruption, IsForgottenByTheNextWatch) {
  {
    const InterruptionWatch watch;
    raise(SIGINT);
  }
  const InterruptionWatch watch;
  EXPECT_FALSE(IsInterruptionRequested());
}

TEST_F(InterruptionDeathTest, EndsTheProgramAtOnceWithoutAWatch) {
  for (const int signal : test::HeardSignals::kSignals) {
    EXPECT_EXIT(raise(signal), testing::ExitedWithCode(7), "^pqhost: interrupted\n$") << signal;
  }
}

TEST_F(InterruptionDeathTest, IsNotWhatTheSystemAsksFor) {
  const InterruptionWatch watch;
  EXPECT_EXIT(raise(SIGTERM), testing::ExitedWithCode(7), "");
  EXPECT_EXIT(raise(SIGHUP), testing::ExitedWithCode(7), "");
}

TEST_F(InterruptionDeathTest, LeavesNoPartialFile) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        const PartialFile partial(folder.Path() / "result", Readers::kOwner);
        if (!std::filesystem::is_empty(folder.Path())) raise(SIGTERM);
      },
      testing::ExitedWithCode(7), "");
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST_F(InterruptionDeathTest, IsIgnoredWhereItWasBefore) {
  EXPECT_EXIT(
      {
        signal(SIGHUP, SIG_IGN);
        EndCleanlyWhenAsked(7);
        raise(SIGHUP);
        _exit(3);
      },
      testing::ExitedWithCode(3), "");
}

}  // namespace
}  // namespace host
