#include "host/recording/recording_writer.h"

#include <gmock/gmock.h>

#include "host/files/sha256.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

std::string AllBytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

class WrittenRecording : public testing::Test {
 protected:
  Recording WriteAndLoad(const Recording& recording) {
    WriteRecording(recording, folder.Path());
    return LoadRecording(folder.Path());
  }

  test::TemporaryFolder folder;
};

TEST_F(WrittenRecording, IsReadAsItWas) {
  Recording recording;
  recording.description = "server in the hall, Größe M";
  recording.languageId = 1031;
  recording.codePage = 850;
  recording.hostExecutable = "C:\\H\xE4lyard\\halyard.exe";
  recording.logFolder = "D:\\L\xFFgs\\";
  recording.console = "192.0.2.1 admin ***\n";
  recording.files["C:\\Windows\\h\xF6sts"] = AllBytes();
  recording.readOnly = {"D:\\L\xFFgs\\route.txt"};
  const Recording read = WriteAndLoad(recording);
  EXPECT_EQ(read.description, recording.description);
  EXPECT_EQ(read.languageId, recording.languageId);
  EXPECT_EQ(read.codePage, recording.codePage);
  EXPECT_EQ(read.hostExecutable, recording.hostExecutable);
  EXPECT_EQ(read.logFolder, recording.logFolder);
  EXPECT_EQ(read.console, recording.console);
  EXPECT_EQ(read.files, recording.files);
  EXPECT_EQ(read.readOnly, recording.readOnly);
}

TEST_F(WrittenRecording, HasEveryAnswerInOrderAndByteForByte) {
  std::string argumentBytes = AllBytes();
  std::erase(argumentBytes, '\0');
  Recording recording;
  recording.commands = {{"storcli.exe", "/c0 show", AllBytes(), "error\r\n", 4294967295U},
                        {"storcli.exe", "/c0 show", "second\n", ""},
                        {"copy", argumentBytes, "", "", 0, 5},
                        {"arp.exe", "-a", "", "", 0, 0, 8},
                        {"check_amt_bmc.exe", "bmc", "", "", 0, 0, 0, 6}};
  EXPECT_EQ(WriteAndLoad(recording).commands, recording.commands);
}

TEST_F(WrittenRecording, NamesItsFilesByCommandAndPath) {
  Recording recording;
  recording.commands = {{"storcli.exe", "/c0 show", "out", "err"}, {"net", "share", "shares", ""}};
  recording.files["C:\\Windows\\System32\\drivers\\etc\\lmhosts.sam"] = "hosts";
  WriteAndLoad(recording);
  EXPECT_THAT(folder.Files(),
              UnorderedElementsAre("commands/001_storcli_c0_show.err",
                                   "commands/001_storcli_c0_show.txt", "commands/002_net_share.txt",
                                   "files/001_lmhosts.sam", "manifest.sha256", "recording.json"));
}

TEST_F(WrittenRecording, IsNotLeftByHalf) {
  Recording recording;
  recording.commands = {{"net", "share", "shares", "warning"}};
  recording.files["C:\\Windows\\hosts"] = "hosts";
  folder.Write("manifest.sha256/in the way", "");
  EXPECT_THROW(host::WriteRecording(recording, folder.Path()), std::runtime_error);
  EXPECT_THAT(folder.Files(), testing::ElementsAre("manifest.sha256/in the way"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "commands"));
}

TEST_F(WrittenRecording, HasAManifestOfItsFiles) {
  Recording recording;
  recording.commands = {{"net", "share", "shares", ""}};
  WriteAndLoad(recording);
  EXPECT_EQ(folder.Read("manifest.sha256"),
            ComputeSha256("shares") + "  commands/001_net_share.txt\n" +
                ComputeSha256(folder.Read("recording.json")) + "  recording.json\n");
}

TEST_F(WrittenRecording, HasTheDigestOfItsManifestAsContentKey) {
  Recording recording;
  recording.description = "hall 2";
  recording.commands = {{"net", "share", "shares", ""}, {"arp.exe", "-a", "", "", 0, 0, 8}};
  recording.files["C:\\Windows\\hosts"] = "hosts";
  recording.readOnly = {"C:\\Halyard\\logs\\route.txt"};
  const std::string key = WriteAndLoad(recording).contentKey;
  EXPECT_EQ(key, ComputeSha256(folder.Read("manifest.sha256")));
  EXPECT_EQ(ComputeContentKey(recording), key);
  std::filesystem::remove(folder.Path() / "manifest.sha256");
  EXPECT_EQ(LoadRecording(folder.Path()).contentKey, key);
}

TEST_F(WrittenRecording, HasAnotherContentKeyWithOtherContent) {
  Recording recording;
  recording.commands = {{"net", "share", "shares", ""}};
  const std::string key = WriteAndLoad(recording).contentKey;
  folder.Write("commands/001_net_share.txt", "other shares");
  const Recording changed = LoadRecording(folder.Path(), {{}, /*allowChanges=*/true});
  EXPECT_NE(changed.contentKey, key);
  recording.commands.front().standardOutput = "other shares";
  EXPECT_EQ(changed.contentKey, ComputeContentKey(recording));
}

TEST_F(WrittenRecording, SaysWhichMachineItIsAndWhen) {
  Recording recording;
  recording.submission = Submission{.name = "NODE31",
                                    .recordedAt = ParseIsoTime("2026-11-18T09:41:12+01:00"),
                                    .system = "Windows Server 2022 Standard, build 20348",
                                    .serials = {"NGR208-0031", "Gr\u00F6\u00DFe"},
                                    .program = "pqhost 0.1.0",
                                    .tools = {{"storcli", "007.2612"}},
                                    .redacted = Redaction{"support", {{"user", 3}}, 2}};
  const Recording read = WriteAndLoad(recording);
  EXPECT_EQ(read.submission, recording.submission);
  EXPECT_THAT(read.doubts, testing::IsEmpty());
  EXPECT_THAT(folder.Read("manifest.sha256"), testing::Not(HasSubstr("submission")));
  EXPECT_EQ(read.contentKey, ComputeContentKey({}));
}

TEST_F(WrittenRecording, LeavesOutACodePageThatRecordingsDoNotKnow) {
  Recording recording;
  recording.codePage = 866;
  EXPECT_EQ(WriteAndLoad(recording).codePage, 1252u);
}

}  // namespace
}  // namespace host
