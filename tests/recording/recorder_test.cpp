#include "host/recording/recorder.h"

#include <gmock/gmock.h>

#include <map>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr char kStorcliShow[] =
    R"(/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0 show>"C:\Halyard\logs\c0.txt"")";

/// A machine with the files and the programs that a test gives it.
struct MadeMachine final : MachineView {
  std::map<std::string, std::string> files;
  std::map<std::string, int> written;  ///< when, in seconds
  std::map<std::string, std::vector<std::string>> folders;
  std::set<std::string> missing;

  std::optional<std::string> ReadFile(const std::string& path) override {
    const auto file = files.find(path);
    if (file == files.end()) return std::nullopt;
    return file->second;
  }
  std::optional<FileState> FindState(const std::string& path) override {
    const auto file = files.find(path);
    if (file == files.end()) return std::nullopt;
    const std::chrono::system_clock::time_point time{std::chrono::seconds(written[path])};
    return FileState{time, file->second.size()};
  }
  std::vector<std::string> ListFiles(const std::string& folder) override { return folders[folder]; }
  bool HasProgram(const std::string& program) override { return !missing.contains(program); }
};

class MachineRecorder : public testing::Test {
 protected:
  void RunPiped(const std::string& commandLine, std::string_view output, std::uint32_t exitCode) {
    recorder.BeginRun(commandLine, true);
    recorder.AddOutput(output);
    recorder.EndRun(exitCode);
  }

  void RunToFile(const std::string& commandLine, std::uint32_t exitCode = 0) {
    recorder.BeginRun(commandLine, false);
    recorder.EndRun(exitCode);
  }

  MadeMachine machine;
  Recorder recorder{Recording(), machine};
};

TEST_F(MachineRecorder, JoinsWhatIsReadFromAPipe) {
  recorder.BeginRun("/c arp.exe -a", true);
  recorder.AddOutput(std::string_view("In\0terface", 10));
  recorder.AddOutput(": 192.0.2.1\r\n");
  recorder.EndRun(3);
  EXPECT_THAT(recorder.Take().commands,
              ElementsAre(RecordedCommand{"arp.exe", "-a",
                                          std::string("In\0terface: 192.0.2.1\r\n", 23), "", 3}));
}

/// A recorder on a machine whose log folder has a report of an earlier collection.
class RecorderAfterAnother : public testing::Test {
 protected:
  static constexpr char kReport[] = "C:\\Halyard\\logs\\c0.txt";

  static MadeMachine MakeMachine() {
    MadeMachine machine;
    machine.files[kReport] = "yesterday";
    machine.folders["C:\\Halyard\\logs\\"] = {kReport};
    return machine;
  }

  MadeMachine machine = MakeMachine();
  Recorder recorder{Recording(), machine};
};

TEST_F(RecorderAfterAnother, KeepsAReportThatCouldNotBeWrittenAsItWas) {
  recorder.BeginRun(kStorcliShow, false);
  recorder.EndRun(1);
  const Recording recording = recorder.Take();
  EXPECT_THAT(recording.commands,
              ElementsAre(RecordedCommand{"storcli.exe", "/c0 show", "", "", 1}));
  EXPECT_THAT(recording.files, ElementsAre(Pair(kReport, "yesterday")));
  EXPECT_THAT(recording.readOnly, ElementsAre(kReport));
}

TEST_F(RecorderAfterAnother, TakesAReportThatWasWrittenAgainForTheToolsAnswer) {
  recorder.BeginRun(kStorcliShow, false);
  machine.written[kReport] = 1;
  recorder.EndRun(0);
  const Recording recording = recorder.Take();
  EXPECT_THAT(recording.commands,
              ElementsAre(RecordedCommand{"storcli.exe", "/c0 show", "yesterday", ""}));
  EXPECT_THAT(recording.files, IsEmpty());
  EXPECT_THAT(recording.readOnly, IsEmpty());
}

TEST_F(MachineRecorder, ReadsTheFileThatAToolWroteTo) {
  machine.files["C:\\Halyard\\logs\\c0.txt"] = "Product Name = Test\r\n";
  RunToFile(kStorcliShow, 7);
  EXPECT_THAT(
      recorder.Take().commands,
      ElementsAre(RecordedCommand{"storcli.exe", "/c0 show", "Product Name = Test\r\n", "", 7}));
}

TEST_F(MachineRecorder, MarksAToolThatAHostEnded) {
  recorder.BeginRun("/c arp.exe -a", true);
  recorder.MarkEnded();
  recorder.BeginRun("/c ipmiutil.exe lan | findstr Param", true);
  recorder.MarkEnded();
  const std::vector<RecordedCommand> commands = recorder.Take().commands;
  ASSERT_EQ(commands.size(), 2U);
  for (const RecordedCommand& command : commands) EXPECT_EQ(command.exitCode, 1460U);
}

