#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "host/recording/recording_reader.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

class RecordingLinks : public testing::Test {
 protected:
  RecordingLinks() {
    recording.Write("recording.json", R"({"format": 1, "files": {"C:\\f": "deep/f"}})");
    recording.Write("deep/other", "inside");
    outside.Write("f", "outside");
  }

  test::TemporaryFolder recording;
  test::TemporaryFolder outside;
};

TEST_F(RecordingLinks, FollowsALinkThatStaysInside) {
  std::filesystem::create_symlink("other", recording.Path() / "deep/f");
  EXPECT_EQ(LoadRecording(recording.Path()).files.at("C:\\f"), "inside");
}

TEST_F(RecordingLinks, RefusesALinkThatLeadsOut) {
  std::filesystem::create_symlink(outside.Path() / "f", recording.Path() / "deep/f");
  EXPECT_THAT([&] { LoadRecording(recording.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("leads out of the recording's folder")));
}

TEST_F(RecordingLinks, RefusesALinkedFolderThatLeadsOut) {
  std::filesystem::remove_all(recording.Path() / "deep");
  std::filesystem::create_directory_symlink(outside.Path(), recording.Path() / "deep");
  EXPECT_THAT([&] { LoadRecording(recording.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("leads out of the recording's folder")));
}

TEST_F(RecordingLinks, RefusesALinkToItself) {
  std::filesystem::create_symlink("f", recording.Path() / "deep/f");
  EXPECT_THROW(LoadRecording(recording.Path()), RecordingError);
}

TEST_F(RecordingLinks, LoadsARecordingThroughALinkToItsFolder) {
  std::filesystem::rename(recording.Path() / "deep/other", recording.Path() / "deep/f");
  std::filesystem::create_directory_symlink(recording.Path(), outside.Path() / "link");
  EXPECT_EQ(LoadRecording(outside.Path() / "link").files.at("C:\\f"), "inside");
}

TEST_F(RecordingLinks, DoesNotWaitForAPipe) {
  ASSERT_EQ(mkfifo((recording.Path() / "deep/f").c_str(), 0600), 0);
  EXPECT_THAT([&] { LoadRecording(recording.Path()); },
              ThrowsMessage<RecordingError>(HasSubstr("is no plain file")));
}

TEST_F(RecordingLinks, ShowsAFoldersStrangeNameOnOneLine) {
  const std::filesystem::path strange = outside.Path() / "a\nb\x1B\xFF";
  std::filesystem::create_directory(strange);
  EXPECT_THAT([&] { LoadRecording(strange); },
              ThrowsMessage<RecordingError>(HasSubstr("/a?b?"
                                                      "?/recording.json: ")));
}

TEST_F(RecordingLinks, DoNotLeadRecordingJsonOut) {
  outside.Write("recording.json", R"({"format":1})");
  std::filesystem::remove(recording.Path() / "recording.json");
  std::filesystem::create_symlink(outside.Path() / "recording.json",
                                  recording.Path() / "recording.json");
  EXPECT_THAT([&] { LoadRecording(recording.Path()); },
              ThrowsMessage<RecordingError>(
                  HasSubstr("recording.json: leads out of the recording's folder")));
}

TEST_F(RecordingLinks, DoNotLeadSubmissionJsonOutNorLetItWait) {
  recording.Write("recording.json", R"({"format": 1})");
  outside.Write("submission.json", R"({"format": 1, "name": "outside"})");
  std::filesystem::create_symlink(outside.Path() / "submission.json",
                                  recording.Path() / "submission.json");
  const Recording led = LoadRecording(recording.Path());
  EXPECT_FALSE(led.submission);
  EXPECT_THAT(led.doubts, ElementsAre(HasSubstr("submission.json: leads out of the recording's")));
  std::filesystem::remove(recording.Path() / "submission.json");
  ASSERT_EQ(mkfifo((recording.Path() / "submission.json").c_str(), 0600), 0);
  EXPECT_THAT(LoadRecording(recording.Path()).doubts,
              ElementsAre(HasSubstr("submission.json: is no plain file")));
}

}  // namespace
}  // namespace host
