#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "pqmodules/ramtinfo.h"
#include "pqmodules/ramtinfo/login_line.h"
#include "tests/pqmodules/amt/amt_commands.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"

namespace {

using pq::AmtLogin;
using pq::LoginLine;
using pq::ParseLoginLine;
using test::Collect;
using test::Collected;
using test::kLogCommand;
using test::kPresenceCommand;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr char kPrompt[] =
    "Please input the AMT IP/UserName/Password seperated with blank space,if give up this module, "
    "just press Enter:";
constexpr char kReport[] = "C:\\Halyard\\logs\\amtlog.txt";

host::RecordedCommand PresenceAnswer(std::uint32_t exitCode) {
  host::RecordedCommand command;
  command.tool = "check_amt_bmc.exe";
  command.arguments = "amt";
  command.exitCode = exitCode;
  return command;
}

host::RecordedCommand LogAnswer(const std::string& log,
                                const std::string& arguments = "192.0.2.9 keeper Q7-secret") {
  host::RecordedCommand command;
  command.tool = "amt_log.exe";
  command.arguments = arguments;
  command.standardOutput = log;
  return command;
}

/// A machine with AMT on which the operator types `console`.
host::Recording AmtMachine(const std::string& console,
                           const host::RecordedCommand& log = LogAnswer("one\r\ntwo\r\n")) {
  host::Recording recording;
  recording.console = console;
  recording.commands = {PresenceAnswer(1), log};
  return recording;
}

/// As many enumerations of the one table as asked for.
Collected Enumerate(const host::Recording& recording, std::size_t times = 1) {
  return Collect(recording, "AMT_Info", std::vector<std::string>(times, "AMTLOG"));
}

/// The log lines of one enumeration on a machine with AMT, `inside` being those of the collection.
std::vector<std::string> LinesAround(const std::vector<std::string>& inside) {
  std::vector<std::string> lines = {"3 Enter EnumAMTInstances", "3 check_amt function return:1",
                                    "3 Has AMT, return 0", "3 Enter CollectData-AMT related info"};
  lines.insert(lines.end(), inside.begin(), inside.end());
  lines.insert(lines.end(), {"3 Exit CollectData-AMT related info", "3 Exit EnumAMTInstances"});
  return lines;
}

const std::vector<std::string> kLoginLines = {"4 AMT IP:192.0.2.9", "4 AMT User:keeper"};

/// What the operator saw when asked as often as there are complaints, and once more.
std::string PromptsAround(const std::vector<std::string>& complaints) {
  std::string console;
  for (const std::string& complaint : complaints) console += kPrompt + complaint + "\n";
  return console + kPrompt;
}

/// Runs one of the module's own operations on `recording`.
template <typename Operation>
int ResultOf(const host::Recording& recording, const Operation& operation) {
  const host::LogFolderInUse logFolder(recording.logFolder);
  host::RecordedMachine machine(recording);
  const pq::MachineInUse inUse(machine);
  pq::RAMTInfo module;
  return operation(module);
}

int CheckResult(const host::Recording& recording) {
  return ResultOf(recording, [](pq::RAMTInfo& module) { return module.CheckAMT(); });
}

int CollectResult(const host::Recording& recording) {
  return ResultOf(recording, [](pq::RAMTInfo& module) {
    halyard::repository::RRepository repository;
    return module.CollectAMTData(repository);
  });
}

/// The lines of `trace` that hold `text`.
std::vector<std::string> TraceLinesWith(const std::string& trace, std::string_view text) {
  std::vector<std::string> found;
  for (std::size_t at = 0; at < trace.size();) {
    const std::size_t end = trace.find('\n', at);
    const std::string line = trace.substr(at, end - at);
    if (line.find(text) != std::string::npos) found.push_back(line);
    at += line.size() + 1;
  }
  return found;
}

std::vector<std::vector<std::string>> RowsOf(const std::vector<std::string>& lines) {
  std::vector<std::vector<std::string>> rows;
  rows.reserve(lines.size());
  for (const std::string& line : lines) rows.push_back({"AMTLOG=" + line});
  return rows;
}

LoginLine Parse(std::string_view line) {
  AmtLogin login;
  return ParseLoginLine(line, login);
}

const std::string k31Characters(31, 'x');
const std::string k32Characters(32, 'x');

// --- The line that the operator types.

TEST(AmtLoginLine, IsSplitAtBlanksAndLineEnds) {
  AmtLogin login;
  EXPECT_EQ(ParseLoginLine(" 192.0.2.9  keeper\r\nQ7-secret \n", login), LoginLine::kComplete);
  EXPECT_EQ(login.address, "192.0.2.9");
  EXPECT_EQ(login.userName, "keeper");
  EXPECT_EQ(login.password, "Q7-secret");
}

TEST(AmtLoginLine, PartsBehindTheThirdAreIgnored) {
  AmtLogin login;
  const std::string line = "a b c d " + k32Characters;
  EXPECT_EQ(ParseLoginLine(line, login), LoginLine::kComplete);
  EXPECT_EQ(login.password, "c");
}

TEST(AmtLoginLine, WithoutACharacterIsEmpty) { EXPECT_EQ(Parse(""), LoginLine::kEmpty); }

TEST(AmtLoginLine, ThatBeginsWithNulIsEmpty) {
  EXPECT_EQ(Parse(std::string_view("\0a b c", 6)), LoginLine::kEmpty);
}

TEST(AmtLoginLine, OfBlanksIsBlank) { EXPECT_EQ(Parse("   "), LoginLine::kBlank); }

TEST(AmtLoginLine, OfALineEndIsBlank) { EXPECT_EQ(Parse("\r"), LoginLine::kBlank); }

TEST(AmtLoginLine, OfOnePartHasOnlyTheAddress) {
  EXPECT_EQ(Parse("192.0.2.9"), LoginLine::kOnlyAddress);
}

TEST(AmtLoginLine, OfTwoPartsLacksThePassword) {
  EXPECT_EQ(Parse("192.0.2.9 keeper"), LoginLine::kNoPassword);
}

TEST(AmtLoginLine, EndsAtItsFirstNul) {
  EXPECT_EQ(Parse(std::string_view("a b\0 c", 6)), LoginLine::kNoPassword);
}

TEST(AmtLoginLine, TabBelongsToAPart) { EXPECT_EQ(Parse("a\tb c"), LoginLine::kNoPassword); }

TEST(AmtLoginLine, PartsOf31CharactersFit) {
  AmtLogin login;
  const std::string line = k31Characters + " " + k31Characters + " " + k31Characters;
  EXPECT_EQ(ParseLoginLine(line, login), LoginLine::kComplete);
  EXPECT_EQ(login.password, k31Characters);
}

TEST(AmtLoginLine, AddressOf32CharactersIsTooLong) {
  EXPECT_EQ(Parse(k32Characters + " b c"), LoginLine::kAddressTooLong);
}

TEST(AmtLoginLine, UserNameOf32CharactersIsTooLong) {
  EXPECT_EQ(Parse("a " + k32Characters + " c"), LoginLine::kUserNameTooLong);
}

TEST(AmtLoginLine, PasswordOf32CharactersIsTooLong) {
  EXPECT_EQ(Parse("a b " + k32Characters), LoginLine::kPasswordTooLong);
}

TEST(AmtLoginLine, FirstPartThatIsTooLongCounts) {
  EXPECT_EQ(Parse("a " + k32Characters + " " + k32Characters), LoginLine::kUserNameTooLong);
}

TEST(AmtLoginLine, PartThatIsTooLongCountsBeforeMissingOnes) {
  EXPECT_EQ(Parse(k32Characters), LoginLine::kAddressTooLong);
}

TEST(AmtLoginLine, IncompleteOneLeavesTheLogin) {
  AmtLogin login{"before", "before", "before"};
  ParseLoginLine("a b", login);
  EXPECT_EQ(login.address, "before");
}

TEST(AmtLoginLine, KeepsBytesAbove127) {
  AmtLogin login;
  EXPECT_EQ(ParseLoginLine("h\xF6lle j\xF6rg p\xFF\xA0q", login), LoginLine::kComplete);
  EXPECT_EQ(login.password, "p\xFF\xA0q");
}

// --- Whether the machine has AMT.

TEST(AmtPresence, ExitCode1MeansPresent) { EXPECT_EQ(CheckResult(AmtMachine("")), 0); }

TEST(AmtPresence, EveryOtherExitCodeMeansAbsent) {
  for (const std::uint32_t exitCode : {0u, 2u, 3u, 255u, 259u, 4294967295u}) {
    host::Recording recording;
    recording.commands = {PresenceAnswer(exitCode)};
    EXPECT_EQ(CheckResult(recording), 1) << exitCode;
  }
}

TEST(AmtPresence, ExitCodeIsLoggedUnsigned) {
  host::Recording recording;
  recording.commands = {PresenceAnswer(4294967295u)};
  EXPECT_THAT(Enumerate(recording).LogTexts(),
              ElementsAre("3 Enter EnumAMTInstances", "3 check_amt function return:4294967295",
                          "3 Has no AMT, return 1", "3 Exit EnumAMTInstances"));
}

TEST(AmtPresence, ExitCodeThatCannotBeReadCountsAs0) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands[0].exitCodeError = 6;
  EXPECT_THAT(Enumerate(recording).LogTexts(),
              ElementsAre("3 Enter EnumAMTInstances", "3 check_amt function return:0",
                          "3 Has no AMT, return 1", "3 Exit EnumAMTInstances"));
}

