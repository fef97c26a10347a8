// Ctrl-C during a collection for a report.

#include <gmock/gmock.h>
#include <signal.h>

#include <sstream>
#include <string>

#include "host/pqhost/pqhost.h"
#include "host/program/interruption.h"
#include "tests/support/posix/heard_signals.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// A terminal whose user presses Ctrl-C once it shows `text`.
class ImpatientTerminal final : public std::stringbuf {
 public:
  explicit ImpatientTerminal(std::string text) : text(std::move(text)) {}

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override {
    const std::streamsize written = std::stringbuf::xsputn(bytes, count);
    if (!isPressed && str().find(text) != std::string::npos) {
      isPressed = true;
      raise(SIGINT);
    }
    return written;
  }

 private:
  std::string text;
  bool isPressed = false;
};

TEST(InterruptedReport, KeepsWhatIsThere) {
  const test::HeardSignals signals;
  EndCleanlyWhenAsked(7);
  const test::TemporaryFolder folder;
  std::ostringstream out;
  ImpatientTerminal terminal("storcli");
  std::ostream error(&terminal);
  const Console console{
      .programName = "pqhost", .out = out, .error = error, .errorIsTerminal = true};
  const int exitCode = RunPqhost({"collect", "--replay", test::Sample("two-socket-server"),
                                  "--report", "--output", folder / "server"},
                                 console);
  EXPECT_EQ(exitCode, 1);
  EXPECT_THAT(folder.Files(), ElementsAre("server.html", "server.zip"));
  EXPECT_THAT(folder.Read("server.html"), HasSubstr("interrupted"));
  EXPECT_THAT(terminal.str(),
              HasSubstr("\nIt is not complete, as the collection was interrupted.\n"));
}

}  // namespace
}  // namespace host
