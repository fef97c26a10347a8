#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include "host/formats/formats.h"
#include "host/live/live.h"
#include "host/pqhost/commands/command_line.h"
#include "host/text/usage_error.h"
#include "host/text/version.h"
#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

/// What a command line that is right writes to standard output.
std::string Answer(const Words& arguments) {
  std::ostringstream out;
  std::ostringstream error;
  const Console console{
      .programName = "pqhost", .out = out, .error = error, .programFolder = "nowhere"};
  RunCommandLine(arguments, console);
  return out.str();
}

/// What is said about a wrong command line; always one line.
std::string Complaint(const Words& arguments) {
  try {
    Answer(arguments);
  } catch (const UsageError& error) {
    std::string text = error.what();
    EXPECT_EQ(text.find('\n'), std::string::npos) << text;
    return text;
  }
  return "no complaint";
}

const std::string kSample = test::Sample("two-socket-server");

TEST(Options, DefaultToAllTablesOnStandardOutput) {
  const std::string tables = Answer({"collect", "--replay", kSample});
  EXPECT_EQ(Answer({"collect", "--replay", kSample, "--format", "table", "--output", "-"}), tables);
  for (const char* className : {"RAIDINFO", "SENSORINFO", "ARPINFO"}) {
    EXPECT_THAT(tables, HasSubstr(className));
  }
}

TEST(Options, ReadAllOfCollect) {
  const test::TemporaryFolder folder;
  EXPECT_EQ(Answer({"collect",      "--module",        "BMC_Info", "--module=Windows_Related_Info",
                    "--table",      "ARPINFO",         "--table",  "SENSORINFO",
                    "--table",      "ARPINFO",         "--replay", kSample,
                    "--log-folder", folder / "logs",   "--format", "ndjson",
                    "--output",     folder / "o.json", "--trace",  folder / "t.jsonl"}),
            "");
  EXPECT_THAT(folder.Read("o.json"),
              AllOf(HasSubstr("ARPINFO"), HasSubstr("SENSORINFO"), Not(HasSubstr("NETSTATINFO"))));
  EXPECT_THAT(folder.Read("t.jsonl"),
              AllOf(HasSubstr("BMC_Info"), HasSubstr("Windows_Related_Info")));
  EXPECT_THAT(folder.Files(), Contains(StartsWith("logs/")));
}

TEST(Options, LeaveStandardOutputToTheTrace) {
  const test::TemporaryFolder folder;
  const std::string tables = Answer({"collect", "--replay", kSample});
  EXPECT_EQ(Answer({"collect", "--replay", kSample, "--trace", folder / "t"}), tables);
  const std::string trace = folder.Read("t");
  EXPECT_EQ(Answer({"collect", "--replay", kSample, "--trace", "-"}), trace);
  EXPECT_EQ(Answer({"collect", "--replay", kSample, "--trace", "-", "--format", "none"}), trace);
  EXPECT_EQ(Answer({"collect", "--replay", kSample, "--trace", "-", "--output", folder / "o"}),
            trace);
  EXPECT_EQ(folder.Read("o"), tables);
}

TEST(Options, RefusesTraceAndResultsInOnePlace) {
  EXPECT_THAT(Complaint({"collect", "--trace", "-", "--format", "json"}),
              HasSubstr("both want standard output"));
  EXPECT_THAT(Complaint({"collect", "--trace", "x", "--output", "x"}), HasSubstr("the same file"));
}

TEST(Options, ReadAllOfModules) {
  EXPECT_THAT(Answer({"modules"}), StartsWith("LSI RAID  "));
  EXPECT_THAT(Answer({"modules", "--format", "json"}), StartsWith("{"));
  EXPECT_THAT(Answer({"modules", "--format", "markdown"}), StartsWith("#"));
  EXPECT_THROW(Answer({"modules", "--plugin", "nowhere.dll"}), LiveError);
}

TEST(Options, WantsACommand) {
  EXPECT_EQ(Complaint({}),
            "nothing to do: give a command (collect, health, diff, modules, query, show, check, "
            "setup, verify, redact, help; see pqhost --help)");
}