TEST(AmtPresence, FailedStartIsLoggedAsDetail) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands[0].startError = 5;
  EXPECT_EQ(CheckResult(recording), 1);
  EXPECT_THAT(Enumerate(recording).LogTexts(),
              ElementsAre("3 Enter EnumAMTInstances", "4 CreateProcess failed (5)",
                          "3 Exit EnumAMTInstances"));
}

TEST(AmtPresence, MissingToolLooksLikeAmtSinceTheInterpreterExitsWith1) {
  const Collected collected = Enumerate(host::Recording());
  EXPECT_EQ(collected.console, kPrompt);
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 AMT module, no parameter inputed!"}));
}

TEST(AmtPresence, ToolStartsWithoutInheritedHandles) {
  host::Recording recording;
  recording.commands = {PresenceAnswer(0)};
  EXPECT_THAT(TraceLinesWith(Enumerate(recording).trace, "\"process\""),
              ElementsAre(R"({"event":"process","application":"C:\\Windows\\system32\\cmd.exe",)"
                          R"("commandLine":"/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt",)"
                          R"("inheritHandles":false,"pipe":false})"));
}

TEST(AmtPresence, HostFolderStandsInTheCommandAsItIs) {
  host::Recording recording;
  recording.hostExecutable = "D:\\Server Tools\\Halyard\\halyard.exe";
  recording.commands = {PresenceAnswer(0)};
  EXPECT_THAT(Enumerate(recording).commandLines,
              ElementsAre("/c \"D:\\Server Tools\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt"));
}

