#include "host/recorded/recorded_machine.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

#include "frame/bound/machine_in_use.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr char kLogs[] = "C:\\Halyard\\logs\\";

/// Lists what modules do, one text per call, and what tools show on the console.
class Listener final : public MachineObserver {
 public:
  std::vector<std::string> calls;
  std::string toolConsole;

  void OnProcess(const std::string& application, const std::string& commandLine,
                 bool inheritHandles, bool pipe) override {
    calls.push_back("process " + application + " " + commandLine +
                    (inheritHandles ? " inherits" : "") + (pipe ? " pipe" : ""));
  }
  void OnProcessEnd(std::uint32_t /*exitCode*/) override { calls.push_back("end"); }
  void OnSystem(const std::string& command) override { calls.push_back("system " + command); }
  void OnOpen(const std::string& path, const std::string& mode) override {
    calls.push_back("open " + path + " " + mode);
  }
  void OnConsole(std::string_view text) override {
    calls.push_back("console " + std::string(text));
  }
  void OnToolConsole(std::string_view text) override { toolConsole += text; }
  void OnToolEnded(unsigned seconds) override {
    calls.push_back("ended after " + std::to_string(seconds));
  }
  void OnToolRefused(unsigned seconds) override {
    calls.push_back("refused after " + std::to_string(seconds));
  }
};

RecordedCommand Answer(const std::string& tool, const std::string& arguments,
                       const std::string& output) {
  RecordedCommand command;
  command.tool = tool;
  command.arguments = arguments;
  command.standardOutput = output;
  return command;
}

/// A machine with a listener, and short ways to run things on it.
class Subject {
 public:
  explicit Subject(Recording recording = {}) : machine(std::move(recording), &listener) {}

  /// Starts and awaits the interpreter; its exit code. 0xBAD when it cannot be started.
  std::uint32_t Run(const std::string& commandLine) {
    const auto process = machine.StartInterpreter(commandLine, false, nullptr);
    std::uint32_t exitCode = 0xBAD;
    if (!process) return exitCode;
    process.object->Wait();
    process.object->ReadExitCode(exitCode);
    return exitCode;
  }

  /// What the interpreter writes into a pipe.
  std::string RunPiped(const std::string& commandLine) {
    std::string all;
    const auto pipe = machine.CreatePipe(commandLine);
    const auto process = machine.StartInterpreter(commandLine, true, pipe.object.get());
    pipe.object->CloseWriteEnd();
    std::array<char, 7> chunk{};
    std::size_t count = 0;
    while (pipe.object->Read(chunk.data(), chunk.size(), count)) all.append(chunk.data(), count);
    return all;
  }

  std::string File(const std::string& path) {
    const auto files = machine.Files();
    const auto file = files.find(path);
    return std::string(file == files.end() ? "(no file)" : file->second.Text());
  }

  Listener listener;
  RecordedMachine machine;
};

Recording WithCommands(std::vector<RecordedCommand> commands) {
  Recording recording;
  recording.commands = std::move(commands);
  return recording;
}

// --- answers

TEST(RecordedMachine, AnswersWithWhatWasRecorded) {
  Subject subject(WithCommands({Answer("arp.exe", "-a", "table\r\n")}));
  EXPECT_EQ(subject.RunPiped("/c arp.exe -a"), "table\r\n");
}

TEST(RecordedMachine, ComparesToolsWithoutCaseFolderAndExtension) {
  Subject subject(WithCommands({Answer("StorCLI", "/c0 show", "one")}));
  EXPECT_EQ(subject.RunPiped(R"(/c "C:\Halyard\utilities\lsi\storcli.exe" /c0 show)"), "one");
  EXPECT_EQ(subject.RunPiped("/c STORCLI.EXE /c0 show"), "one");
}

TEST(RecordedMachine, ComparesArgumentsWithCase) {
  Subject subject(WithCommands({Answer("tool", "-I", "one")}));
  EXPECT_THAT(subject.RunPiped("/c tool -i"), HasSubstr("is not recognized"));
}

TEST(RecordedMachine, LeavesBlanksAtTheEndsOfArgumentsAside) {
  Subject subject(WithCommands({Answer("tool", " -a ", "one")}));
  EXPECT_EQ(subject.RunPiped("/c tool   -a  "), "one");
}

TEST(RecordedMachine, AnswersInTurnAndStaysWithTheLastAnswer) {
  Subject subject(WithCommands(
      {Answer("tool", "", "one"), Answer("other", "", "o"), Answer("TOOL.exe", "", "two")}));
  EXPECT_EQ(subject.RunPiped("/c tool"), "one");
  EXPECT_EQ(subject.RunPiped("/c tool"), "two");
  EXPECT_EQ(subject.RunPiped("/c tool"), "two");
}

TEST(RecordedMachine, GivesTheExitCode) {
  RecordedCommand command = Answer("check", "bmc", "");
  command.exitCode = 4294967295;
  Subject subject(WithCommands({command}));
  EXPECT_EQ(subject.Run("/c check bmc"), 4294967295u);
}

