// A recording on its way into a folder or a ZIP file.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/files/zip_reader.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "host/text/usage_error.h"
#include "tests/support/random_recording.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;

Recording MakeSmallRecording() {
  Recording made;
  made.commands.push_back({"storcli.exe", "/c0 show", "said", "error"});
  made.commands.push_back({"arp.exe", "-a", "said", {}});
  made.files["C:\\Windows\\hosts"] = "hosts";
  made.submission = Submission{.name = "NODE31"};
  return made;
}

std::string WriteZip(const Recording& recording) {
  std::ostringstream out;
  WriteZippedRecording(recording, out);
  return out.str();
}

TEST(WrittenZip, BeginsWithWhatTellsOfTheRest) {
  const test::TemporaryFolder folder;
  folder.Write("r.zip", WriteZip(MakeSmallRecording()));
  const ZipReader zip(OpenToRead(folder.Path() / "r.zip"), 10);
  std::vector<std::pair<std::uint64_t, std::string>> files;
  for (const auto& [name, entry] : zip.Entries()) files.emplace_back(entry.headAt, name);
  std::sort(files.begin(), files.end());
  std::vector<std::string> names;
  for (const auto& [at, name] : files) names.push_back(name);
  EXPECT_THAT(names,
              ElementsAre("submission.json", "recording.json", "manifest.sha256",
                          "commands/001_storcli_c0_show.txt", "commands/001_storcli_c0_show.err",
                          "commands/002_arp_-a.txt", "files/001_hosts"));
}

TEST(WrittenZip, IsWhatTheFolderWouldBe) {
  const test::TemporaryFolder folder;
  for (std::uint64_t seed = 2000; seed < 2020; ++seed) {
    const Recording recording = test::MakeRandomRecording(seed);
    folder.Write("r.zip", WriteZip(recording));
    const Recording read = LoadRecording(folder.Path() / "r.zip");
    EXPECT_EQ(read.commands, recording.commands) << seed;
    EXPECT_EQ(read.files, recording.files) << seed;
    EXPECT_EQ(read.contentKey, ComputeContentKey(recording)) << seed;
    EXPECT_THAT(VerifyRecording(folder.Path() / "r.zip").differences, IsEmpty()) << seed;
  }
}

TEST(WrittenZip, IsTheSameForTheSameRecording) {
  EXPECT_EQ(WriteZip(MakeSmallRecording()), WriteZip(MakeSmallRecording()));
}

TEST(RecordingOutput, MakesAFolderOrAZipFile) {
  const test::TemporaryFolder folder;
  for (const char* name : {"folder", "file.zip", "other.ZIP"}) {
    RecordingOutput(folder.Path() / name, "--record").Write(MakeSmallRecording());
    EXPECT_EQ(LoadRecording(folder.Path() / name).commands, MakeSmallRecording().commands);
    EXPECT_EQ(std::filesystem::is_directory(folder.Path() / name), std::string(name) == "folder");
  }
}

TEST(RecordingOutput, IsWholeOrNotThere) {
  const test::TemporaryFolder folder;
  {
    RecordingOutput output(folder.Path() / "r.zip", "--record");
    EXPECT_FALSE(std::filesystem::exists(folder.Path() / "r.zip"));
  }
  EXPECT_THAT(folder.Files(), IsEmpty());
  RecordingOutput(folder.Path() / "r.zip", "--record").Write(MakeSmallRecording());
  EXPECT_THAT(folder.Files(), ElementsAre("r.zip"));
}

TEST(RecordingOutput, ReplacesNothing) {
  const test::TemporaryFolder folder;
  folder.Write("r.zip", "another");
  folder.Write("r/another", "");
  EXPECT_THAT([&] { RecordingOutput(folder.Path() / "r.zip", "--record"); },
              ThrowsMessage<UsageError>(EndsWith("r.zip is there already: give --record a new "
                                                 "name")));
  EXPECT_THROW(RecordingOutput(folder.Path() / "r", "--record"), UsageError);
  EXPECT_THAT([&] { RecordingOutput(folder.Path() / "no" / "r.zip", "--record"); },
              ThrowsMessage<UsageError>(HasSubstr("does not exist")));
  EXPECT_EQ(folder.Read("r.zip"), "another");
}

}  // namespace
}  // namespace host