TEST_F(MachineRecorder, TellsAFileThatCouldNotBeWritten) {
  RunToFile(kStorcliShow, 1);
  EXPECT_THAT(recorder.Take().readOnly, ElementsAre("C:\\Halyard\\logs\\c0.txt"));
}

TEST_F(MachineRecorder, KeepsAStartThatFailed) {
  recorder.BeginRun("/c netstat.exe", true);
  recorder.FailRun(5);
  const Recording recording = recorder.Take();
  ASSERT_THAT(recording.commands, SizeIs(1));
  EXPECT_EQ(recording.commands[0].startError, 5u);
}

TEST_F(MachineRecorder, KeepsARunThatNobodyAwaited) {
  recorder.BeginRun("/c arp.exe -a", true);
  recorder.AddOutput("half of it");
  const Recording recording = recorder.Take();
  ASSERT_THAT(recording.commands, SizeIs(1));
  EXPECT_EQ(recording.commands[0].standardOutput, "half of it");
}

TEST_F(MachineRecorder, TellsStandardErrorFromWhatAFilterLetsThrough) {
  RunPiped("/c \"C:\\Halyard\\pq_tools\\ipmiutil.exe\" lan | findstr Param",
           "Param(3) 192.0.2.1\r\ncannot open driver\r\nParam(5) x\r\n", 1);
  EXPECT_THAT(
      recorder.Take().commands,
      ElementsAre(RecordedCommand{"ipmiutil.exe", "lan", "Param(3) 192.0.2.1\r\nParam(5) x\r\n",
                                  "cannot open driver\r\n"}));
}

TEST_F(MachineRecorder, KeepsAnswersThatDifferInTurn) {
  RunPiped("/c arp.exe -a", "one", 0);
  RunPiped("/c arp.exe -a", "two", 0);
  RunPiped("/c arp.exe -a", "one", 0);
  EXPECT_THAT(recorder.Take().commands, SizeIs(3));
}

TEST_F(MachineRecorder, KeepsARepeatedAnswerOnce) {
  RunPiped("/c arp.exe -a", "one", 0);
  RunPiped("/c netstat.exe", "other", 0);
  RunPiped("/c arp.exe -a", "one", 0);
  EXPECT_THAT(recorder.Take().commands, SizeIs(2));
}

TEST_F(MachineRecorder, KeepsARepeatedAnswerThatAnotherFollows) {
  for (const char* answer : {"one", "one", "two", "two"}) RunPiped("/c arp.exe -a", answer, 0);
  std::vector<std::string> kept;
  for (const RecordedCommand& command : recorder.Take().commands) {
    kept.emplace_back(command.standardOutput.Text());
  }
  EXPECT_THAT(kept, ElementsAre("one", "one", "two"));
}

TEST_F(MachineRecorder, TellsOfAFileThatCannotBeWrittenOnce) {
  RunToFile(kStorcliShow, 1);
  RunToFile(kStorcliShow, 1);
  EXPECT_THAT(recorder.Take().readOnly, SizeIs(1));
}

TEST_F(MachineRecorder, LeavesOutAProgramThatIsMissing) {
  machine.missing = {"arp.exe"};
  RunPiped("/c arp.exe -a",
           "'arp.exe' is not recognized as an internal or external command,\r\n"
           "operable program or batch file.\r\n",
           1);
  EXPECT_THAT(recorder.Take().commands, IsEmpty());
}

TEST_F(MachineRecorder, KeepsWhatTheInterpreterSaysOfAMissingProgramInAnotherLanguage) {
  machine.missing = {"arp.exe"};
  RunPiped("/c arp.exe -a", "Der Befehl \"arp.exe\" ist entweder falsch geschrieben\r\n", 1);
  EXPECT_THAT(recorder.Take().commands, SizeIs(1));
}

TEST_F(MachineRecorder, KeepsATestedFileButNoAnswerForItsCopy) {
  const std::string hosts = "C:\\Windows\\System32\\drivers\\etc\\hosts";
  machine.files[hosts] = "127.0.0.1 localhost\r\n";
  recorder.KeepTested(hosts);
  RunToFile("/c copy " + hosts + " \"C:\\Halyard\\logs\\hosts.txt\" > nul \"");
  const Recording recording = recorder.Take();
  EXPECT_THAT(recording.commands, IsEmpty());
  EXPECT_THAT(recording.files, ElementsAre(Pair(hosts, "127.0.0.1 localhost\r\n")));
}