TEST(RecordedMachine, GivesStandardOutputThenStandardErrorThroughAPipe) {
  RecordedCommand command = Answer("tool", "", "output 1234");
  command.standardError = "error";
  Subject subject(WithCommands({command}));
  EXPECT_EQ(subject.RunPiped("/c tool"), "output 1234error");
}

TEST(RecordedMachine, GivesChunksAsLargeAsAskedFor) {
  RecordedCommand command = Answer("tool", "", "abc");
  command.standardError = "def";
  Subject subject(WithCommands({command}));
  const auto pipe = subject.machine.CreatePipe("/c tool");
  const auto process = subject.machine.StartInterpreter("/c tool", true, pipe.object.get());
  pipe.object->CloseWriteEnd();
  std::array<char, 5> chunk{};
  std::size_t count = 0;
  ASSERT_TRUE(pipe.object->Read(chunk.data(), chunk.size(), count));
  EXPECT_EQ(std::string(chunk.data(), count), "abcde");
  ASSERT_TRUE(pipe.object->Read(chunk.data(), chunk.size(), count));
  EXPECT_EQ(std::string(chunk.data(), count), "f");
  EXPECT_FALSE(pipe.object->Read(chunk.data(), chunk.size(), count));
}

TEST(RecordedMachine, ShowsBothOutputsOnTheConsoleWithoutAPipe) {
  RecordedCommand command = Answer("tool", "", "output ");
  command.standardError = "error";
  Subject subject(WithCommands({command}));
  subject.Run("/c tool");
  EXPECT_EQ(subject.listener.toolConsole, "output error");
}

// --- a program that is not there

TEST(RecordedMachine, SaysThatAProgramIsMissing) {
  Subject subject;
  EXPECT_EQ(subject.RunPiped("/c arp.exe -a"),
            "'arp.exe' is not recognized as an internal or external command,\r\n"
            "operable program or batch file.\r\n");
  EXPECT_EQ(subject.Run("/c arp.exe -a"), 1u);
}

TEST(RecordedMachine, NamesAMissingProgramWithTheQuotesThatStillStand) {
  Subject subject;
  EXPECT_THAT(subject.RunPiped(R"(/c ""C:\a b\t.exe" > "C:\Halyard\logs\t.txt"")"),
              testing::StartsWith(R"('"C:\a b\t.exe"' is not)"));
  EXPECT_THAT(subject.RunPiped(R"(/c "C:\a b\t.exe" amt)"),
              testing::StartsWith(R"('C:\a' is not)"));
}

TEST(RecordedMachine, CreatesAnEmptyFileForAMissingProgram) {
  Subject subject;
  EXPECT_EQ(subject.Run(R"(/c storcli.exe show > "C:\Halyard\logs\ctrlcount.txt")"), 1u);
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\ctrlcount.txt)"), "");
  EXPECT_THAT(subject.listener.toolConsole, HasSubstr("'storcli.exe' is not recognized"));
}

TEST(RecordedMachine, KeepsTheQuotesOfAKnownProgramWithABlank) {
  Recording recording = WithCommands({Answer("t.exe", "amt", "there")});
  recording.hostExecutable = R"(C:\Program Files\h.exe)";
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.RunPiped(R"(/c "C:\Program Files\t.exe" amt)"), "there");
}

// --- failures of the system

TEST(RecordedMachine, FailsToStartWithTheRecordedError) {
  RecordedCommand command = Answer("arp.exe", "-a", "");
  command.startError = 5;
  Subject subject(WithCommands({command}));
  const auto process = subject.machine.StartInterpreter("/c arp.exe -a", true, nullptr);
  EXPECT_FALSE(process);
  EXPECT_EQ(process.error, 5u);
}

TEST(RecordedMachine, ReportsAStartBeforeItFails) {
  RecordedCommand command = Answer("arp.exe", "-a", "");
  command.startError = 5;
  Subject subject(WithCommands({command}));
  subject.machine.StartInterpreter("/c arp.exe -a", true, nullptr);
  EXPECT_THAT(subject.listener.calls,
              ElementsAre("process C:\\Windows\\system32\\cmd.exe /c arp.exe -a inherits"));
}

TEST(RecordedMachine, UsesUpAnAnswerThatFailedToStart) {
  RecordedCommand failing = Answer("tool", "", "");
  failing.startError = 2;
  Subject subject(WithCommands({failing, Answer("tool", "", "now")}));
  EXPECT_EQ(subject.Run("/c tool"), 0xBADu);
  EXPECT_EQ(subject.RunPiped("/c tool"), "now");
}

TEST(RecordedMachine, FailsToCreateAPipeWithTheRecordedError) {
  RecordedCommand command = Answer("tool", "", "");
  command.pipeError = 1450;
  Subject subject(WithCommands({command}));
  const auto pipe = subject.machine.CreatePipe("/c tool");
  EXPECT_FALSE(pipe);
  EXPECT_EQ(pipe.error, 1450u);
  EXPECT_THAT(subject.listener.calls, IsEmpty());
}