TEST(Options, SuggestsTheCommandThatWasMeant) {
  EXPECT_EQ(Complaint({"colect"}),
            "there is no command colect; did you mean collect? (commands: collect, health, "
            "diff, modules, query, show, check, setup, verify, redact, help; see pqhost --help)");
  EXPECT_EQ(
      Complaint({"zzz"}),
      "there is no command zzz (commands: collect, health, diff, modules, query, show, check, "
      "setup, verify, redact, help; see pqhost --help)");
}

TEST(Options, SuggestsTheOptionThatWasMeant) {
  EXPECT_EQ(Complaint({"collect", "--modul", "A"}),
            "there is no option --modul; did you mean --module? (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"collect", "--replya=x"}),
            "there is no option --replya; did you mean --replay? (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"--verzion"}),
            "there is no option --verzion; did you mean --version? (see pqhost --help)");
}

TEST(Options, SuggestsTheFormatThatWasMeant) {
  EXPECT_EQ(Complaint({"collect", "--format", "jsn"}),
            "there is no format jsn; did you mean json? (formats: table, json, ndjson, csv, html, "
            "sqlite, prometheus, none)");
  EXPECT_EQ(Complaint({"modules", "--format", "csv"}),
            "there is no format csv (formats: table, json, markdown, parts, metrics)");
}

TEST(Options, SayWhatThereIsToChoose) {
  EXPECT_EQ(Complaint({"collect", "--replay", test::Sample("vroc"), "--redact=all"}),
            "--redact=all: there is no such choice (choices: public, support)");
}

TEST(Options, SayWhatToDoWithADamagedDatabase) {
  const test::TemporaryFolder folder;
  folder.Write("cut.db", "SQLite format 3 and no more");
  EXPECT_THAT(Complaint({"query", folder / "cut.db", "SELECT 1"}),
              testing::EndsWith("name another file, or get it again"));
}

TEST(Options, RefusesWordsThatBelongToNothing) {
  EXPECT_EQ(Complaint({"collect", "ARPINFO"}),
            "collect takes no argument ARPINFO (see pqhost collect --help)");
  EXPECT_EQ(Complaint({"collect", "--module", "A", "B"}),
            "collect takes no argument B (see pqhost collect --help)");
}

TEST(Options, RefusesASecondCommand) {
  EXPECT_EQ(Complaint({"modules", "collect"}),
            "modules takes no argument collect (see pqhost modules --help)");
  EXPECT_EQ(Complaint({"collect", "collect"}),
            "collect takes no argument collect (see pqhost collect --help)");
}

TEST(Options, RefusesAnOptionWithoutItsValue) {
  for (const char* option : {"--module", "--table", "--replay", "--log-folder", "--plugin",
                             "--format", "--output", "--trace", "--tool-limit", "--tool-memory"}) {
    EXPECT_THAT(Complaint({"collect", option}), HasSubstr(option)) << option;
  }
}

// A recording without a name is named after machine and time.
TEST(Options, TakeARecordingWithoutAName) {
  EXPECT_THAT(Complaint({"collect", "--record", "--replay", "a"}),
              HasSubstr("--record has no use with --replay"));
  EXPECT_THAT(Complaint({"collect", "--replay", "a", "--record"}),
              HasSubstr("--record has no use with --replay"));
}

TEST(Options, RefusesAnEmptyPath) {
  EXPECT_THAT(Complaint({"collect", "--replay", ""}), HasSubstr("--replay is empty"));
  EXPECT_THAT(Complaint({"collect", "--output", ""}), HasSubstr("--output is empty"));
}

TEST(Options, RefusesASingleOptionGivenTwice) {
  EXPECT_THAT(Complaint({"collect", "--replay", "a", "--replay", "b"}), HasSubstr("--replay"));
}

TEST(Options, RefusesAPluginForAReplay) {
  for (const char* command : {"collect", "check"}) {
    EXPECT_THAT(Complaint({command, "--replay", "r", "--plugin", "p"}),
                HasSubstr("--plugin has no use with --replay"))
        << command;
  }
  EXPECT_THAT(Complaint({"query", "--replay", "r", "--plugin", "p", "select 1"}),
              HasSubstr("--plugin has no use with --replay"));
  for (const Words& command : {Words{"collect"}, Words{"check"}, Words{"query", "SELECT 1"}}) {
    Words words = command;
    words.insert(words.end(), {"--replay", kSample, "--unsafe-folder"});
    EXPECT_THAT(Complaint(words), HasSubstr("--unsafe-folder has no use with --replay"));
  }
}

