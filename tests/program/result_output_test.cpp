#include "host/program/result_output.h"

#include <gmock/gmock.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

class ResultOutputTest : public testing::Test {
 protected:
  /// Writes the screen that the result is laid out for, as a result.
  static void WriteScreen(const Screen& screen, std::ostream& out) {
    out << screen.isTerminal << screen.colors << ' ' << screen.width;
  }

  test::TemporaryFolder folder;
  std::ostringstream out;
  std::ostringstream error;
  const Console terminal{.programName = "pqother",
                         .out = out,
                         .error = error,
                         .outIsTerminal = true,
                         .errorIsTerminal = true,
                         .colors = true,
                         .width = 77,
                         .programFolder = {}};
};

TEST_F(ResultOutputTest, LaysAResultOutForTheTerminal) {
  ResultOutput(Destination{}, terminal).Write(&WriteScreen);
  EXPECT_EQ(out.str(), "11 77");
}

TEST_F(ResultOutputTest, LaysAResultOutForAFileWithoutColours) {
  ResultOutput({folder / "result"}, terminal).Write(&WriteScreen);
  EXPECT_EQ(folder.Read("result"), "00 77");
  EXPECT_EQ(out.str(), "");
}

TEST_F(ResultOutputTest, KeepsTheEarlierFileWhenWritingFails) {
  folder.Write("result", "earlier");
  ResultOutput output({folder / "result"}, terminal);
  const auto fail = [](const Screen&, std::ostream& file) {
    file << "half";
    throw std::runtime_error("no more");
  };
  EXPECT_THROW(output.Write(fail), std::runtime_error);
  EXPECT_EQ(folder.Read("result"), "earlier");
}

TEST_F(ResultOutputTest, RefusesAFileThatCannotBeCreated) {
  EXPECT_THROW(ResultOutput({folder / "missing/result"}, terminal), UsageError);
}

TEST_F(ResultOutputTest, RefusesBytesOnATerminalAlone) {
  EXPECT_THROW(RefuseBytesOnTerminal("sqlite", Destination{}, terminal), UsageError);
  EXPECT_NO_THROW(RefuseBytesOnTerminal("sqlite", {folder / "result"}, terminal));
  const Console pipe{.programName = "pqother", .out = out, .error = error, .programFolder = {}};
  EXPECT_NO_THROW(RefuseBytesOnTerminal("sqlite", Destination{}, pipe));
}

TEST_F(ResultOutputTest, ComplainsInTheProgramsName) {
  Complain(terminal, "no\x1b[31m");
  EXPECT_EQ(error.str(), "pqother: no\\x1b[31m\n");
}

}  // namespace
}  // namespace host
