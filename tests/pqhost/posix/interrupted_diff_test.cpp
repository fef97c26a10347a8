// Ctrl-C during a comparison.
#include <gmock/gmock.h>
#include <signal.h>

#include <sstream>
#include <streambuf>
#include <string>

#include "host/pqhost/pqhost.h"
#include "host/program/interruption.h"
#include "tests/support/posix/heard_signals.h"
#include "tests/support/program/host_run.h"

namespace host {
namespace {

using testing::HasSubstr;

/// Presses Ctrl-C once, when progress is shown for the time `number`, counted from 1.
class PressesAtProgress final : public std::stringbuf {
 public:
  explicit PressesAtProgress(int number) : number(number) {}

 protected:
  std::streamsize xsputn(const char* text, std::streamsize size) override {
    if (++count == number) raise(SIGINT);
    return std::stringbuf::xsputn(text, size);
  }

 private:
  int number;
  int count = 0;
};

class InterruptedDiff : public testing::TestWithParam<int> {};

TEST_P(InterruptedDiff, EndsWithTwoAndWithoutAResult) {
  const test::HeardSignals signals;
  EndCleanlyWhenAsked(7);
  PressesAtProgress shown(GetParam());
  std::ostringstream out;
  std::ostream error(&shown);
  const Console console{
      .programName = "pqhost", .out = out, .error = error, .errorIsTerminal = true};
  EXPECT_EQ(RunPqhost({"diff", test::Sample("two-socket-server"), test::Sample("blade")}, console),
            2);
  EXPECT_EQ(out.str(), "");
  EXPECT_THAT(shown.str(), HasSubstr("interrupted: nothing was compared"));
}

INSTANTIATE_TEST_SUITE_P(AtSomeTime, InterruptedDiff, testing::Values(1, 20));

}  // namespace
}  // namespace host