/// Tests for AMT in a host whose folder's path has `length` characters.
int CheckInFolder(test::FakePlatform& machine, std::size_t length) {
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "C:\\" + std::string(length - 3, 'h') + "\\halyard.exe";
  return pq::RAMTInfo().CheckAMT();
}

TEST(AmtPresence, HostFolderThatFillsTheCommandEndsTheProcess) {
  test::FakePlatform machine;
  EXPECT_THROW(CheckInFolder(machine, 508), test::RangeCheckFailed);
  EXPECT_THAT(machine.calls, IsEmpty());
}

TEST(AmtPresence, CommandThatDoesNotFitIsNotStarted) {
  test::FakePlatform machine;
  const test::LogLines log;
  EXPECT_EQ(CheckInFolder(machine, 507), 1);
  EXPECT_THAT(log.texts, ElementsAre("4 [repo] CreateProcess failed (206)"));
  EXPECT_THAT(machine.calls, IsEmpty());
}

// --- Several enumerations in a row.

TEST(AmtEnumeration, WithoutAmtTestsEachTimeAndAsksNothing) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands[0].exitCode = 0;
  const Collected collected = Enumerate(recording, 3);
  EXPECT_THAT(collected.commandLines,
              ElementsAre(kPresenceCommand, kPresenceCommand, kPresenceCommand));
  EXPECT_EQ(collected.console, "");
  EXPECT_THAT(collected.Rows("AMTLOG"), IsEmpty());
}

TEST(AmtEnumeration, FoundAtLastCollectsThen) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands.insert(recording.commands.begin(), {PresenceAnswer(0), PresenceAnswer(2)});
  EXPECT_THAT(Enumerate(recording, 3).commandLines,
              ElementsAre(kPresenceCommand, kPresenceCommand, kPresenceCommand, kLogCommand));
}