TEST(RecordedMachine, UsesUpAnAnswerWhosePipeFailed) {
  RecordedCommand failing = Answer("tool", "", "");
  failing.pipeError = 8;
  Subject subject(WithCommands({failing, Answer("tool", "", "now")}));
  EXPECT_FALSE(subject.machine.CreatePipe("/c tool"));
  EXPECT_EQ(subject.RunPiped("/c tool"), "now");
}

TEST(RecordedMachine, UsesUpNoAnswerByCreatingAPipe) {
  Subject subject(WithCommands({Answer("tool", "", "one"), Answer("tool", "", "two")}));
  EXPECT_EQ(subject.RunPiped("/c tool"), "one");
  EXPECT_EQ(subject.RunPiped("/c tool"), "two");
}

TEST(RecordedMachine, LeavesTheVariableWhenTheExitCodeCannotBeRead) {
  RecordedCommand command = Answer("tool", "", "");
  command.exitCode = 3;
  command.exitCodeError = 6;
  Subject subject(WithCommands({command}));
  const auto process = subject.machine.StartInterpreter("/c tool", false, nullptr);
  std::uint32_t exitCode = 77;
  EXPECT_EQ(process.object->ReadExitCode(exitCode), 6u);
  EXPECT_EQ(exitCode, 77u);
}

TEST(RecordedMachine, FindsTheErrorOfAnyCommandOfAPipeline) {
  RecordedCommand command = Answer("tool", "lan", "");
  command.startError = 5;
  Subject subject(WithCommands({command}));
  EXPECT_FALSE(subject.machine.StartInterpreter("/c tool lan | findstr Param", true, nullptr));
}

TEST(RecordedMachine, FailsToStartBeforeItMeetsAReadOnlyFile) {
  RecordedCommand command = Answer("tool", "", "");
  command.startError = 5;
  Recording recording = WithCommands({command});
  recording.readOnly = {R"(C:\Halyard\logs\t.txt)"};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.machine.StartInterpreter(R"(/c tool > "C:\Halyard\logs\t.txt")", false, nullptr)
                .error,
            5u);
  EXPECT_EQ(subject.listener.toolConsole, "");
}

// --- redirection

TEST(RecordedMachine, WritesStandardOutputToAFile) {
  Subject subject(WithCommands({Answer("route", "print", "routes\r\n")}));
  EXPECT_EQ(subject.Run(R"(/c route print >"C:\Halyard\logs\route.txt")"), 0u);
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\route.txt)"), "routes\r\n");
  EXPECT_EQ(subject.listener.toolConsole, "");
}

TEST(RecordedMachine, ReplacesAFileThatIsThere) {
  Subject subject(WithCommands({Answer("t", "1", "long text"), Answer("t", "2", "x")}));
  subject.Run(R"(/c t 1 >"C:\Halyard\logs\T.txt")");
  subject.Run(R"(/c t 2 >"c:\halyard\logs\t.TXT")");
  EXPECT_THAT(subject.machine.Files(), ElementsAre(Pair(R"(C:\Halyard\logs\T.txt)", "x")));
}

TEST(RecordedMachine, AppendsWithTwoSigns) {
  Subject subject(WithCommands({Answer("t", "1", "one"), Answer("t", "2", "two")}));
  subject.Run(R"(/c t 1 >"C:\Halyard\logs\t.txt")");
  subject.Run(R"(/c t 2 >>"C:\Halyard\logs\t.txt")");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\t.txt)"), "onetwo");
}

TEST(RecordedMachine, ShowsStandardErrorOnTheConsoleWhenOnlyOutputGoesToAFile) {
  RecordedCommand command = Answer("tool", "", "output");
  command.standardError = "error";
  Subject subject(WithCommands({command}));
  subject.Run(R"(/c tool >"C:\Halyard\logs\t.txt")");
  EXPECT_EQ(subject.listener.toolConsole, "error");
}

TEST(RecordedMachine, WritesStandardErrorToItsOwnFile) {
  RecordedCommand command = Answer("tool", "", "output");
  command.standardError = "error";
  Subject subject(WithCommands({command}));
  subject.Run(R"(/c tool >"C:\Halyard\logs\o.txt" 2>"C:\Halyard\logs\e.txt")");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\o.txt)"), "output");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\e.txt)"), "error");
}

TEST(RecordedMachine, SendsAnotherHandlesRedirectionNothing) {
  Subject subject(WithCommands({Answer("amt_log", "h u", "events")}));
  subject.Run(R"(/c amt_log h u 5>"C:\Halyard\logs\amtlog.txt")");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\amtlog.txt)"), "");
  EXPECT_EQ(subject.listener.toolConsole, "events");
}

TEST(RecordedMachine, DropsWhatGoesToNul) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  EXPECT_EQ(subject.Run("/c tool > NUL"), 0u);
  EXPECT_EQ(subject.listener.toolConsole, "");
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
}

TEST(RecordedMachine, PutsARelativeFileIntoTheWorkingFolder) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  subject.Run("/c tool > logir.log");
  EXPECT_EQ(subject.File(R"(C:\Halyard\work\logir.log)"), "output");
}

