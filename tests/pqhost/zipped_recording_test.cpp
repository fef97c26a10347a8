// Every command takes a ZIP file for the recording that was packed into it.
#include <gmock/gmock.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/collected.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zipped_folder.h"

namespace host {
namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::HasSubstr;

using Arguments = std::vector<std::string>;

/// The samples, each as a ZIP file of its name.
class ZippedSamples {
 public:
  ZippedSamples() {
    for (const auto& sample : std::filesystem::directory_iterator(test::SamplesFolder())) {
      if (!sample.is_directory()) continue;
      names.insert(sample.path().filename().string());
      folder.Write(sample.path().filename().string() + ".zip", test::ZipFolder(sample.path()));
    }
  }

  const std::set<std::string>& Names() const { return names; }
  std::string Path(const std::string& name) const { return folder / (name + ".zip"); }
  std::string Folder() const { return folder.Path().string(); }

 private:
  std::set<std::string> names;
  test::TemporaryFolder folder;
};

/// The program's answer, with what it writes to a file.
HostRun RunOn(const std::string& recording, const Arguments& more) {
  Arguments arguments{more.front(), "--replay", recording};
  arguments.insert(arguments.end(), more.begin() + 1, more.end());
  return RunHost(arguments);
}

/// Without the times at which it was collected and judged, which are now.
std::string LevelTime(const std::string& text) {
  const std::regex time(R"re("(collected|asOf)": ?"[^"]*")re");
  return std::regex_replace(text, time, R"("$1":"")");
}

void ExpectTheSame(const ZippedSamples& zipped, const Arguments& arguments) {
  ASSERT_GT(zipped.Names().size(), 5U);
  for (const std::string& name : zipped.Names()) {
    SCOPED_TRACE(arguments.front() + " " + name);
    const HostRun folder = RunOn(Sample(name), arguments);
    const HostRun zip = RunOn(zipped.Path(name), arguments);
    EXPECT_FALSE(folder.out.empty());
    EXPECT_EQ(LevelTime(zip.out), LevelTime(folder.out));
    EXPECT_EQ(zip.error, folder.error);
    EXPECT_EQ(zip.exitCode, folder.exitCode);
  }
}

TEST(ZippedSample, GivesTheSameTrace) { ExpectTheSame({}, {"collect", "--trace", "-"}); }

TEST(ZippedSample, GivesTheSameRows) {
  const ZippedSamples zipped;
  for (const char* format : {"json", "ndjson", "csv", "table"}) {
    ExpectTheSame(zipped, {"collect", "--format", format});
  }
}

TEST(ZippedSample, GivesTheSameVerdictAndAnswers) {
  const ZippedSamples zipped;
  ExpectTheSame(zipped, {"health", "--format", "json", "--as-of", "2026-11-22"});
  ExpectTheSame(zipped, {"check", "--format", "json"});
  ExpectTheSame(zipped, {"query", "SELECT * FROM tables", "--format", "csv"});
  ExpectTheSame(zipped, {"collect", "--dry-run"});
}

TEST(ZippedSample, IsFoundInAFolderOfRecordings) {
  const ZippedSamples zipped;
  const Arguments question{"query", "SELECT * FROM tables ORDER BY machine, class", "--format",
                           "csv"};
  const HostRun zips = RunOn(zipped.Folder(), question);
  EXPECT_THAT(zips.out, HasSubstr("two-socket-server,"));
  EXPECT_EQ(zips.out, RunOn(Sample(""), question).out);
}

TEST(ZippedSample, IsNotWrittenOver) {
  const ZippedSamples zipped;
  const std::string zip = zipped.Path("blade");
  for (const char* option : {"--output", "--trace", "--log-folder"}) {
    const HostRun run = RunHost({"collect", "--replay", zip, option, zip});
    EXPECT_THAT(run.error, HasSubstr("is in the recording")) << option;
    EXPECT_EQ(run.exitCode, 2);
  }
  std::filesystem::create_hard_link(zip, zipped.Path("other"));
  EXPECT_THAT(RunHost({"collect", "--replay", zip, "--output", zipped.Path("other")}).error,
              HasSubstr("is in the recording"));
  EXPECT_EQ(RunHost({"collect", "--replay", zip, "--format", "none"}).exitCode,
            RunHost({"collect", "--replay", Sample("blade"), "--format", "none"}).exitCode);
}

}  // namespace
}  // namespace host
