// One process collects many recordings, one after the other and on several threads, and none of
// them sees another.
#include "host/collect/collect.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "host/collect/recorded_source.h"
#include "host/collect/trace.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"
#include "tests/support/collected.h"
#include "tests/support/samples.h"

namespace host {
namespace {

using test::CollectTrace;
using test::LoadSamples;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

TEST(Collection, GivesTheSameTraceAfterAnyOtherSample) {
  const std::map<std::string, Recording> samples = LoadSamples();
  std::map<std::string, std::string> alone;
  for (const auto& [name, recording] : samples) alone[name] = CollectTrace(recording);
  for (const auto& [first, before] : samples) {
    for (const auto& [second, recording] : samples) {
      Collect(before);
      EXPECT_EQ(CollectTrace(recording) == alone[second], true) << first << ", then " << second;
    }
  }
}

/// One tool that prints into a pipe and one that writes a file.
Recording MakeTwoTools() {
  Recording recording;
  recording.commands = {
      {"arp.exe", "-a", "to the pipe\r\n", "", 3},
      {"route", "print", "to the file\r\n", ""},
  };
  return recording;
}

const CollectedAnswer* FindAnswer(const Collection& collection, const std::string& words) {
  const auto found = std::find_if(collection.answers.begin(), collection.answers.end(),
                                  [&](const CollectedAnswer& answer) {
                                    return answer.commandLine.find(words) != std::string::npos;
                                  });
  return found == collection.answers.end() ? nullptr : &*found;
}

TEST(Collection, KeepsWhatAToolWroteIntoItsPipe) {
  const Recording recording = MakeTwoTools();
  const Collection collection = Collect(recording);
  const CollectedAnswer* answer = FindAnswer(collection, "arp.exe -a");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->module, "Windows_Related_Info");
  EXPECT_EQ(answer->commandLine, "/c arp.exe -a");
  EXPECT_EQ(answer->exitCode, 3U);
  EXPECT_TRUE(answer->output.SharesWith(recording.commands[0].standardOutput));
  EXPECT_EQ(answer->file, "");
}

TEST(Collection, TellsWhatDidNotFitThePipe) {
  constexpr std::size_t kRoom = std::size_t{64} << 20;
  const std::string line = "  TCP    0.0.0.0:135            0.0.0.0:0              LISTENING\r\n";
  std::string printed = "\r\nActive Connections\r\n\r\n  Proto  Local Address\r\n";
  for (int row = 0; row < 10; ++row) printed += line;
  printed.resize(kRoom, ' ');
  Recording recording;
  recording.commands = {{"netstat.exe", "", printed, ""}};
  const auto collect = [&] { return Collect(recording, {{}, {"NETSTATINFO"}}); };
  const Collection whole = collect();
  EXPECT_THAT(whole.problems, IsEmpty());
  EXPECT_THAT(whole.tables.front().status.text, testing::EndsWith("rows"));
  recording.commands.front().standardOutput += "x";
  const Collection cut = collect();
  EXPECT_THAT(cut.problems, ElementsAre(HasSubstr("netstat.exe: printed more than 64 MiB")));
  EXPECT_THAT(cut.tables.front().status.text,
              HasSubstr("rows, of the first 64 MiB that netstat.exe printed"));
}

TEST(Collection, KeepsWhatAToolWroteIntoItsFile) {
  const Recording recording = MakeTwoTools();
  const Collection collection = Collect(recording);
  const CollectedAnswer* answer = FindAnswer(collection, "route print");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->output, "");
  EXPECT_EQ(answer->file, "C:\\Halyard\\logs\\route.txt");
  EXPECT_TRUE(answer->fileText.SharesWith(recording.commands[1].standardOutput));
  EXPECT_TRUE(collection.files.at(answer->file).SharesWith(answer->fileText));
}

TEST(Collection, SaysWhatIsLeftOutOnlyWhereAnOutputWasRead) {
  Recording recording;
  recording.commands = {{"storcli.exe", "show ctrlcount", "Controller Count = 2\r\n", ""},
                        {"storcli.exe", "/c0 show", "no drives\r\n", ""}};
  const Collection collection = Collect(recording, {{"sampleModule2"}, {"PINFO", "FWTERMLOG"}});
  const TableStatus& read = collection.tables.front().status;
  EXPECT_EQ(read.outcome, "no rows in output");
  EXPECT_THAT(read.notes, testing::ElementsAre(testing::StartsWith("of controller 0 alone")));
  const TableStatus& missing = collection.tables.back().status;
  EXPECT_EQ(missing.outcome, "tool missing");
  EXPECT_THAT(missing.notes, testing::IsEmpty());
}

TEST(Collection, HasNoExitCodeOfAToolThatCouldNotStart) {
  Recording recording = MakeTwoTools();
  recording.commands[0].startError = 5;
  const Collection collection = Collect(recording);
  const CollectedAnswer* answer = FindAnswer(collection, "arp.exe -a");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(answer->exitCode, std::nullopt);
  EXPECT_EQ(answer->output, "");
}

TEST(Collection, HidesAPasswordInTheCommandLinesThatItKeeps) {
  const Recording recording = LoadRecording(test::SamplesFolder() + "/amt-desktop");
  const Collection collection = Collect(recording);
  const CollectedAnswer* answer = FindAnswer(collection, "amt_log.exe");
  ASSERT_NE(answer, nullptr);
  EXPECT_THAT(answer->commandLine, testing::HasSubstr(" ***>"));
}

TEST(Collection, OutlivesTheRecordingAndTheSource) {
  std::optional<Recording> recording = LoadRecording(test::SamplesFolder() + "/two-socket-server");
  const std::string trace = CollectTrace(*recording);
  std::optional<Collection> collection;
  {
    RecordedSource source(*recording);
    CollectionListener nobody;
    collection = Collect(source, {{}, {"SENSORINFO"}}, nobody);
  }
  recording.reset();
  ASSERT_THAT(collection->tables, SizeIs(1));
  EXPECT_EQ(collection->tables[0].rows->rows.front().Values().front(), "CPU0 Temp        ");
  EXPECT_FALSE(collection->files.empty());
}

TEST(Collection, KeepsTheLogOnlyWhenAsked) {
  CollectionListener nobody;
  EXPECT_EQ(Collect(MakeTwoTools(), {}, nobody, KeepLog::kNo).log.CountLines(), 0u);
  EXPECT_GT(Collect(MakeTwoTools(), {}, nobody, KeepLog::kYes).log.CountLines(), 0u);
}

TEST(Collection, BeginsNothingWhenTheSelectionNamesNothingThatExists) {
  struct Watcher : CollectionListener {
    void Begin() override { hasBegun = true; }
    bool hasBegun = false;
  };
  Watcher watcher;
  EXPECT_THROW(Collect(MakeTwoTools(), {{}, {"NOTHING"}}, watcher), UsageError);
  EXPECT_FALSE(watcher.hasBegun);
}

TEST(Collection, EndsWhenItsListenerSaysSo) {
  struct Impatient : CollectionListener {
    bool WantsEnd() override { return started > 0; }
    void OnProcess(const std::string& /*application*/, const std::string& /*commandLine*/,
                   bool /*inheritHandles*/, bool /*pipe*/) override {
      ++started;
    }
    int started = 0;
  };
  Impatient listener;
  const Collection collection = Collect(MakeTwoTools(), {{"Windows_Related_Info"}, {}}, listener);
  EXPECT_THAT(collection.problems, ElementsAre(testing::HasSubstr("interrupted")));
  EXPECT_EQ(collection.tables.at(1).status.outcome, "interrupted");
}

}  // namespace
}  // namespace host
