// Where a replay leaves the files of the recorded log folder.
#include "host/pqhost/source.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "host/collect/collect.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"
#include "tests/support/collected.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class ReplaySourceTest : public testing::Test {
 protected:
  /// What could not be kept of the files that the tools of a sample leave.
  std::vector<std::string> KeepFiles(const std::string& sample) {
    options.replay = test::SamplesFolder() + "/" + sample;
    const std::unique_ptr<CommandSource> source = OpenSource(options, console);
    const Collection collection = Collect(source->Get(), {}, listener, KeepLog::kNo);
    const std::vector<std::string> problems = source->KeepLogFiles(collection);
    source->KeepRecording(collection);
    source->TellKept(console);
    return problems;
  }

  test::TemporaryFolder folder;
  SourceOptions options;
  std::ostringstream out;
  std::ostringstream error;
  Console console{.programName = "pqhost", .out = out, .error = error};
  CollectionListener listener;
};

TEST_F(ReplaySourceTest, KeepsNoFilesWithoutALogFolder) {
  EXPECT_THAT(KeepFiles("blade"), IsEmpty());
  EXPECT_EQ(error.str(), "");
}

TEST_F(ReplaySourceTest, WritesTheFilesOfTheRecordedLogFolder) {
  options.logFolder = folder.Path() / "new" / "logs";
  EXPECT_THAT(KeepFiles("two-socket-server"), IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(*options.logFolder / "route.txt"));
  EXPECT_THAT(error.str(), HasSubstr(options.logFolder->string()));
}

TEST_F(ReplaySourceTest, RefusesALogFolderThatContainsSomething) {
  options.logFolder = folder.Path();
  folder.Write("route.txt", "mine");
  EXPECT_THROW(KeepFiles("two-socket-server"), UsageError);
  EXPECT_EQ(folder.Read("route.txt"), "mine");
}

TEST_F(ReplaySourceTest, RefusesAFolderThatIsNoRecording) {
  options.replay = folder.Path();
  EXPECT_THROW(OpenSource(options, console), RecordingError);
}

}  // namespace
}  // namespace host