TEST(RecordedMachine, DoesNotRunAToolThatWritesToAReadOnlyPath) {
  RecordedCommand command = Answer("tool", "", "new");
  command.standardError = "noise";
  Recording recording = WithCommands({command});
  recording.files = {{R"(C:\Halyard\logs\t.txt)", "old"}};
  recording.readOnly = {R"(c:\halyard\LOGS\t.txt)"};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\Halyard\logs\t.txt")"), 1u);
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\t.txt)"), "old");
  EXPECT_EQ(subject.listener.toolConsole, "Access is denied.\r\n");
}

TEST(RecordedMachine, CreatesNoReadOnlyFile) {
  Recording recording = WithCommands({Answer("tool", "", "new")});
  recording.readOnly = {R"(C:\Halyard\logs\t.txt)"};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\Halyard\logs\t.txt")"), 1u);
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
}

TEST(RecordedMachine, UsesUpAnAnswerWhoseFileIsReadOnly) {
  Recording recording = WithCommands({Answer("t", "", "one"), Answer("t", "", "two")});
  recording.readOnly = {R"(C:\Halyard\logs\t.txt)"};
  Subject subject(std::move(recording));
  subject.Run(R"(/c t >"C:\Halyard\logs\t.txt")");
  EXPECT_EQ(subject.RunPiped("/c t"), "two");
}

TEST(RecordedMachine, WritesNothingBelowAReadOnlyFolder) {
  Recording recording = WithCommands({Answer("tool", "", "new")});
  recording.readOnly = {kLogs};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\Halyard\logs\t.txt")"), 1u);
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
}

TEST(RecordedMachine, DoesNotRunAToolThatWritesIntoNoFolder) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\none\t.txt")"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "The system cannot find the path specified.\r\n");
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
}

TEST(RecordedMachine, CanLackItsLogFolder) {
  Recording recording = WithCommands({Answer("tool", "", "output")});
  recording.hasLogFolder = false;
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\Halyard\logs\t.txt")"), 1u);
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\Halyard\logs)"));
}

TEST(RecordedMachine, DoesNotWriteOverAFolder) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  EXPECT_EQ(subject.Run(R"(/c tool >"C:\Halyard\logs")"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "Access is denied.\r\n");
}

TEST(RecordedMachine, RefusesALineThatNoInterpreterReads) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  EXPECT_EQ(subject.Run("/c tool >"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "The syntax of the command is incorrect.\r\n");
}

TEST(RecordedMachine, DoesNothingOnAnEmptyLine) {
  Subject subject;
  EXPECT_EQ(subject.Run("/c "), 0u);
}

// --- pipes between commands

TEST(RecordedMachine, FiltersLinesThroughFindstr) {
  Subject subject(WithCommands({Answer("ipmiutil", "lan",
                                       "Lan Param(3) IP\nheader\r\nLan Param(4)\r\n"
                                       "LAN PARAM(3)\r\nLan Param(13)\r\nother (3)")}));
  EXPECT_EQ(subject.RunPiped("/c ipmiutil lan | findstr Param | findstr /c:(3) /c:(13)"),
            "Lan Param(3) IP\r\nLan Param(13)\r\n");
}

TEST(RecordedMachine, LetsStandardErrorPassByAFilter) {
  RecordedCommand command = Answer("tool", "", "yes\nno\n");
  command.standardError = "Param error\n";
  Subject subject(WithCommands({command}));
  EXPECT_EQ(subject.RunPiped("/c tool | findstr yes"), "yes\r\nParam error\n");
}

TEST(RecordedMachine, SendsTheWordsOfAMissingProgramPastAFilter) {
  Subject subject;
  EXPECT_THAT(subject.RunPiped("/c tool lan | findstr Param"),
              testing::StartsWith("'tool' is not recognized"));
}

TEST(RecordedMachine, EndsAPipelineWithTheLastExitCode) {
  RecordedCommand command = Answer("tool", "", "yes\n");
  command.exitCode = 9;
  Subject subject(WithCommands({command}));
  EXPECT_EQ(subject.Run("/c tool | findstr yes"), 0u);
  EXPECT_EQ(subject.Run("/c tool | findstr no"), 1u);
}

TEST(RecordedMachine, GivesAFilterNothingWhenOutputWentToAFile) {
  Subject subject(WithCommands({Answer("tool", "", "yes\n")}));
  EXPECT_EQ(subject.RunPiped(R"(/c tool > "C:\Halyard\logs\t.txt" | findstr yes)"), "");
}

TEST(RecordedMachine, ReadsAFilterFromAFile) {
  Recording recording;
  recording.files = {{R"(C:\in.txt)", "yes\nno\n"}};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.RunPiped(R"(/c findstr yes < C:\in.txt)"), "yes\r\n");
  EXPECT_EQ(subject.RunPiped(R"(/c findstr yes < C:\none.txt)"),
            "The system cannot find the file specified.\r\n");
}

TEST(RecordedMachine, RefusesAFilterWithoutTexts) {
  Subject subject;
  EXPECT_EQ(subject.RunPiped("/c findstr"), "FINDSTR: Bad command line\r\n");
  EXPECT_EQ(subject.Run("/c findstr"), 2u);
}

