// pqhost redact
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "host/files/file_handle.h"
#include "host/files/whole_file.h"
#include "host/formats/formats.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "tests/support/collected.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using test::HostRun;
using test::RunHost;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class RedactCommand : public testing::Test {
 protected:
  RedactCommand() {
    Recording made;
    made.commands.push_back({"arp.exe",
                             "-a",
                             "Interface: 10.24.8.31 --- 0x11\n"
                             "  Internet Address      Physical Address      Type\n"
                             "  10.24.8.12            3c-ec-ef-22-b1-40     dynamic   \n",
                             {}});
    made.commands.push_back({"getsmbios.exe", "", "Serial Number: KV0341P7K2\n", {}});
    made.submission = Submission{.name = "CANARY31"};
    WriteRecording(made, folder.Path() / "server");
  }

  HostRun Redact(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"redact", "--key", folder / "key"});
    return RunHost(arguments);
  }

  /// All bytes of the files in `name`.
  std::string ReadAll(const std::string& name) const {
    std::string all;
    for (const std::string& file : folder.Files()) {
      if (file.starts_with(name + "/")) all += file + "\n" + folder.Read(file);
    }
    return all;
  }

  test::TemporaryFolder folder;
  std::string in = folder / "server";
  std::string out = folder / "out";
};

TEST_F(RedactCommand, WritesWhatReplaysWithoutTheValues) {
  const HostRun run = Redact({in, out});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_THAT(run.error, HasSubstr("replaced: 1 host, 2 ipv4, 1 mac, 1 serial"));
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(ReadAll("out"), AllOf(Not(HasSubstr("10.24.8")), Not(HasSubstr("22-b1-40")),
                                    Not(HasSubstr("KV0341P7K2")), Not(HasSubstr("CANARY31"))));
  EXPECT_EQ(RunHost({"verify", out}).out, out + ": good\n");
  for (const Format& format : Formats()) {
    const HostRun result = RunHost(
        {"collect", "--replay", out, "--format", format.name, "--output", folder / format.name});
    EXPECT_EQ(result.exitCode, 1) << "some tools are missing";
    if (std::string(format.name) == "none") continue;
    EXPECT_THAT(folder.Read(format.name), AllOf(Not(HasSubstr("10.24.8")), Not(HasSubstr("KV0341")),
                                                Not(HasSubstr("CANARY31"))))
        << format.name;
  }
}

TEST_F(RedactCommand, WritesTheSameAgainAsFolderAndZip) {
  EXPECT_EQ(Redact({in, out}).exitCode, 0);
  EXPECT_EQ(Redact({in, out + ".zip"}).exitCode, 0);
  EXPECT_EQ(Redact({out + ".zip", folder / "twice"}).exitCode, 0) << "a ZIP file comes in, too";
  EXPECT_EQ(LoadRecording(folder.Path() / "out").contentKey,
            LoadRecording(folder.Path() / "out.zip").contentKey);
}

TEST_F(RedactCommand, TellsInTheSubmission) {
  EXPECT_EQ(Redact({"--profile", "support", in, out}).exitCode, 0);
  EXPECT_THAT(folder.Read("out/submission.json"),
              AllOf(HasSubstr("\"profile\": \"support\""), HasSubstr("\"password\": 0"),
                    HasSubstr("CANARY31"), Not(HasSubstr("ipv4"))));
}

TEST_F(RedactCommand, TakesKinds) {
  EXPECT_EQ(Redact({"--kind", "serial", in, out}).exitCode, 0);
  EXPECT_THAT(ReadAll("out"), AllOf(HasSubstr("10.24.8"), Not(HasSubstr("KV0341P7K2"))));
  const HostRun wrong = Redact({"--kind", "shoe", in, folder / "other"});
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_THAT(wrong.error, HasSubstr("--kind shoe is not known; it has to be one of password, "));
}

TEST_F(RedactCommand, ShowsAPreviewAndWritesNothing) {
  const HostRun run = Redact({"--preview", in});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, AllOf(HasSubstr("kind"), HasSubstr("serial  KV0341P7K2"),
                             HasSubstr("getsmbios, line 1"), HasSubstr("10.24.8.12")));
  EXPECT_THAT(run.error, HasSubstr("nothing was written"));
  EXPECT_FALSE(std::filesystem::exists(folder.Path() / "key"));
  EXPECT_EQ(Redact({"--preview", in, out}).exitCode, 2);
}

TEST_F(RedactCommand, WritesAMapForItsUserAlone) {
  EXPECT_EQ(Redact({"--map", folder / "map.csv", in, out}).exitCode, 0);
  const std::string map = folder.Read("map.csv");
  EXPECT_THAT(map, AllOf(testing::StartsWith("kind,value,pseudonym,times\r\n"),
                         HasSubstr("serial,KV0341P7K2,")));
  EXPECT_FALSE(IsOpenToOthers(OpenToRead(folder.Path() / "map.csv")));
  EXPECT_EQ(Redact({"--map", out + "2/map.csv", in, out + "2"}).exitCode, 2) << "to be sent";
}

