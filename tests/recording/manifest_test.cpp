// Recordings whose files changed after they were made.
#include "host/recording/manifest.h"

#include <gmock/gmock.h>

#include "host/collect/collect.h"
#include "host/files/sha256.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::ThrowsMessage;

const std::string kDigest(64, 'a');

TEST(Manifest, IsReadAsItIsWritten) {
  const Manifest manifest = {{"a", kDigest}, {"b/c d", std::string(64, '0')}};
  EXPECT_EQ(WriteManifest(manifest), kDigest + "  a\n" + std::string(64, '0') + "  b/c d\n");
  EXPECT_EQ(ReadManifest(WriteManifest(manifest), 2), manifest);
}

TEST(Manifest, MayBeOfAnotherSystem) {
  EXPECT_THAT(ReadManifest(std::string(64, 'A') + " *a\r\n" + kDigest + "  b", 2),
              ElementsAre(Pair("a", kDigest), Pair("b", kDigest)));
}

// Digests of files that are not there pack to nothing.
TEST(Manifest, NamesSoManyFiles) {
  const std::string two = kDigest + "  a\n" + kDigest + "  b\n";
  EXPECT_THAT([&] { ReadManifest(two, 1); },
              ThrowsMessage<std::runtime_error>(
                  "line 2: it names more than 1 files; --limit files=NUMBER allows more"));
}

TEST(Manifest, SaysWhichLineIsNone) {
  for (const std::string& line : {std::string("x"), kDigest, kDigest + "  ", kDigest + "x a",
                                  std::string(64, 'g') + "  a", std::string()}) {
    EXPECT_THAT([&] { ReadManifest(kDigest + "  a\n" + line + "\n", 9); },
                ThrowsMessage<std::runtime_error>(HasSubstr("line 2:")))
        << line;
  }
}

class VerifiedRecording : public testing::Test {
 protected:
  VerifiedRecording() {
    Recording recording;
    recording.commands = {{"arp.exe", "-a", "Interface: 1\r\n", ""}};
    recording.files["C:\\f"] = "text";
    WriteRecording(recording, folder.Path());
  }

  Recording LoadUnverified() { return LoadRecording(folder.Path(), {{}, true}); }

  test::TemporaryFolder folder;
};

TEST_F(VerifiedRecording, IsReadAsItWasMade) {
  EXPECT_THAT(LoadRecording(folder.Path()).doubts, IsEmpty());
  EXPECT_THAT(LoadUnverified().doubts, IsEmpty());
}

TEST_F(VerifiedRecording, IsRefusedWithTheNameOfTheChangedFile) {
  folder.Write("files/001_f", "other");
  EXPECT_THAT(
      [&] { LoadRecording(folder.Path()); },
      ThrowsMessage<RecordingError>(AllOf(HasSubstr("\"files/001_f\" differs from manifest.sha256"),
                                          HasSubstr("--unverified"))));
}

TEST_F(VerifiedRecording, IsRefusedWithAnotherDescription) {
  folder.Write("recording.json", R"({"format":1})");
  EXPECT_THAT([&] { LoadRecording(folder.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("\"recording.json\" differs")));
}

TEST_F(VerifiedRecording, IsRefusedWithAFileThatTheManifestLacks) {
  folder.Write("manifest.sha256",
               ComputeSha256(folder.Read("recording.json")) + "  recording.json\n");
  EXPECT_THAT([&] { LoadRecording(folder.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("is not in manifest.sha256")));
}

TEST_F(VerifiedRecording, IsRefusedWithAManifestThatIsNone) {
  folder.Write("manifest.sha256", "nothing\n");
  EXPECT_THAT([&] { LoadRecording(folder.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("manifest.sha256: line 1:")));
}

TEST_F(VerifiedRecording, SaysInItsResultsThatItChanged) {
  folder.Write("files/001_f", "other");
  const Recording recording = LoadUnverified();
  EXPECT_EQ(recording.files.at("C:\\f"), "other");
  EXPECT_THAT(Collect(recording).problems,
              testing::Contains(HasSubstr("\"files/001_f\" differs from manifest.sha256")));
}

TEST_F(VerifiedRecording, NeedsNoManifest) {
  std::filesystem::remove(folder.Path() / "manifest.sha256");
  folder.Write("files/001_f", "other");
  EXPECT_THAT(LoadRecording(folder.Path()).doubts, IsEmpty());
}

}  // namespace
}  // namespace host