// --- copy

Recording WithFiles(std::map<std::string, Bytes> files) {
  Recording recording;
  recording.files = std::move(files);
  return recording;
}

TEST(RecordedMachine, CopiesAFile) {
  Subject subject(WithFiles({{R"(C:\Windows\System32\drivers\etc\hosts)", "127.0.0.1"}}));
  const std::string line =
      R"(/c copy C:\WINDOWS\system32\drivers\etc\hosts "C:\Halyard\logs\hosts.txt" > nul ")";
  EXPECT_EQ(subject.Run(line), 0u);
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\hosts.txt)"), "127.0.0.1");
  EXPECT_EQ(subject.listener.toolConsole, "");
}

TEST(RecordedMachine, SaysHowManyFilesItCopied) {
  Subject subject(WithFiles({{R"(C:\a.txt)", "a"}}));
  EXPECT_EQ(subject.RunPiped(R"(/c copy C:\a.txt C:\Halyard\logs\)"),
            "        1 file(s) copied.\r\n");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\a.txt)"), "a");
}

TEST(RecordedMachine, CopiesAFilesBytesWhole) {
  Subject subject(WithFiles({{R"(C:\a.txt)", std::string("a\0\x1A\r\nb", 6)}}));
  subject.Run(R"(/c copy C:\a.txt C:\Halyard\logs)");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\a.txt)"), std::string("a\0\x1A\r\nb", 6));
}

TEST(RecordedMachine, CopiesIntoTheWorkingFolderWithoutATarget) {
  Subject subject(WithFiles({{R"(C:\a.txt)", "a"}}));
  EXPECT_EQ(subject.Run(R"(/c copy C:\a.txt)"), 0u);
  EXPECT_EQ(subject.File(R"(C:\Halyard\work\a.txt)"), "a");
}

TEST(RecordedMachine, CopiesAFoldersFilesIntoAFolder) {
  Subject subject(WithFiles({{R"(c:\Support\Firmware\a.txt)", "a"},
                             {R"(c:\Support\Firmware\b.txt)", "b"},
                             {R"(c:\Support\Firmware\deeper\c.txt)", "c"},
                             {R"(c:\Support\other.txt)", "o"}}));
  EXPECT_EQ(subject.Run(R"(/c "md "C:\Halyard\logs\Firmware"")"), 0u);
  EXPECT_EQ(subject.RunPiped(R"(/c "copy "c:\Support\Firmware\" "C:\Halyard\logs\Firmware"")"),
            "c:\\Support\\Firmware\\a.txt\r\nc:\\Support\\Firmware\\b.txt\r\n"
            "        2 file(s) copied.\r\n");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\Firmware\a.txt)"), "a");
  EXPECT_EQ(subject.File(R"(C:\Halyard\logs\Firmware\b.txt)"), "b");
  EXPECT_EQ(subject.machine.Files().size(), 6u);
}

TEST(RecordedMachine, FailsToCopyWhatIsNotThere) {
  Subject subject;
  EXPECT_EQ(subject.Run(R"(/c copy C:\a.txt C:\Halyard\logs\a.txt)"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "The system cannot find the file specified.\r\n");
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
}

TEST(RecordedMachine, FailsToCopyAFolderIntoNone) {
  Subject subject(WithFiles({{R"(C:\s\a.txt)", "a"}}));
  EXPECT_EQ(subject.Run(R"(/c copy C:\s\ C:\none)"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "The system cannot find the path specified.\r\n");
}

TEST(RecordedMachine, FailsToCopyToAReadOnlyPath) {
  Recording recording = WithFiles({{R"(C:\a.txt)", "a"}});
  recording.readOnly = {R"(C:\Halyard\logs\a.txt)"};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.RunPiped(R"(/c copy C:\a.txt C:\Halyard\logs\a.txt)"),
            "        0 file(s) copied.\r\nAccess is denied.\r\n");
  EXPECT_EQ(subject.machine.Files().size(), 1u);
}

TEST(RecordedMachine, FailsToCopyAFileOntoItself) {
  Subject subject(WithFiles({{R"(C:\a.txt)", "a"}}));
  EXPECT_EQ(subject.RunPiped(R"(/c copy C:\a.txt c:\A.TXT)"),
            "        0 file(s) copied.\r\nThe file cannot be copied onto itself.\r\n");
  EXPECT_EQ(subject.File(R"(C:\a.txt)"), "a");
}

TEST(RecordedMachine, RefusesACopyWithoutASource) {
  Subject subject;
  EXPECT_EQ(subject.Run("/c copy"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "The syntax of the command is incorrect.\r\n");
}

TEST(RecordedMachine, FailsToStartACopyWithItsRecordedError) {
  RecordedCommand command = Answer("copy", R"("c:\Support\Firmware\" "C:\Halyard\logs\F")", "");
  command.startError = 8;
  Subject subject(WithCommands({command}));
  const auto process = subject.machine.StartInterpreter(
      R"(/c "copy "c:\Support\Firmware\" "C:\Halyard\logs\F"")", false, nullptr);
  EXPECT_EQ(process.error, 8u);
}

TEST(RecordedMachine, DoesOwnCommandsOnlyUnderTheirBareNames) {
  Subject subject;
  EXPECT_THAT(subject.RunPiped(R"(/c C:\tools\md.exe C:\x)"), HasSubstr("is not recognized"));
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\x)"));
}

// --- md

TEST(RecordedMachine, MakesAFolderAndThoseBetween) {
  Subject subject;
  EXPECT_EQ(subject.Run(R"(/c md "C:\new\deep er")"), 0u);
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\new)"));
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\NEW\deep er)"));
}