TEST(Options, RefuseAnAmtLoginThatCannotBeUsed) {
  EXPECT_THAT(Complaint({"collect", "--replay", kSample, "--amt-login", "login"}),
              HasSubstr("--amt-login has no use with --replay"));
  EXPECT_THAT(Complaint({"collect", "--amt-login", "-", "--no-input"}),
              HasSubstr("contradict each other"));
  EXPECT_THAT(Complaint({"collect", "--dry-run", "--amt-login", "login"}),
              HasSubstr("--amt-login has no use with --dry-run"));
  EXPECT_THAT(Complaint({"collect", "--amt-login", "no such file"}),
              HasSubstr("--amt-login no such file there is no such file"));
}

TEST(Options, TakeLimitsOfRecordings) {
  const std::string sample = test::Sample("two-socket-server");
  EXPECT_THAT(test::RunHost({"collect", "--replay", sample, "--limit", "commands=3"}).error,
              HasSubstr("--limit commands=NUMBER"));
  EXPECT_THAT(
      test::RunHost({"check", "--replay", sample, "--limit", "files=1", "--limit", "files=2"})
          .error,
      HasSubstr("more than 2 files"));
  for (const char* wrong : {"commands", "commands=", "commands=0", "commands=1x", "=1", "size=1",
                            "files=18446744073709551615", "file-size=17592186044416"}) {
    EXPECT_THAT(Complaint({"collect", "--replay", sample, "--limit", wrong}),
                HasSubstr("give one of commands, files, file-size, recording-size"))
        << wrong;
  }
}

TEST(Options, RefuseToWriteIntoTheRecording) {
  const std::string sample = test::Sample("blade");
  const std::string inside = sample + "/../blade/ipmiutil/new";
  for (const char* option : {"--output", "--trace", "--log-folder"}) {
    EXPECT_THAT(Complaint({"collect", "--replay", sample, option, inside}),
                HasSubstr("is in the recording"))
        << option;
  }
  EXPECT_THAT(Complaint({"query", "--replay", sample, "--output", inside, "select 1"}),
              HasSubstr("is in the recording"));
  EXPECT_FALSE(std::filesystem::exists(inside));
}

TEST(Options, RefuseOnePlaceForTraceAndResult) {
  EXPECT_THAT(Complaint({"collect", "--output", "x", "--trace", "./x"}),
              HasSubstr("name the same file"));
}

TEST(Options, DoesNotTakeASlashForAnOption) {
  EXPECT_EQ(Complaint({"collect", "/module"}),
            "collect takes no argument /module (see pqhost collect --help)");
}

TEST(Options, TakeARecordingFolderAndAToolLimitForThisMachine) {
  EXPECT_THROW(
      Answer({"collect", "--record", "r", "--tool-limit", "120", "--plugin", "nowhere.dll"}),
      LiveError);
}

TEST(Options, RefuseAToolLimitOfNoTime) {
  EXPECT_THAT(Complaint({"collect", "--tool-limit", "0"}), HasSubstr("--tool-limit"));
  EXPECT_THAT(Complaint({"collect", "--tool-memory", "0"}), HasSubstr("--tool-memory"));
}

TEST(Options, RefuseToRecordAReplay) {
  EXPECT_EQ(Complaint({"collect", "--replay", "a", "--record", "b"}),
            "--record has no use with --replay, which is a recording already: leave one of them "
            "away");
}

TEST(Options, KeepTheRecordingApartFromResults) {
  for (const char* option : {"--output", "--trace"}) {
    EXPECT_EQ(Complaint({"collect", "--record", "r.zip", option, "./r.zip"}),
              std::string(option) + " and --record name the same place: give each its own");
  }
}

TEST(Options, RefuseAToolLimitInAReplay) {
  EXPECT_EQ(Complaint({"collect", "--replay", "a", "--tool-limit", "5"}),
            "--tool-limit has no use with --replay, which runs no tools: leave one of them away");
  EXPECT_EQ(Complaint({"collect", "--replay", "a", "--tool-memory", "5"}),
            "--tool-memory has no use with --replay, which runs no tools: leave one of them away");
}