TEST(AmtEnumeration, CollectedOnceOnlyTestsFromThenOn) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n"), 2);
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand, kPresenceCommand));
  std::vector<std::string> lines = LinesAround(kLoginLines);
  lines.insert(lines.end(), {"3 Enter EnumAMTInstances", "3 check_amt function return:1",
                             "3 Has AMT, return 0", "3 Exit EnumAMTInstances"});
  EXPECT_EQ(collected.LogTexts(), lines);
}

TEST(AmtEnumeration, DeclinedOnceIsNotAskedAgain) {
  const Collected collected = Enumerate(AmtMachine("\n192.0.2.9 keeper Q7-secret\n"), 3);
  EXPECT_EQ(collected.console, kPrompt);
  EXPECT_THAT(collected.commandLines,
              ElementsAre(kPresenceCommand, kPresenceCommand, kPresenceCommand));
}

TEST(AmtEnumeration, FailedCollectionIsNotRepeated) {
  host::Recording recording =
      AmtMachine("192.0.2.9 keeper Q7-secret\n192.0.2.9 keeper Q7-secret\n");
  recording.commands[1].startError = 2;
  const Collected collected = Enumerate(recording, 2);
  EXPECT_EQ(collected.console, kPrompt);
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand, kPresenceCommand));
}

TEST(AmtEnumeration, AbsentAfterItWasCollectedIsOnlyLogged) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands.push_back(PresenceAnswer(0));
  const Collected collected = Enumerate(recording, 2);
  std::vector<std::string> lines = LinesAround(kLoginLines);
  lines.insert(lines.end(), {"3 Enter EnumAMTInstances", "3 check_amt function return:0",
                             "3 Has no AMT, return 1", "3 Exit EnumAMTInstances"});
  EXPECT_EQ(collected.LogTexts(), lines);
}

// --- The prompt.

TEST(AmtPrompt, EmptyLineDeclines) {
  const host::Recording recording = AmtMachine("\n192.0.2.9 keeper Q7-secret\n");
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 AMT module, no parameter inputed!"}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand));
  EXPECT_EQ(CollectResult(recording), 0);
}

TEST(AmtPrompt, EndOfInputDeclines) {
  EXPECT_EQ(Enumerate(AmtMachine("")).LogTexts(),
            LinesAround({"3 AMT module, no parameter inputed!"}));
}

TEST(AmtPrompt, EndOfInputAfterAnIncompleteLineDeclines) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9"));
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 AMT module, no parameter inputed!"}));
  EXPECT_EQ(collected.console, PromptsAround({"Still need AMT user name and password!"}));
}

TEST(AmtPrompt, LineOfBlanksFailsAndIsNotAskedAgain) {
  const host::Recording recording = AmtMachine("   \n192.0.2.9 keeper Q7-secret\n");
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 Get AMT IP failed"}));
  EXPECT_EQ(collected.console, kPrompt);
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand));
  EXPECT_EQ(CollectResult(recording), 1);
}

