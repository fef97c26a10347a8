// pqhost collect --report: a report, and the recording to send, beside each other.
#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/pqhost/pqhost.h"
#include "host/text/path_text.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class CollectReport : public testing::Test {
 protected:
  HostRun Report(std::vector<std::string> more, const std::string& sample = "two-socket-server") {
    more.insert(more.begin(), {"collect", "--replay", Sample(sample), "--report"});
    return RunHost(more);
  }

  test::TemporaryFolder folder;
};

TEST_F(CollectReport, WritesTheReportAndTheRecordingBesideIt) {
  const HostRun run = Report({"--output", folder / ""});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(folder.Files(),
              ElementsAre("NODE31-2026-11-18T0941.html", "NODE31-2026-11-18T0941.zip"));
  EXPECT_THAT(folder.Read("NODE31-2026-11-18T0941.html"), StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(run.error, HasSubstr("\nSend NODE31-2026-11-18T0941.zip: it holds what the tools"));
}

TEST_F(CollectReport, NamesARecordingWithoutANameByItsFile) {
  Report({"--output", folder / ""}, "hba-only");
  EXPECT_THAT(folder.Files(), ElementsAre(StartsWith("hba-only-20"), EndsWith(".zip")));
}

// Whoever gets it has the same machine in hands.
TEST_F(CollectReport, KeepsTheContentOfTheRecording) {
  Report({"--output", folder / "server"});
  const auto describe = [](const std::string& recording) {
    const std::string json = RunHost({"collect", "--replay", recording, "--format", "json"}).out;
    return json.substr(json.find("\"machine\""));
  };
  EXPECT_EQ(describe(folder / "server.zip"), describe(Sample("two-socket-server")));
  EXPECT_THAT(RunHost({"verify", folder / "server.zip"}).out, EndsWith(": good\n"));
}

TEST_F(CollectReport, IsTheReportOfTheRecordingBesideIt) {
  Report({"--output", folder / "server"});
  const HostRun again = RunHost({"collect", "--replay", folder / "server.zip", "--format", "html"});
  const auto cut = [](const std::string& html) {  // the data, without its random script key
    const std::size_t at = html.find("id=\"data\"");
    return html.substr(at, html.find("</script>", at) - at);
  };
  EXPECT_EQ(cut(folder.Read("server.html")), cut(again.out));
}

TEST_F(CollectReport, OverwritesNothing) {
  Report({"--output", folder / "server"});
  const std::string before = folder.Read("server.html");
  const HostRun run = Report({"--output", folder / "server"}, "vroc");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("server.html is there already"));
  EXPECT_EQ(folder.Read("server.html"), before);
}

TEST_F(CollectReport, RefusesWhatContradictsIt) {
  const std::vector<std::vector<std::string>> refused = {
      {"--format", "json"}, {"--record", folder / "x"}, {"--unverified"}, {"--dry-run"}};
  for (std::vector<std::string> more : refused) {
    const std::string option = more.front();
    more.insert(more.end(), {"--output", folder / "server"});
    const HostRun run = Report(more);
    EXPECT_EQ(run.exitCode, 2) << option;
    EXPECT_THAT(run.error, HasSubstr(option));
  }
  EXPECT_THAT(folder.Files(), IsEmpty());
  EXPECT_EQ(RunHost({"collect", "--replay", Sample("vroc"), "--no-open"}).exitCode, 2);
}

TEST_F(CollectReport, WritesNothingIntoTheRecordingThatIsReplayed) {
  folder.Write("recording.json", "{\"format\": 1}");
  const HostRun run =
      RunHost({"collect", "--replay", folder / "", "--report", "--output", folder / "x"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("is in the recording, which stays as it is"));
  EXPECT_THAT(folder.Files(), ElementsAre("recording.json"));
}

/// The files that are opened for the user.
class OpenedReport : public CollectReport {
 protected:
  std::vector<std::string> Open(std::vector<std::string> more, bool errorIsTerminal = true) {
    more.insert(more.begin(), {"collect", "--replay", Sample("vroc"), "--report"});
    std::ostringstream out;
    std::ostringstream error;
    std::vector<std::string> opened;
    const Console console{.programName = "pqhost",
                          .out = out,
                          .error = error,
                          .errorIsTerminal = errorIsTerminal,
                          .openFile = [&](const std::filesystem::path& file) {
                            opened.push_back(PathText(file.filename()));
                            return true;
                          }};
    RunPqhost(more, console);
    return opened;
  }
};

TEST_F(OpenedReport, IsTheOneThatWasWritten) {
  EXPECT_THAT(Open({"--output", folder / "server"}), ElementsAre("server.html"));
}

TEST_F(OpenedReport, IsNoneWhereNobodyLooksOrWantsIt) {
  EXPECT_THAT(Open({"--output", folder / "one", "--no-open"}), IsEmpty());
  EXPECT_THAT(Open({"--output", folder / "two"}, /*errorIsTerminal=*/false), IsEmpty());
}

}  // namespace
}  // namespace host