TEST(RecordedMachine, FailsToMakeAFolderThatIsThere) {
  Subject subject;
  EXPECT_EQ(subject.Run(R"(/c md C:\Halyard\logs)"), 1u);
  EXPECT_EQ(subject.listener.toolConsole,
            "A subdirectory or file C:\\Halyard\\logs already exists.\r\n");
}

TEST(RecordedMachine, FailsToMakeAFolderWhereAFileIs) {
  Subject subject(WithFiles({{R"(C:\a)", "a"}}));
  EXPECT_EQ(subject.Run(R"(/c md C:\a)"), 1u);
  EXPECT_EQ(subject.Run(R"(/c md C:\a\b)"), 1u);
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\a\b)"));
}

TEST(RecordedMachine, FailsToMakeAReadOnlyFolder) {
  Recording recording;
  recording.readOnly = {R"(C:\Halyard\logs\Firmware)"};
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c md C:\Halyard\logs\Firmware)"), 1u);
  EXPECT_EQ(subject.listener.toolConsole, "Access is denied.\r\n");
}

TEST(RecordedMachine, WritesIntoAFolderThatMdMade) {
  Subject subject(WithCommands({Answer("tool", "", "output")}));
  subject.Run(R"(/c md C:\new)");
  EXPECT_EQ(subject.Run(R"(/c tool > C:\new\t.txt)"), 0u);
  EXPECT_EQ(subject.File(R"(C:\new\t.txt)"), "output");
}

// --- files and paths

TEST(RecordedMachine, FindsFilesAndTheFoldersAboveThem) {
  Subject subject(WithFiles({{R"(C:\Windows\System32\drivers\etc\hosts)", ""}}));
  EXPECT_TRUE(subject.machine.PathExists(R"(c:\windows\system32\DRIVERS\etc\hosts)"));
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\Windows\System32)"));
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\Windows\System32\)"));
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\Windows\System)"));
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\Windows\System32\drivers\etc\hosts.ics)"));
  EXPECT_FALSE(subject.machine.PathExists(R"(C:\Windows\System32\drivers\etc\hosts\)"));
  EXPECT_FALSE(subject.machine.PathExists(""));
}

TEST(RecordedMachine, HasTheHostsTheLogAndTheWorkingFolder) {
  Subject subject;
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\Halyard)"));
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\Halyard\logs)"));
  EXPECT_TRUE(subject.machine.PathExists(R"(C:\Halyard\work)"));
}

TEST(RecordedMachine, OpensAFileByDoubledBackslashes) {
  Subject subject(WithFiles({{R"(C:\Halyard\logs\t.txt)", "a\r\n"}}));
  const auto file = subject.machine.OpenText(R"(C:\\halyard\\\\logs\\T.txt)");
  ASSERT_NE(file, nullptr);
  std::array<char, 8> line{};
  ASSERT_TRUE(file->ReadLine(line.data(), line.size()));
  EXPECT_STREQ(line.data(), "a\n");
}

TEST(RecordedMachine, TakesNoForwardSlashForABackslash) {
  Subject subject(WithFiles({{R"(C:\logs\t.txt)", ""}}));
  EXPECT_EQ(subject.machine.OpenText("C:/logs/t.txt"), nullptr);
}

TEST(RecordedMachine, FollowsDotsInAPath) {
  Subject subject(WithFiles({{R"(C:\logs\t.txt)", ""}}));
  EXPECT_NE(subject.machine.OpenText(R"(C:\logs\.\deep\..\t.txt)"), nullptr);
  EXPECT_NE(subject.machine.OpenText(R"(..\..\logs\t.txt)"), nullptr);
}

TEST(RecordedMachine, FindsFilesOnAServer) {
  Recording recording = WithCommands({Answer("tool", "", "output")});
  recording.logFolder = R"(\\server\logs\)";
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.Run(R"(/c tool >"\\server\logs\t.txt")"), 0u);
  EXPECT_NE(subject.machine.OpenText(R"(\\\\server\\logs\\t.txt)"), nullptr);
}

TEST(RecordedMachine, FindsAPathWithoutADriveOnTheWorkingFoldersDrive) {
  Subject subject(WithFiles({{R"(C:\a.txt)", ""}}));
  EXPECT_TRUE(subject.machine.PathExists(R"(\a.txt)"));
}