TEST(AmtPrompt, AddressAloneIsAskedAgain) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"Still need AMT user name and password!"}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, MissingPasswordIsAskedAgain) {
  const Collected collected =
      Enumerate(AmtMachine("192.0.2.9 keeper\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"Still need AMT password!"}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, AsksAsOftenAsNeeded) {
  std::string typed;
  for (int i = 0; i < 100; ++i) typed += "192.0.2.9 keeper\n";
  const Collected collected = Enumerate(AmtMachine(typed + "192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console,
            PromptsAround(std::vector<std::string>(100, "Still need AMT password!")));
  EXPECT_EQ(collected.LogTexts(), LinesAround(kLoginLines));
}

TEST(AmtPrompt, PartsOfEarlierLinesAreForgotten) {
  const Collected collected =
      Enumerate(AmtMachine("198.51.100.7 other\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.LogTexts(), LinesAround(kLoginLines));
}

TEST(AmtPrompt, PartsBehindTheThirdAreIgnored) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret more words\n"));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, AddressThatIsTooLongIsNamedAndAskedAgain) {
  const Collected collected =
      Enumerate(AmtMachine(k32Characters + " keeper Q7-secret\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"The AMT IP is longer than 31 characters. Please "
                                              "input all three again."}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, UserNameThatIsTooLongIsNamedAndAskedAgain) {
  const Collected collected = Enumerate(
      AmtMachine("192.0.2.9 " + k32Characters + " Q7-secret\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"The AMT user name is longer than 31 characters. "
                                              "Please input all three again."}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, PasswordThatIsTooLongIsNamedAndAskedAgain) {
  const Collected collected =
      Enumerate(AmtMachine("192.0.2.9 keeper " + k32Characters + "\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"The AMT password is longer than 31 characters. "
                                              "Please input all three again."}));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, NothingOfARefusedLineIsLogged) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper " + k32Characters + "\n"));
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 AMT module, no parameter inputed!"}));
}

TEST(AmtPrompt, LineOf127CharactersFits) {
  std::string line = "192.0.2.9 keeper Q7-secret ";
  line.resize(127, 'z');
  EXPECT_THAT(Enumerate(AmtMachine(line + "\n")).commandLines,
              ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, LineOf128CharactersIsDiscardedAndAskedAgain) {
  std::string line = "198.51.100.7 other word ";
  line.resize(128, 'z');
  const Collected collected = Enumerate(AmtMachine(line + "\n192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.console, PromptsAround({"The line is longer than 127 characters and was "
                                              "discarded. Please input it again."}));
  EXPECT_EQ(collected.LogTexts(), LinesAround(kLoginLines));
  EXPECT_THAT(collected.commandLines, ElementsAre(kPresenceCommand, kLogCommand));
}

TEST(AmtPrompt, NothingOfALongLineIsReadAsTheNextOne) {
  const std::string line = std::string(1000, ' ') + "198.51.100.7 other word";
  const Collected collected = Enumerate(AmtMachine(line + "\n"));
  EXPECT_EQ(collected.LogTexts(), LinesAround({"3 AMT module, no parameter inputed!"}));
}

// --- The log.

TEST(AmtLog, PasswordAndRedirectionStandWithoutABlank) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n"));
  EXPECT_THAT(
      TraceLinesWith(collected.trace, "amt_log.exe"),
      ElementsAre(
          R"({"event":"process","application":"C:\\Windows\\system32\\cmd.exe",)"
          R"("commandLine":"/c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" 192.0.2.9 keeper )"
          R"(Q7-secret>\"C:\\Halyard\\logs\\amtlog.txt\"\"","inheritHandles":false,"pipe":false})"));
}

TEST(AmtLog, FileIsReadBackByItsPathWithDoubledBackslashes) {
  EXPECT_THAT(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n")).opened,
              ElementsAre("C:\\\\Halyard\\\\logs\\\\amtlog.txt"));
}

TEST(AmtLog, EveryLineIsAPropertyAndAnAddOfTheOneInstance) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n"));
  const std::string instances =
      collected.trace.substr(collected.trace.find(R"({"event":"instance")"));
  EXPECT_THAT(
      instances,
      StartsWith(
          R"({"event":"instance","id":1,"class":"AMTLOG","key":"AMT Log Information","number":-1})"
          "\n"
          R"({"event":"property","id":1,"key":"AMTLOG","label":"AMT Log Info","value":"one\n","flag":false})"
          "\n"
          R"({"event":"add","id":1})"
          "\n"
          R"({"event":"property","id":1,"key":"AMTLOG","label":"AMT Log Info","value":"two\n","flag":false})"
          "\n"
          R"({"event":"add","id":1})"
          "\n"
          R"({"event":"release","id":1})"
          "\n"));
}

TEST(AmtLog, SuccessReturns0) {
  EXPECT_EQ(CollectResult(AmtMachine("192.0.2.9 keeper Q7-secret\n")), 0);
}

TEST(AmtLog, LastLineMayLackItsEnd) {
  EXPECT_EQ(
      Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer("one\ntwo"))).Rows("AMTLOG"),
      RowsOf({"one\n", "two"}));
}

TEST(AmtLog, EmptyLinesAreRowsToo) {
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer("one\r\n\r\n\n")))
                .Rows("AMTLOG"),
            RowsOf({"one\n", "\n", "\n"}));
}

TEST(AmtLog, LineOf510CharactersIsOneRow) {
  const std::string line(510, 'e');
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer(line + "\r\nend")))
                .Rows("AMTLOG"),
            RowsOf({line + "\n", "end"}));
}

