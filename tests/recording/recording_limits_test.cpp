// Recordings that are larger than any server's.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "host/recording/recording_reader.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::ThrowsMessage;

class LimitedRecording : public testing::Test {
 protected:
  /// `files` of them have `fileSize` bytes, which take no room on the disk.
  void Write(int commands, int files, std::uintmax_t fileSize) {
    std::string json = R"({"format":1,"commands":[)";
    for (int i = 0; i < commands; ++i) {
      json += std::string(i == 0 ? "" : ",") + R"({"tool":"arp.exe","arguments":"x","stdout":"f)" +
              std::to_string(i % files) + "\"}";
    }
    folder.Write("recording.json", json + "]}");
    for (int i = 0; i < files; ++i) {
      const std::string name = "f" + std::to_string(i);
      folder.Write(name, "");
      std::filesystem::resize_file(folder.Path() / name, fileSize);
    }
  }

  void ExpectRefused(const ReadingRules& rules, const char* words) {
    EXPECT_THAT([&] { LoadRecording(folder.Path(), rules); },
                ThrowsMessage<RecordingError>(HasSubstr(words)));
  }

  test::TemporaryFolder folder;
};

constexpr std::uintmax_t kMebibyte = 1 << 20;

TEST_F(LimitedRecording, HasSoManyCommands) {
  Write(4, 1, 1);
  ReadingRules rules;
  rules.limits.commands = 4;
  EXPECT_EQ(LoadRecording(folder.Path(), rules).commands.size(), 4U);
  rules.limits.commands = 3;
  ExpectRefused(rules, "commands: has more than 3; --limit commands=NUMBER allows more");
}

TEST_F(LimitedRecording, HasSoManyFiles) {
  Write(9, 3, 1);
  ReadingRules rules;
  rules.limits.files = 3;
  EXPECT_EQ(LoadRecording(folder.Path(), rules).commands.size(), 9U);
  rules.limits.files = 2;
  ExpectRefused(rules, "more than 2 files are named; --limit files=NUMBER allows more");
}

TEST_F(LimitedRecording, HasFilesOfSuchASize) {
  Write(1, 1, 2 * kMebibyte + 1);
  ReadingRules rules;
  rules.limits.fileSize = 3;
  EXPECT_EQ(LoadRecording(folder.Path(), rules).commands.size(), 1U);
  rules.limits.fileSize = 2;
  ExpectRefused(rules, "has 3 MiB, more than 2; --limit file-size=MIB allows more");
}

TEST_F(LimitedRecording, IsOfSuchASize) {
  Write(2, 2, kMebibyte);
  ReadingRules rules;
  rules.limits.recordingSize = 3;
  EXPECT_EQ(LoadRecording(folder.Path(), rules).commands.size(), 2U);
  rules.limits.recordingSize = 2;
  ExpectRefused(rules, "--limit recording-size=MIB allows more");
}

TEST_F(LimitedRecording, CountsAFileOnce) {
  Write(200, 1, kMebibyte);
  ReadingRules rules;
  rules.limits.recordingSize = 2;
  const Recording recording = LoadRecording(folder.Path(), rules);
  EXPECT_TRUE(recording.commands.front().standardOutput.SharesWith(
      recording.commands.back().standardOutput));
}

TEST_F(LimitedRecording, IsRefusedBeforeItIsRead) {
  Write(1, 1, std::uintmax_t{1} << 30);
  ExpectRefused({}, "has 1024 MiB, more than 128");
}

}  // namespace
}  // namespace host
