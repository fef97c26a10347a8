#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/collect/command_text.h"
#include "host/collect/failures.h"
#include "host/collect/trace.h"
#include "host/pqhost/pqhost.h"
#include "host/recorded/recorded_machine.h"
#include "tests/pqmodules/amt/amt_commands.h"
#include "tests/support/collected.h"

namespace {

using test::kLogCommand;
using test::kPresenceCommand;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr char kBmcTest[] = "/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" bmc";

/// What the program wrote.
struct Ran {
  int exitCode = 0;
  std::string out;
  std::string error;
};

Ran CollectAmt(const std::string& sample, const std::vector<std::string>& more) {
  std::ostringstream out;
  std::ostringstream error;
  const host::Console console{.programName = "pqhost", .out = out, .error = error};
  std::vector<std::string> arguments = {"collect", "--replay", test::SamplesFolder() + "/" + sample,
                                        "--module", "AMT_Info"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  const int exitCode = host::RunPqhost(arguments, console);
  return {exitCode, out.str(), error.str()};
}

/// The failures after these command lines of one module, all programs being missing or none.
std::vector<host::Failure> FailuresOf(const std::vector<std::string>& commandLines, bool isThere) {
  host::FailureList failures;
  failures.FindMissingPrograms([isThere](const std::string&) { return isThere; });
  failures.Module("AMT_Info", "AMT Log");
  for (const std::string& commandLine : commandLines) {
    failures.OnProcess("cmd.exe", commandLine, false, false);
  }
  return failures.Failures();
}

TEST(MissingPresenceTool, IsAFailureOfItsModule) {
  const std::vector<host::Failure> failures = FailuresOf({kPresenceCommand}, false);
  ASSERT_THAT(failures, SizeIs(1));
  EXPECT_EQ(failures[0].module, "AMT_Info");
  EXPECT_EQ(failures[0].tool, "check_amt_bmc.exe");
  EXPECT_EQ(failures[0].text,
            "the program is missing, so it is not known whether the machine has AMT");
}

TEST(MissingPresenceTool, IsNamedOnceHoweverOftenItIsAsked) {
  EXPECT_THAT(FailuresOf({kPresenceCommand, kPresenceCommand, kPresenceCommand}, false), SizeIs(1));
}

TEST(MissingPresenceTool, IsNamedOnceForAllThingsThatItTellsOf) {
  const std::vector<host::Failure> failures = FailuresOf({kPresenceCommand, kBmcTest}, false);
  ASSERT_THAT(failures, SizeIs(1));
  EXPECT_EQ(failures[0].module, "AMT_Info");
  EXPECT_EQ(failures[0].text,
            "the program is missing, so it is not known whether the machine has AMT or a BMC");
}

TEST(MissingPresenceTool, IsNoFailureWhenItIsThere) {
  EXPECT_THAT(FailuresOf({kPresenceCommand, kBmcTest}, true), IsEmpty());
}

TEST(MissingPresenceTool, OtherProgramsMayBeMissing) {
  EXPECT_THAT(FailuresOf({kLogCommand, "/c arp.exe -a"}, false), IsEmpty());
}

TEST(MissingPresenceTool, IsSaidOnStandardErrorOfAReplay) {
  const Ran ran = CollectAmt("bare-machine", {"--format", "none"});
  EXPECT_THAT(ran.error, HasSubstr("AMT_Info, check_amt_bmc.exe: the program is missing"));
  EXPECT_EQ(ran.exitCode, host::kExitIncomplete);
}

TEST(MissingPresenceTool, IsNotSaidOfAMachineThatHasIt) {
  const Ran ran = CollectAmt("amt-desktop", {"--format", "none"});
  EXPECT_THAT(ran.error, Not(HasSubstr("missing")));
  EXPECT_EQ(ran.exitCode, host::kExitDone);
}

TEST(RecordedPrograms, AreThoseThatAreRecordedWithTheseArguments) {
  host::Recording recording;
  recording.commands.resize(1);
  recording.commands[0].tool = "check_amt_bmc.exe";
  recording.commands[0].arguments = "bmc";
  const host::RecordedMachine machine(recording);
  EXPECT_TRUE(machine.HasPrograms(kBmcTest));
  EXPECT_FALSE(machine.HasPrograms(kPresenceCommand));
  EXPECT_FALSE(machine.HasPrograms("/c other.exe bmc"));
}

TEST(RecordedPrograms, TheInterpretersOwnAreAlwaysThere) {
  const host::RecordedMachine machine{host::Recording()};
  EXPECT_TRUE(machine.HasPrograms("/c md C:\\Halyard\\logs\\more"));
}

TEST(CommandText, ProgramStandsWithItsFolder) {
  EXPECT_EQ(host::FindProgram(kPresenceCommand), "C:\\Halyard\\pq_tools\\check_amt_bmc.exe");
}

TEST(CommandText, ArgumentsEndAtAPipeOrARedirection) {
  EXPECT_EQ(host::FindArguments(kPresenceCommand), "amt");
  EXPECT_EQ(host::FindArguments("/c arp.exe -a"), "-a");
  EXPECT_EQ(host::FindArguments("/c netstat.exe"), "");
  EXPECT_EQ(host::FindArguments("/c route print >\"C:\\H\\route.txt\""), "print");
  EXPECT_EQ(host::FindArguments("/c \"C:\\A B\\tool.exe\" lan | findstr Param"), "lan");
  EXPECT_EQ(host::FindArguments("/c \"\"C:\\A B\\tool.exe\" /c0 show > \"C:\\out.txt\"\""),
            "/c0 show");
}

TEST(CommandText, ArgumentsStandInTheQuotesOfTheirProgram) {
  EXPECT_EQ(host::FindArguments("/c \"C:\\A B\\arcconf.exe savesupportarchive c:\\\""),
            "savesupportarchive c:\\");
}

TEST(AmtDesktop, ShowsItsLogWithoutThePasswordInEveryFormat) {
  for (const char* format : {"table", "json", "ndjson", "csv"}) {
    const Ran ran = CollectAmt("amt-desktop", {"--format", format});
    EXPECT_EQ(ran.exitCode, host::kExitDone) << ran.error;
    EXPECT_THAT(ran.out, HasSubstr("Cover opened, reported by sensor 5")) << format;
    EXPECT_THAT(ran.out + ran.error, Not(HasSubstr("Lantern-52"))) << format;
  }
}

}  // namespace