TEST(AmtLog, LongLineArrivesInPiecesOf511Characters) {
  const std::string line = std::string(511, 'e') + std::string(511, 'f') + "g";
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer(line + "\r\n")))
                .Rows("AMTLOG"),
            RowsOf({std::string(511, 'e'), std::string(511, 'f'), "g\n"}));
}

TEST(AmtLog, LineEndsAtItsFirstNul) {
  const std::string log("on\0e\r\n\0two\r\n", 12);
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer(log))).Rows("AMTLOG"),
            RowsOf({"on", ""}));
}

TEST(AmtLog, BytesAbove127PassThrough) {
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer("j\xF6r\xFF\r\n")))
                .Rows("AMTLOG"),
            RowsOf({"j\xF6r\xFF\n"}));
}

TEST(AmtLog, EmptyLogLeavesAnInstanceThatIsNeverAdded) {
  const host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n", LogAnswer(""));
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(TraceLinesWith(collected.trace, R"("event":"instance")").size(), 1u);
  EXPECT_EQ(TraceLinesWith(collected.trace, R"("event":"release")").size(), 1u);
  EXPECT_THAT(TraceLinesWith(collected.trace, R"("event":"add")"), IsEmpty());
  EXPECT_EQ(collected.LogTexts(), LinesAround(kLoginLines));
  EXPECT_EQ(CollectResult(recording), 0);
}

TEST(AmtLog, MissingToolLeavesAnEmptyFile) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands.pop_back();
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(collected.files.at(kReport), "");
  EXPECT_THAT(collected.Rows("AMTLOG"), IsEmpty());
  EXPECT_EQ(collected.LogTexts(), LinesAround(kLoginLines));
}

TEST(AmtLog, FileStaysInTheLogFolder) {
  const Collected collected = Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n"));
  EXPECT_EQ(collected.files.at(kReport), "one\r\ntwo\r\n");
}

TEST(AmtLog, FailedStartIsLoggedAsDetailAndEndsTheCollection) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands[1].startError = 8;
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(collected.LogTexts(),
            LinesAround({"4 AMT IP:192.0.2.9", "4 AMT User:keeper", "4 CreateProcess failed (8)"}));
  EXPECT_THAT(collected.opened, IsEmpty());
  EXPECT_EQ(CollectResult(recording), 1);
}

TEST(AmtLog, ExitCodeOfTheToolDoesNotMatter) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.commands[1].exitCode = 7;
  EXPECT_EQ(Enumerate(recording).Rows("AMTLOG"), RowsOf({"one\n", "two\n"}));
}

TEST(AmtLog, FileThatCannotBeOpenedIsLoggedAsDetail) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.readOnly = {kReport};
  EXPECT_EQ(Enumerate(recording).LogTexts(), LinesAround({"4 AMT IP:192.0.2.9", "4 AMT User:keeper",
                                                          "4 Failed to open AMT log file"}));
  EXPECT_EQ(CollectResult(recording), 1);
}

TEST(AmtLog, CommandThatDoesNotFitIsNotStarted) {
  host::Recording recording =
      AmtMachine(k31Characters + " " + k31Characters + " " + k31Characters + "\n");
  recording.hostExecutable = "C:\\" + std::string(240, 'h') + "\\halyard.exe";
  recording.logFolder = "C:\\" + std::string(200, 'l') + "\\";
  const Collected collected = Enumerate(recording);
  EXPECT_EQ(collected.LogTexts(),
            LinesAround({"4 AMT IP:" + k31Characters, "4 AMT User:" + k31Characters,
                         "4 CreateProcess failed (206)"}));
  EXPECT_EQ(collected.commandLines.size(), 1u);
}

TEST(AmtLog, EverythingIsClosedAfterwards) {
  EXPECT_EQ(Enumerate(AmtMachine("192.0.2.9 keeper Q7-secret\n")).openHandles, 0);
}

// --- The password.

