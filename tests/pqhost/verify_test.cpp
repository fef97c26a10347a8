// pqhost verify
#include <gmock/gmock.h>

#include <filesystem>

#include "host/recording/recording_writer.h"
#include "host/text/path_text.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zipped_folder.h"

namespace host {
namespace {

using test::HostRun;
using test::RunHost;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

class Verify : public testing::Test {
 protected:
  /// A recording and a ZIP file of it.
  Verify() {
    Recording made;
    made.commands.push_back({"arp.exe", "-a", "said", {}});
    WriteRecording(made, folder.Path() / "server");
    folder.Write("server.zip", test::ZipFolder(folder.Path() / "server"));
  }

  void Change() const { folder.Write("server/commands/001_arp_-a.txt", "unsaid"); }

  test::TemporaryFolder folder;
  std::string server = folder / "server";
  std::string zip = folder / "server.zip";
};

TEST_F(Verify, FindsFoldersAndZipFilesGood) {
  const HostRun run = RunHost({"verify", server, zip});
  EXPECT_EQ(run.out, server + ": good\n" + zip + ": good\n");
  EXPECT_EQ(run.error, "");
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(RunHost({"verify", folder.Path().string()}).out, run.out) << "a folder of both";
}

TEST_F(Verify, TellsWhatDiffers) {
  Change();
  const HostRun run = RunHost({"verify", server, zip});
  EXPECT_EQ(run.out, server + ": \"commands/001_arp_-a.txt\" differs from manifest.sha256\n" + zip +
                         ": good\n");
  EXPECT_EQ(run.exitCode, 1);
}

TEST_F(Verify, TellsWhatCannotBeReadAndGoesOn) {
  Change();
  const HostRun run = RunHost({"verify", folder / "none.zip", server, zip});
  EXPECT_THAT(run.error, HasSubstr("none.zip: there is no such folder or ZIP file"));
  EXPECT_THAT(run.out, HasSubstr("server.zip: good\n"));
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(RunHost({"verify"}).exitCode, 2);
  EXPECT_EQ(RunHost({"verify", server, "--limit", "file-size=1", "--limit", "files=0"}).exitCode,
            2);
}

// A name in a stranger's recording may not pretend to be another line.
TEST_F(Verify, WritesNamesAsTheyAre) {
  const std::filesystem::path odd = folder.Path() / PathFromText("\u202eodd\u2028x");
  WriteRecording({}, odd);
  const HostRun run = RunHost({"verify", PathText(odd)});
  EXPECT_THAT(run.out,
              AllOf(EndsWith("x: good\n"), Not(HasSubstr("\u202e")), Not(HasSubstr("\u2028"))));
}

TEST_F(Verify, ShowsKeys) {
  const HostRun run = RunHost({"verify", "--key", zip, server});
  const std::string key = run.out.substr(0, 64);
  EXPECT_EQ(key.find_first_not_of("0123456789abcdef"), std::string::npos);
  EXPECT_EQ(run.out, key + "  " + zip + "\n" + key + "  " + server + "\n");
  EXPECT_EQ(run.exitCode, 0);
  Change();
  const HostRun changed = RunHost({"verify", "--key", server});
  EXPECT_NE(changed.out.substr(0, 64), run.out.substr(0, 64));
  EXPECT_THAT(changed.error, HasSubstr("differs from manifest.sha256"));
  EXPECT_EQ(changed.exitCode, 1);
}

}  // namespace
}  // namespace host