TEST_F(RedactCommand, RefusesPlacesThatWouldBeSpoiled) {
  folder.Write("there.zip", "x");
  for (const std::string& place :
       {in, in + "/out", in + "/../server/out.zip", folder.Path().string(), folder / "there.zip"}) {
    const HostRun run = Redact({in, place});
    EXPECT_EQ(run.exitCode, 2) << place;
  }
  EXPECT_EQ(folder.Read("there.zip"), "x");
  EXPECT_EQ(Redact({folder / "none", out}).exitCode, 2);
  EXPECT_EQ(Redact({in}).exitCode, 2);
  EXPECT_EQ(Redact({}).exitCode, 2);
  EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(RedactCommand, RefusesACutZipFile) {
  EXPECT_EQ(Redact({in, folder / "whole.zip"}).exitCode, 0);
  const std::string whole = folder.Read("whole.zip");
  folder.Write("cut.zip", whole.substr(0, whole.size() / 2));
  const HostRun run = Redact({folder / "cut.zip", out});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("cut.zip"));
  EXPECT_FALSE(std::filesystem::exists(out));
}

TEST_F(RedactCommand, RefusesAKeyThatIsNone) {
  CreateWholeFile(folder.Path() / "key", "short", Readers::kOwnerAnywhere);
  const HostRun run = Redact({in, out});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("has less than 16 characters"));
  EXPECT_FALSE(std::filesystem::exists(out));
}

// A redacted result is the result of the redacted recording.
TEST_F(RedactCommand, IsWhatCollectDoesWithEveryFormat) {
  EXPECT_EQ(Redact({in, out}).exitCode, 0);
  for (const Format& format : Formats()) {
    if (std::string(format.name) == "none") continue;
    const std::string name = format.name;
    RunHost({"collect", "--replay", in, "--redact", "--key", folder / "key", "--format", name,
             "--output", folder / (name + "1")});
    RunHost({"collect", "--replay", in, "--redact=support", "--key", folder / "key", "--format",
             name, "--output", folder / (name + "2")});
    EXPECT_THAT(folder.Read(name + "1"), AllOf(Not(HasSubstr("10.24.8")), Not(HasSubstr("KV0341")),
                                               Not(HasSubstr("CANARY31"))))
        << name;
    if (name != "json") continue;
    EXPECT_THAT(folder.Read(name + "2"), HasSubstr("CANARY31")) << name;
  }
  EXPECT_EQ(folder.Read("csv1"), RunHost({"collect", "--replay", out, "--format", "csv"}).out);
}

// The file's own name would tell the machine's.
TEST_F(RedactCommand, IsWhatAReportToSendDoes) {
  const HostRun run = RunHost({"collect", "--replay", in, "--report", "--redact", "--key",
                               folder / "key", "--output", folder.Path().string() + "/"});
  EXPECT_THAT(run.error, HasSubstr("without what the profile public replaces"));
  std::size_t sent = 0;
  for (const std::string& name : folder.Files()) {
    if (!name.starts_with("server-")) continue;
    ++sent;
    EXPECT_THAT(name, Not(HasSubstr("CANARY31")));
    if (name.ends_with(".html")) {
      EXPECT_THAT(folder.Read(name), AllOf(Not(HasSubstr("10.24.8")), Not(HasSubstr("CANARY31"))));
      continue;
    }
    const Recording recording = LoadRecording(folder.Path() / name);
    EXPECT_EQ(recording.submission->redacted->profile, "public");
    EXPECT_THAT(recording.commands[0].standardOutput.Text(), Not(HasSubstr("10.24.8")));
  }
  EXPECT_EQ(sent, 2U) << run.error;
}

TEST_F(RedactCommand, IsRefusedWhereACollectionTellsTheRest) {
  EXPECT_THAT(RunHost({"collect", "--redact"}).error, HasSubstr("--redact works on a recording"));
  EXPECT_THAT(RunHost({"collect", "--redact", "--record", out, "--trace", folder / "t"}).error,
              HasSubstr("--trace tells all that --redact replaces"));
  EXPECT_THAT(RunHost({"collect", "--replay", in, "--key", folder / "key"}).error,
              HasSubstr("--key has no use without --redact"));
  EXPECT_THAT(RunHost({"collect", "--replay", in, "--redact=all"}).error,
              HasSubstr("public, support"));
}

TEST_F(RedactCommand, TellsWhatItLeavesOut) {
  folder.Write("odd/recording.json",
               R"({"format": 1, "commands": [{"tool": "arp.exe", "stdout": "a.txt"}]})");
  folder.Write("odd/a.txt", "PK\x03\x04 10.24.8.31");
  const HostRun run = Redact({folder / "odd", out});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.error, HasSubstr("left out, as it cannot be searched: output of arp"));
  EXPECT_THAT(folder.Read("out/submission.json"), HasSubstr("\"leftOut\": 1"));
  EXPECT_THAT(ReadAll("out"), Not(HasSubstr("10.24.8.31")));
}

}  // namespace
}  // namespace host