TEST(RecordedMachine, OpensNoFolder) {
  Subject subject(WithFiles({{R"(C:\logs\t.txt)", ""}}));
  EXPECT_EQ(subject.machine.OpenText(R"(C:\logs)"), nullptr);
  EXPECT_EQ(subject.machine.OpenText(""), nullptr);
}

TEST(RecordedMachine, ReportsAnOpenThatFails) {
  Subject subject;
  subject.machine.OpenText(R"(C:\\none.txt)");
  EXPECT_THAT(subject.listener.calls, ElementsAre(R"(open C:\\none.txt r)"));
}

TEST(RecordedMachine, LetsAnOpenFileKeepItsTextWhenItIsReplaced) {
  Subject subject(WithCommands({Answer("t", "1", "one"), Answer("t", "2", "two")}));
  subject.Run("/c t 1 > x");
  const auto file = subject.machine.OpenText("x");
  subject.Run("/c t 2 > x");
  std::array<char, 8> line{};
  ASSERT_TRUE(file->ReadLine(line.data(), line.size()));
  EXPECT_STREQ(line.data(), "one");
}

// --- system()

TEST(RecordedMachine, RunsSystemThroughTheInterpreter) {
  Subject subject(WithCommands({Answer("sas2ircu", "0 logir upload", "log")}));
  subject.machine.RunSystem(
      R"("C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)");
  EXPECT_EQ(subject.File(R"(C:\Halyard\work\logir.log)"), "log");
  EXPECT_THAT(
      subject.listener.calls,
      ElementsAre(R"(system "C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)"));
}

TEST(RecordedMachine, ShowsOnTheConsoleWhatSystemLeaves) {
  Subject subject;
  subject.machine.RunSystem("tool > x");
  EXPECT_THAT(subject.listener.toolConsole, HasSubstr("'tool' is not recognized"));
}

TEST(RecordedMachine, RunsNothingWhenSystemCannotStart) {
  RecordedCommand command = Answer("tool", "", "output");
  command.startError = 8;
  Subject subject(WithCommands({command, Answer("tool", "", "later")}));
  subject.machine.RunSystem("tool > x");
  EXPECT_THAT(subject.machine.Files(), IsEmpty());
  subject.machine.RunSystem("tool > x");
  EXPECT_EQ(subject.File(R"(C:\Halyard\work\x)"), "later");
}

// --- console, language, host

std::string ReadConsole(RecordedMachine& machine, std::size_t size,
                        pq::ConsoleLine expected = pq::ConsoleLine::kRead) {
  std::vector<char> buffer(size, '#');
  EXPECT_EQ(machine.ReadConsoleLine(buffer.data(), size), expected);
  return buffer.data();
}

TEST(RecordedMachine, ReadsTheConsoleLineByLine) {
  Recording recording;
  recording.console = "one two\nthree\r\n\nlast";
  Subject subject(std::move(recording));
  EXPECT_EQ(ReadConsole(subject.machine, 32), "one two");
  EXPECT_EQ(ReadConsole(subject.machine, 32), "three");
  EXPECT_EQ(ReadConsole(subject.machine, 32), "");
  EXPECT_EQ(ReadConsole(subject.machine, 32), "last");
}

TEST(RecordedMachine, ReadsEmptyLinesBehindTheEndOfTheConsole) {
  Subject subject;
  EXPECT_EQ(ReadConsole(subject.machine, 32), "");
  EXPECT_EQ(ReadConsole(subject.machine, 32), "");
}

TEST(RecordedMachine, DropsTheRestOfAConsoleLineThatDoesNotFit) {
  Recording recording;
  recording.console = "12345\n1234\n";
  Subject subject(std::move(recording));
  EXPECT_EQ(ReadConsole(subject.machine, 5, pq::ConsoleLine::kTooLong), "1234");
  EXPECT_EQ(ReadConsole(subject.machine, 5), "1234");
}

TEST(RecordedMachine, ShowsWhatModulesWriteToTheConsole) {
  Subject subject;
  subject.machine.WriteConsole("Enter: ");
  EXPECT_THAT(subject.listener.calls, ElementsAre("console Enter: "));
}

TEST(RecordedMachine, AnswersWithLanguageAndHost) {
  Recording recording;
  recording.languageId = 1031;
  recording.hostExecutable = R"(D:\h\h.exe)";
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.machine.SystemLanguage(), 1031u);
  EXPECT_EQ(subject.machine.HostExecutable(), R"(D:\h\h.exe)");
}

TEST(RecordedMachine, CutsTheHostsPathAt259Characters) {
  Recording recording;
  recording.hostExecutable = "C:\\" + std::string(300, 'h');
  Subject subject(std::move(recording));
  EXPECT_EQ(subject.machine.HostExecutable().size(), 259u);
}

// --- what stays open

TEST(RecordedMachine, CountsWhatIsOpen) {
  Subject subject(WithFiles({{R"(C:\a.txt)", ""}}));
  {
    const auto pipe = subject.machine.CreatePipe("/c tool");
    const auto process = subject.machine.StartInterpreter("/c tool", true, pipe.object.get());
    const auto file = subject.machine.OpenText(R"(C:\a.txt)");
    EXPECT_EQ(subject.machine.OpenHandles(), 3);
  }
  EXPECT_EQ(subject.machine.OpenHandles(), 0);
}

