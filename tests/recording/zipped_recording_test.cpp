// A recording in one ZIP file is read as its folder is.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "tests/support/collected.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zipped_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::ThrowsMessage;

class ZippedRecording : public testing::Test {
 protected:
  /// The path of a ZIP file of all that is in `from`.
  std::filesystem::path Zip(const std::filesystem::path& from) {
    place.Write("r.zip", test::ZipFolder(from));
    return place.Path() / "r.zip";
  }

  Recording Load(const ReadingRules& rules = {}) {
    return LoadRecording(Zip(folder.Path()), rules);
  }

  void ExpectRefused(const std::string& words, const ReadingRules& rules = {}) {
    EXPECT_THAT([&] { Load(rules); }, ThrowsMessage<RecordingError>(HasSubstr(words)));
  }

  /// A recording whose one command wrote the file "a", of `size` bytes.
  void WriteRecordingOf(std::size_t size) {
    folder.Write("recording.json",
                 R"({"format": 1, "commands": [{"tool": "arp.exe", "stdout": "a"}]})");
    folder.Write("a", std::string(size, 'x'));
  }

  test::TemporaryFolder folder;
  test::TemporaryFolder place;
};

TEST_F(ZippedRecording, IsTheSameAsItsFolder) {
  std::size_t count = 0;
  for (const auto& sample : std::filesystem::directory_iterator(test::SamplesFolder())) {
    if (!sample.is_directory()) continue;
    SCOPED_TRACE(sample.path());
    const Recording whole = LoadRecording(sample.path());
    const Recording zipped = LoadRecording(Zip(sample.path()));
    EXPECT_EQ(LoadZippedRecording(place.Read("r.zip"), "r.zip").contentKey, whole.contentKey);
    EXPECT_EQ(zipped.commands, whole.commands);
    EXPECT_EQ(zipped.files, whole.files);
    EXPECT_EQ(zipped.contentKey, whole.contentKey);
    EXPECT_EQ(zipped.doubts, whole.doubts);
    ASSERT_EQ(zipped.submission.has_value(), whole.submission.has_value());
    if (whole.submission) {
      EXPECT_EQ(zipped.submission->name, whole.submission->name);
    }
    ++count;
  }
  EXPECT_GT(count, 5U);
}

TEST_F(ZippedRecording, MayNameAFileInARoundaboutWay) {
  folder.Write("recording.json", R"({"format": 1, "files": {"C:\\f": "./deep//f"}})");
  folder.Write("deep/f", "x");
  EXPECT_EQ(Load().files.at("C:\\f"), "x");
}

TEST_F(ZippedRecording, HasTheLimitsOfAFolder) {
  constexpr std::size_t kMebibyte = 1 << 20;
  WriteRecordingOf(2 * kMebibyte + 1);
  ReadingRules rules;
  rules.limits.fileSize = 2;
  ExpectRefused("\"a\": has 3 MiB, more than 2; --limit file-size=MIB allows more", rules);
  rules.limits.fileSize = 3;
  rules.limits.recordingSize = 2;
  ExpectRefused("--limit recording-size=MIB allows more", rules);
  rules.limits.recordingSize = 4;
  EXPECT_EQ(Load(rules).commands.size(), 1U);
  rules.limits.files = 1;
  for (const char* more : {"b", "c", "d"}) folder.Write(more, "");
  ExpectRefused("r.zip: it has 5 files, more than 4; --limit files=NUMBER allows more", rules);
}

TEST_F(ZippedRecording, SaysWhichFileIsMissingOrDamaged) {
  WriteRecordingOf(1);
  std::filesystem::remove(folder.Path() / "a");
  ExpectRefused("r.zip: recording.json: commands[0].stdout: \"a\": there is no such file");
  folder.Write("a", "damaged here");
  std::string zip = test::ZipFolder(folder.Path());
  zip[zip.find("damaged here")] = 'D';
  place.Write("damaged.zip", zip);
  EXPECT_THAT([&] { LoadRecording(place.Path() / "damaged.zip"); },
              ThrowsMessage<RecordingError>(HasSubstr("\"a\": it is damaged")));
}

TEST_F(ZippedRecording, SaysThatTheFolderItselfWasPacked) {
  folder.Write("server/recording.json", R"({"format": 1})");
  ExpectRefused(
      "r.zip: recording.json: there is no such file, but \"server/recording.json\": pack what is "
      "in that folder");
}

TEST_F(ZippedRecording, IsRefusedWhenItIsNotAsItWasMade) {
  Recording made;
  made.commands.push_back({"arp.exe", "-a", "said", {}});
  WriteRecording(made, folder.Path());
  const std::string key = Load().contentKey;
  EXPECT_EQ(key, LoadRecording(folder.Path()).contentKey);
  folder.Write("commands/001_arp_-a.txt", "unsaid");
  ExpectRefused("r.zip: \"commands/001_arp_-a.txt\" differs from manifest.sha256");
  const Recording changed = Load({{}, /*allowChanges=*/true});
  EXPECT_THAT(changed.doubts, Not(IsEmpty()));
  EXPECT_NE(changed.contentKey, key);
}

TEST_F(ZippedRecording, TellsWhatIsWrongWithItsSubmission) {
  folder.Write("recording.json", R"({"format": 1})");
  folder.Write("submission.json", std::string(70000, ' '));
  EXPECT_THAT(Load().doubts,
              testing::ElementsAre(HasSubstr("submission.json: has more than 64 KiB")));
}

}  // namespace
}  // namespace host