/// Every run in which the operator types the password, whatever becomes of it.
std::vector<host::Recording> RunsWithThePassword() {
  const std::string typed = "192.0.2.9 keeper Q7-secret\n";
  host::Recording startFails = AmtMachine(typed);
  startFails.commands[1].startError = 5;
  host::Recording cannotOpen = AmtMachine(typed);
  cannotOpen.readOnly = {kReport};
  host::Recording noTool = AmtMachine(typed);
  noTool.commands.pop_back();
  host::Recording doesNotFit = AmtMachine(typed);
  doesNotFit.hostExecutable = "C:\\" + std::string(240, 'h') + "\\halyard.exe";
  doesNotFit.logFolder = "C:\\" + std::string(220, 'l') + "\\";
  const std::string longTail(40, 'z');
  return {AmtMachine(typed),
          startFails,
          cannotOpen,
          noTool,
          doesNotFit,
          AmtMachine("192.0.2.9 keeper Q7-secret" + longTail + "\n"),
          AmtMachine(k32Characters + " keeper Q7-secret\n"),
          AmtMachine("192.0.2.9 keeper Q7-secret " + longTail + longTail + longTail + "\n")};
}

TEST(AmtPassword, StandsInNoLogLine) {
  for (const host::Recording& recording : RunsWithThePassword()) {
    const std::vector<std::string> texts = Enumerate(recording).LogTexts();
    EXPECT_THAT(texts, Not(IsEmpty()));
    EXPECT_THAT(texts, Each(Not(HasSubstr("Q7-secret"))));
  }
}

TEST(AmtPassword, IsNeverRepeatedOnTheConsole) {
  for (const host::Recording& recording : RunsWithThePassword()) {
    const std::string console = Enumerate(recording).console;
    EXPECT_THAT(console, StartsWith(kPrompt));
    EXPECT_THAT(console, Not(HasSubstr("Q7-secret")));
  }
}

TEST(AmtPassword, StandsInNoRowAndNoFile) {
  for (const host::Recording& recording : RunsWithThePassword()) {
    const Collected collected = Enumerate(recording);
    for (const auto& row : collected.Rows("AMTLOG")) {
      EXPECT_THAT(row, Each(Not(HasSubstr("Q7-secret"))));
    }
    for (const auto& [path, content] : collected.files) {
      EXPECT_THAT(path + content, Not(HasSubstr("Q7-secret")));
    }
  }
}

TEST(AmtPassword, StandsInTheTraceInTheLogToolsStartOnly) {
  for (const host::Recording& recording : RunsWithThePassword()) {
    EXPECT_THAT(TraceLinesWith(Enumerate(recording).trace, "Q7-secret"),
                Each(AllOf(StartsWith(R"({"event":"process")"), HasSubstr("amt_log.exe"))));
  }
}

TEST(AmtPassword, OfTheSampleStandsInItsLogToolsStartOnly) {
  const Collected collected =
      Collect(host::LoadRecording(test::SamplesFolder() + "/amt-desktop"), "AMT_Info");
  EXPECT_THAT(TraceLinesWith(collected.trace, "Lantern-52"),
              ElementsAre(AllOf(StartsWith(R"({"event":"process")"), HasSubstr("amt_log.exe"))));
}

// --- Whole runs.

TEST(AmtTrace, OfTheSample) {
  const host::Recording sample = host::LoadRecording(test::SamplesFolder() + "/amt-desktop");
  EXPECT_EQ(Collect(sample, "AMT_Info").trace, test::TestData("amt_desktop.trace"));
}

TEST(AmtTrace, OfEnumerationsWithDifferentAnswers) {
  host::Recording recording =
      AmtMachine("192.0.2.9\n" + k32Characters + " keeper Q7-secret\n192.0.2.9 keeper\n" +
                 std::string(128, 'y') + "\n192.0.2.9 keeper Q7-secret extra\n");
  host::RecordedCommand noStart = PresenceAnswer(0);
  noStart.startError = 1450;
  recording.commands = {PresenceAnswer(0), noStart,
                        PresenceAnswer(1), PresenceAnswer(3),
                        PresenceAnswer(1), LogAnswer("first event\r\n\r\nlast \xE9vent")};
  EXPECT_EQ(Enumerate(recording, 5).trace, test::TestData("amt_enumerations.trace"));
}

TEST(AmtTrace, OfALogThatCannotBeOpened) {
  host::Recording recording = AmtMachine("192.0.2.9 keeper Q7-secret\n");
  recording.readOnly = {kReport};
  EXPECT_EQ(Enumerate(recording).trace, test::TestData("amt_unwritable.trace"));
}

}  // namespace
