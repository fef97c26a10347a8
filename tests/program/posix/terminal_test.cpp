// What the program finds out about the terminal it was started on.
#include "host/program/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/posix/changed_variable.h"

namespace host {
namespace {

/// Facts of a program whose `streams` are a terminal of so many columns.
TerminalFacts PrepareOnTerminal(const std::vector<int>& streams, unsigned short columns) {
  const int controller = posix_openpt(O_RDWR | O_NOCTTY);
  if (controller < 0 || grantpt(controller) != 0 || unlockpt(controller) != 0) {
    throw std::runtime_error("there is no terminal");
  }
  const int terminal = open(ptsname(controller), O_RDWR | O_NOCTTY);
  winsize size{};
  size.ws_col = columns;
  ioctl(terminal, TIOCSWINSZ, &size);
  const int nothing = open("/dev/null", O_RDWR);
  std::fflush(stdout);
  std::vector<int> before;
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    before.push_back(dup(stream));
    dup2(nothing, stream);
  }
  for (const int stream : streams) dup2(terminal, stream);
  const TerminalFacts facts = PrepareTerminal();
  for (int stream = 0; stream < 3; ++stream) {
    dup2(before[stream], stream);
    close(before[stream]);
  }
  for (const int file : {nothing, terminal, controller}) close(file);
  return facts;
}

class TerminalTest : public testing::Test {
 protected:
  const test::ChangedVariable noColor{"NO_COLOR", nullptr};
  const test::ChangedVariable term{"TERM", "xterm"};
};

TEST_F(TerminalTest, IsAsWideAsItSays) {
  const TerminalFacts facts = PrepareOnTerminal({STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}, 97);
  EXPECT_TRUE(facts.inIsTerminal);
  EXPECT_TRUE(facts.outIsTerminal);
  EXPECT_TRUE(facts.errorIsTerminal);
  EXPECT_TRUE(facts.colors);
  EXPECT_EQ(facts.width, 97U);
  EXPECT_EQ(PrepareOnTerminal({STDOUT_FILENO}, 98).width, 98U);
}

TEST_F(TerminalTest, HasTheUsualWidthWhereItSaysNothing) {
  EXPECT_EQ(PrepareOnTerminal({STDOUT_FILENO}, 0).width, TerminalFacts().width);
}

// Results that go into a file are shown with the width of the screen on which the rest appears.
TEST_F(TerminalTest, IsAlsoThatOfStandardError) {
  const TerminalFacts facts = PrepareOnTerminal({STDERR_FILENO}, 63);
  EXPECT_FALSE(facts.inIsTerminal);
  EXPECT_FALSE(facts.outIsTerminal);
  EXPECT_TRUE(facts.errorIsTerminal);
  EXPECT_FALSE(facts.colors);
  EXPECT_EQ(facts.width, 63U);
}

TEST_F(TerminalTest, HasNoWidthWhereThereIsNone) {
  const TerminalFacts facts = PrepareOnTerminal({}, 97);
  EXPECT_FALSE(facts.outIsTerminal);
  EXPECT_FALSE(facts.errorIsTerminal);
  EXPECT_EQ(facts.width, TerminalFacts().width);
}

TEST_F(TerminalTest, HasNoColorsForWhoWantsNone) {
  {
    const test::ChangedVariable unwanted("NO_COLOR", "1");
    EXPECT_FALSE(PrepareOnTerminal({STDOUT_FILENO}, 80).colors);
  }
  {
    const test::ChangedVariable blank("NO_COLOR", "");
    EXPECT_TRUE(PrepareOnTerminal({STDOUT_FILENO}, 80).colors);
  }
  const test::ChangedVariable dumb("TERM", "dumb");
  EXPECT_FALSE(PrepareOnTerminal({STDOUT_FILENO}, 80).colors);
}

TEST(ProgramArguments, AreAllButItsName) {
  char name[] = "pqhost";
  char word[] = "check";
  char* words[] = {name, word, nullptr};
  EXPECT_EQ(GetProgramArguments(2, words), std::vector<std::string>{"check"});
  // Who starts a program may leave even its name away.
  EXPECT_EQ(GetProgramArguments(0, words + 2), std::vector<std::string>());
}

}  // namespace
}  // namespace host