TEST(Options, HelpNamesEveryOptionAndHasExamples) {
  EXPECT_THAT(Answer({"--help"}), HasSubstr("Examples:"));
  EXPECT_THAT(Answer({"--help"}), HasSubstr("collect"));
  const std::string collect = Answer({"collect", "--help"});
  EXPECT_THAT(collect, HasSubstr("Usage: pqhost collect [OPTIONS]"));
  EXPECT_THAT(collect, HasSubstr("Examples:"));
  EXPECT_THAT(collect, HasSubstr("Exit codes:"));
  for (const char* option : {"--module", "--table", "--replay", "--log-folder", "--plugin",
                             "--format", "--output", "--trace"}) {
    EXPECT_THAT(collect, HasSubstr(option)) << option;
  }
  for (const Format& format : Formats()) EXPECT_THAT(collect, HasSubstr(format.name));
  EXPECT_THAT(Answer({"modules", "--help"}), Not(HasSubstr("--replay")));
}

TEST(Options, HelpIsAWordAsWell) {
  EXPECT_EQ(Answer({"help"}), Answer({"--help"}));
  EXPECT_EQ(Answer({"help", "collect"}), Answer({"collect", "--help"}));
  EXPECT_EQ(Complaint({"help", "colect"}), Complaint({"colect"}));
  EXPECT_THAT(Complaint({"help", "collect", "query"}),
              HasSubstr("there are too many arguments: help takes 1 at most"));
}

TEST(Options, HelpIsGivenAsProgramsOfWindowsGiveIt) {
  for (const char* word : {"/?", "-?", "/h", "/H", "/help"}) {
    EXPECT_EQ(Answer({word}), Answer({"--help"})) << word;
    EXPECT_EQ(Answer({"check", word}), Answer({"check", "--help"})) << word;
  }
  EXPECT_THAT(test::RunHost({"collect", "--replay", "/?"}).error, HasSubstr("/?"));
}

TEST(Options, AreGivenAsOftenAndWithAsManyValuesAsTheyTake) {
  EXPECT_THAT(Complaint({"collect", "--output"}),
              HasSubstr("--output needs a value: --output FILE (see pqhost collect --help)"));
  EXPECT_THAT(Complaint({"collect", "--format", "csv", "--format", "json"}),
              HasSubstr("--format is given twice (see pqhost collect --help)"));
  EXPECT_THAT(Complaint({"health", "--brief=no"}),
              HasSubstr("--brief takes no value (see pqhost health --help)"));
}

TEST(Options, TakeNumbersWithinTheirRange) {
  for (const char* number : {"x", "0", "-1", "86401", "1.5", "1s", ""}) {
    EXPECT_THAT(
        Complaint({"check", "--time-limit", number}),
        HasSubstr(std::string("--time-limit ") + number + ": give a number from 1 to 86400"));
  }
}

TEST(Options, SaysItsVersion) {
  EXPECT_EQ(Answer({"--version"}), std::string("pqhost ") + kVersion + "\n");
}

TEST(Options, TakeAQueryWithOrWithoutADatabase) {
  EXPECT_EQ(Answer({"query", "--replay", kSample, "SELECT 1 AS one", "--format", "csv"}),
            "one\r\n1\r\n");
  EXPECT_THAT(Complaint({"query", "nowhere.db", "SELECT 2"}), HasSubstr("nowhere.db"));
}

TEST(Options, RefusesALogFolderForTheFilesOfOtherMachines) {
  EXPECT_THAT(
      Complaint({"query", "server.db", "SELECT 1", "--replay", kSample, "--log-folder", "l"}),
      StartsWith("--log-folder has no use here without this machine's tools"));
}

TEST(Options, RefuseToIdentifyRowsThatNeedNot) {
  EXPECT_EQ(
      Complaint({"collect", "--replay", kSample, "--identify", "--format", "json"}),
      "--identify is for csv and prometheus: json tells the machine in its own place; leave it "
      "away");
}

TEST(Options, RefusesAQueryWithoutSql) {
  EXPECT_THAT(Complaint({"query"}), StartsWith("there is no query"));
}

}  // namespace
}  // namespace host