TEST(RecordedMachine, CountsAProcessThatWasLetGoAsOpen) {
  Subject subject;
  auto process = subject.machine.StartInterpreter("/c tool", true, nullptr);
  (void)process.object.release();
  EXPECT_EQ(subject.machine.OpenHandles(), 1);
}

TEST(RecordedMachine, CountsAFileThatWasLetGoAsOpen) {
  Subject subject(WithFiles({{R"(C:\a.txt)", ""}}));
  auto file = subject.machine.OpenText(R"(C:\a.txt)");
  (void)file.release();
  EXPECT_EQ(subject.machine.OpenHandles(), 1);
}

TEST(RecordedMachine, ReportsTheEndOfAProcessWhenItIsAwaited) {
  Subject subject;
  subject.Run("/c tool");
  EXPECT_THAT(subject.listener.calls,
              ElementsAre("process C:\\Windows\\system32\\cmd.exe /c tool", "end"));
}

TEST(RecordedMachine, WorksWithoutAnObserver) {
  RecordedMachine machine(WithCommands({Answer("tool", "", "output")}));
  const auto process = machine.StartInterpreter("/c tool", false, nullptr);
  process.object->Wait();
  machine.RunSystem("tool");
  machine.WriteConsole("text");
  EXPECT_EQ(machine.OpenText("x"), nullptr);
}

// --- ends of the process

TEST(RecordedMachineDeathTest, EndsTheProcessWhenAPathDoesNotFit) {
  RecordedMachine machine({});
  EXPECT_DEATH(machine.FailRangeCheck(), "does not fit its buffer");
}

TEST(RecordedMachineDeathTest, EndsTheProcessWhenAPipeWouldBeReadForEver) {
  RecordedMachine machine({});
  const auto pipe = machine.CreatePipe("/c tool");
  char byte = 0;
  std::size_t count = 0;
  EXPECT_DEATH(pipe.object->Read(&byte, 1, count), "its own write end was open");
}

TEST(RecordedMachineDeathTest, EndsTheProcessWhenNoMachineIsInUse) {
  EXPECT_DEATH(pq::Machine(), "There is no machine");
}

TEST(MachineInUse, PutsTheMachineBackThatWasThereBefore) {
  RecordedMachine outer({});
  const pq::MachineInUse outerInUse(outer);
  {
    RecordedMachine inner({});
    const pq::MachineInUse innerInUse(inner);
    EXPECT_EQ(&pq::Machine(), &inner);
  }
  EXPECT_EQ(&pq::Machine(), &outer);
}

/// `arp.exe` answers with the exit code of a tool that a host ended, then is not started again.
Recording MakeEndedTool() {
  RecordedCommand ended = Answer("arp.exe", "-a", "Interface");
  ended.exitCode = 1460;
  RecordedCommand refused = Answer("arp.exe", "-n", "");
  refused.startError = 1223;
  RecordedCommand other = Answer("net", "share", "");
  other.startError = 1223;
  Recording recording;
  recording.commands = {ended, refused, other};
  return recording;
}

TEST(EndedTool, IsToldOfWithEveryOfItsStarts) {
  Subject subject(MakeEndedTool());
  subject.machine.RunSystem("arp.exe -n");
  subject.Run("/c arp.exe -a | findstr x");
  subject.Run("/c arp.exe -n");
  subject.Run("/c net share");
  subject.machine.RunSystem("arp.exe -a");
  subject.machine.RunSystem("arp.exe -n");
  std::vector<std::string> told;
  for (const std::string& call : subject.listener.calls) {
    if (call.find(" after ") != std::string::npos) told.push_back(call);
  }
  EXPECT_THAT(told,
              ElementsAre("ended after 0", "refused after 0", "ended after 0", "refused after 0"));
}

TEST(EndedTool, HasNotRunWhereItsOutputHadNoFile) {
  Recording recording = MakeEndedTool();
  recording.readOnly.push_back("C:\\Halyard\\logs\\arp.txt");
  Subject subject(recording);
  subject.Run(R"(/c arp.exe -a >"C:\Halyard\logs\arp.txt")");
  for (const std::string& call : subject.listener.calls) {
    EXPECT_EQ(call.find(" after "), std::string::npos) << call;
  }
}

TEST(EndingMachine, RefusesEveryStartAndPipe) {
  RecordedMachine machine(Recording{});
  machine.EndWhen([] { return true; });
  EXPECT_EQ(machine.StartInterpreter("/c arp.exe -a", false, nullptr).error, 1223u);
  EXPECT_EQ(machine.CreatePipe("/c arp.exe -a").error, 1223u);
}

TEST(EndingMachine, RunsEverythingUntilTheEnd) {
  RecordedMachine machine(Recording{});
  machine.EndWhen([] { return false; });
  EXPECT_TRUE(machine.StartInterpreter("/c arp.exe -a", false, nullptr));
}

}  // namespace
}  // namespace host