TEST_F(MachineRecorder, KeepsTheFilesOfACopiedFolder) {
  machine.folders["C:\\Support\\Firmware"] = {"C:\\Support\\Firmware\\Controller_1_Log.txt"};
  machine.files["C:\\Support\\Firmware\\Controller_1_Log.txt"] = "log";
  RunToFile("/c \"copy \"C:\\Support\\Firmware\" \"C:\\Halyard\\logs\\Firmware\"\"");
  EXPECT_THAT(recorder.Take().files,
              ElementsAre(Pair("C:\\Support\\Firmware\\Controller_1_Log.txt", "log")));
}

TEST_F(MachineRecorder, KeepsAnOpenedFileUnlessACommandWroteIt) {
  machine.files["C:\\\\Support\\\\a.txt"] = "a";
  machine.files["C:\\\\Halyard\\\\logs\\\\c0.txt"] = "report";
  recorder.KeepOpened("C:\\\\Support\\\\a.txt");
  recorder.KeepOpened("C:\\\\Halyard\\\\logs\\\\c0.txt");
  EXPECT_THAT(recorder.Take().files, ElementsAre(Pair("C:\\Support\\a.txt", "a")));
}

class RecordedLogin : public MachineRecorder {
 protected:
  void LogIn(const std::string& password) {
    machine.files["C:\\Halyard\\logs\\amtlog.txt"] = "session of " + password + " refused\r\n";
    recorder.AddTyped("192.0.2.40 deskadmin " + password + "\n");
    RunToFile("/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.40 deskadmin " + password +
              ">\"C:\\Halyard\\logs\\amtlog.txt\"\"");
  }
};

TEST_F(RecordedLogin, HasAPlaceholderInConsoleArgumentsAndOutput) {
  LogIn("Lantern-52");
  const Recording recording = recorder.Take();
  EXPECT_EQ(recording.console, "192.0.2.40 deskadmin ***\n");
  EXPECT_THAT(recording.commands,
              ElementsAre(RecordedCommand{"amt_log.exe", "192.0.2.40 deskadmin ***",
                                          "session of *** refused\r\n", ""}));
}

TEST_F(RecordedLogin, HidesAPasswordThatLooksLikeARedirection) {
  LogIn("a>b\"|c");
  const Recording recording = recorder.Take();
  EXPECT_EQ(recording.console, "192.0.2.40 deskadmin ***\n");
  ASSERT_THAT(recording.commands, SizeIs(1));
  EXPECT_EQ(recording.commands[0].arguments, "192.0.2.40 deskadmin ***");
  EXPECT_EQ(recording.commands[0].standardOutput, "session of *** refused\r\n");
}

TEST_F(RecordedLogin, KeepsAddressAndUserWhateverThePasswordIs) {
  for (const char* password : {"1", "***", "*", "deskadmin", "192.0.2.40", "a|b", "\"", "^&%"}) {
    LogIn(password);
    const Recording recording = recorder.Take();
    EXPECT_EQ(recording.console, "192.0.2.40 deskadmin ***\n") << password;
    ASSERT_THAT(recording.commands, SizeIs(1)) << password;
    EXPECT_EQ(recording.commands[0].arguments, "192.0.2.40 deskadmin ***") << password;
  }
}

TEST_F(RecordedLogin, LeavesTextsAloneThatAMerePasswordStandsIn) {
  const std::string log = "1 deskadmin 192.0.2.41 1999-11-11 event 1 of 1\r\n";
  machine.files["C:\\Halyard\\logs\\amtlog.txt"] = log;
  for (const char* password : {"1", "event", "deskadmin"}) {
    recorder.AddTyped(std::string("192.0.2.40 deskadmin ") + password + "\n");
    RunToFile(std::string("/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.40 deskadmin ") +
              password + ">\"C:\\Halyard\\logs\\amtlog.txt\"\"");
    EXPECT_EQ(recorder.Take().commands.at(0).standardOutput, log) << password;
  }
}

TEST_F(RecordedLogin, HidesLinesThatWereRefusedButKeepsTheirLength) {
  recorder.AddTyped("deskadmin Lantern-52\r\n");
  LogIn("Lantern-52");
  EXPECT_EQ(recorder.Take().console, "********* **********\r\n192.0.2.40 deskadmin ***\n");
}

TEST_F(RecordedLogin, KeepsAnEmptyLine) {
  recorder.AddTyped("\n");
  EXPECT_EQ(recorder.Take().console, "\n");
}

}  // namespace
}  // namespace host
