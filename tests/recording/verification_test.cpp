// Whether a recording is as it was made.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zipped_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RecordingVerification : public testing::Test {
 protected:
  RecordingVerification() {
    Recording made;
    made.commands.push_back({"arp.exe", "-a", "said", {}});
    made.submission = Submission{.name = "NODE31"};
    WriteRecording(made, folder.Path());
  }

  Verification Verify() {
    place.Write("r.zip", test::ZipFolder(folder.Path()));
    const Verification inZip = VerifyRecording(place.Path() / "r.zip");
    Verification inFolder = VerifyRecording(folder.Path());
    EXPECT_EQ(inZip.differences, inFolder.differences);
    EXPECT_EQ(inZip.contentKey, inFolder.contentKey);
    return inFolder;
  }

  test::TemporaryFolder folder;
  test::TemporaryFolder place;
};

TEST_F(RecordingVerification, IsAsItWasMade) {
  const Verification good = Verify();
  EXPECT_THAT(good.differences, IsEmpty());
  EXPECT_EQ(good.contentKey, LoadRecording(folder.Path()).contentKey);
}

TEST_F(RecordingVerification, KeepsItsKeyWhoeverSendsIt) {
  const std::string key = Verify().contentKey;
  folder.Write("submission.json", R"({"format": 1, "name": "NODE32"})");
  EXPECT_EQ(Verify().contentKey, key);
  EXPECT_THAT(Verify().differences, IsEmpty());
}

TEST_F(RecordingVerification, TellsOfEveryFileThatDiffers) {
  const std::string key = Verify().contentKey;
  folder.Write("commands/001_arp_-a.txt", "unsaid");
  folder.Write("recording.json", folder.Read("recording.json") + " ");
  EXPECT_THAT(Verify().differences,
              ElementsAre("\"commands/001_arp_-a.txt\" differs from manifest.sha256",
                          "\"recording.json\" differs from manifest.sha256"));
  EXPECT_NE(Verify().contentKey, key);
}

TEST_F(RecordingVerification, TellsWhatTheManifestAloneNames) {
  const std::string digest(64, '0');
  folder.Write("there", "");
  folder.Write("manifest.sha256", folder.Read("manifest.sha256") + digest + "  gone\n" + digest +
                                      "  there\n" + digest + "  ../out\n");
  EXPECT_THAT(Verify().differences, ElementsAre(HasSubstr("\"../out\" has to name a file"),
                                                "\"gone\": there is no such file",
                                                "\"there\" differs from manifest.sha256"));
}

TEST_F(RecordingVerification, NeedsAManifest) {
  const std::string key = Verify().contentKey;
  std::filesystem::remove(folder.Path() / "manifest.sha256");
  EXPECT_THAT(Verify().differences, ElementsAre(HasSubstr("there is no manifest.sha256")));
  EXPECT_EQ(Verify().contentKey, key);
  folder.Write("manifest.sha256", "no digest");
  EXPECT_THAT(Verify().differences, ElementsAre(HasSubstr("manifest.sha256: line 1: has to be")));
}

TEST_F(RecordingVerification, HasToSayWellWhoseItIs) {
  folder.Write("submission.json", "{}");
  EXPECT_THAT(Verify().differences, ElementsAre(HasSubstr("submission.json: ")));
}

TEST_F(RecordingVerification, HasToBeReadable) {
  folder.Write("recording.json", "{");
  EXPECT_THROW(VerifyRecording(folder.Path()), RecordingError);
  EXPECT_THROW(VerifyRecording(folder.Path() / "none"), RecordingError);
}

}  // namespace
}  // namespace host
