// pqhost health: its formats, files and exit codes.
#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

HostRun JudgeSample(const std::string& name, const std::vector<std::string>& more = {}) {
  std::vector<std::string> arguments{"health", "--replay", Sample(name)};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunHost(arguments);
}

class HealthFiles : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& text) {
    std::ofstream(folder / name, std::ios::binary) << text;
    return folder / name;
  }

  const test::TemporaryFolder folder;
};

TEST(HealthCommand, EndsWithTheCodesOfNagios) {
  EXPECT_EQ(JudgeSample("hba-only").exitCode, 0);
  EXPECT_EQ(JudgeSample("two-socket-server").exitCode, 1);
  EXPECT_EQ(JudgeSample("vroc").exitCode, 2);
  EXPECT_EQ(JudgeSample("no-bmc").exitCode, 3);
}

// A plug-in that ends with 1 or 2 when it could not look would be believed.
TEST(HealthCommand, EndsWithUnknownWhenItCannotJudge) {
  EXPECT_EQ(RunHost({"health", "--replay", "nowhere"}).exitCode, 3);
  EXPECT_EQ(RunHost({"health", "--brif"}).exitCode, 3);
  EXPECT_EQ(RunHost({"health", "--format", "xml"}).exitCode, 3);
  EXPECT_EQ(JudgeSample("hba-only", {"--set", "resets"}).exitCode, 3);
  EXPECT_EQ(JudgeSample("hba-only", {"--require", "sensor"}).exitCode, 3);
  EXPECT_EQ(JudgeSample("hba-only", {"--as-of", "yesterday"}).exitCode, 3);
  EXPECT_EQ(JudgeSample("hba-only", {"--rules", "nowhere.sql"}).exitCode, 3);
}

// They read standard output alone.
TEST(HealthCommand, TellsProgramsWhyItCannotJudge) {
  const HostRun nagios = RunHost({"health", "--replay", "nowhere", "--format", "nagios"});
  EXPECT_EQ(nagios.exitCode, 3);
  EXPECT_THAT(nagios.out, StartsWith("UNKNOWN - Read or collect this machine again: nowhere: "));
  EXPECT_THAT(nagios.error, StartsWith("pqhost: nowhere: "));
  const HostRun run = RunHost({"health", "--replay", "nowhere", "--format", "json"});
  EXPECT_EQ(run.exitCode, 3);
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["verdict"], "unknown");
  EXPECT_THAT(json["findings"][0]["observed"].get<std::string>(), StartsWith("nowhere: "));
  EXPECT_EQ(RunHost({"health", "--replay", "nowhere"}).out, "");
}

TEST(HealthCommand, TellsFindingsWithEvidenceReasonAndNextStep) {
  const HostRun run = JudgeSample("two-socket-server");
  EXPECT_THAT(run.out, StartsWith("WARNING   0 critical, 4 warning, 0 unknown, 3 notice; checked"));
  EXPECT_THAT(run.out, HasSubstr("warning   Replace drive 69:9 of lsi0 (HY8000NX0045, serial "
                                 "Z4K002C9144): S.M.A.R.T. alert, predictive failures 3, 37"));
  EXPECT_THAT(run.out, HasSubstr("drive.media-errors, lsi0 69:9: media errors 37 [storcli "));
  EXPECT_THAT(run.out, HasSubstr("\n          why       "));
  EXPECT_THAT(run.out, HasSubstr("\n          next      "));
  EXPECT_EQ(run.error, "");
}

TEST(HealthCommand, TellsALineForEachFindingWhenBrief) {
  const HostRun run = JudgeSample("two-socket-server", {"--brief"});
  EXPECT_THAT(run.out, HasSubstr("warning   Look at Fan 5"));
  EXPECT_THAT(run.out, Not(HasSubstr("why")));
}

TEST(HealthCommand, WritesJson) {
  const HostRun run = JudgeSample("two-socket-server", {"--format", "json"});
  const nlohmann::json health = nlohmann::json::parse(run.out);
  EXPECT_EQ(health["verdict"], "warning");
  EXPECT_EQ(health["exit"], 1);
  EXPECT_EQ(health["counts"]["warning"], 4);
  EXPECT_EQ(health["checked"]["drives"], 32);
  ASSERT_EQ(health["findings"].size(), 7U);
  const nlohmann::json& finding = health["findings"][1];
  EXPECT_EQ(finding["key"], "drive.predicted lsi0 69:9");
  EXPECT_EQ(finding["area"], "drives");
  EXPECT_EQ(finding["serial"], "Z4K002C9144");
  EXPECT_GE(finding["evidence"].size(), 3U);
  EXPECT_EQ(finding["evidence"][0]["place"]["class"], "LSILINK");
}

TEST(HealthCommand, WritesWhatNagiosReads) {
  const HostRun run = JudgeSample("hba-only", {"--format", "nagios"});
  EXPECT_EQ(
      run.out,
      "OK - checked 2 controllers, 3 drives, 1 optical drive | critical=0 warning=0 unknown=0 "
      "notice=0\n");
  EXPECT_THAT(JudgeSample("vroc", {"--format", "nagios"}).out,
              StartsWith("CRITICAL - Replace drive 2-4-0-0"));
}

TEST(HealthCommand, AsksForWhatIsRequired) {
  const HostRun run = JudgeSample("hba-only", {"--require", "sensors"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("Find out why the source \"sensors\" tells nothing"));
}

TEST(HealthCommand, JudgesAsOfAnotherDay) {
  const HostRun run = JudgeSample("amt-desktop", {"--as-of", "2026-11-20"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr("as of 2026-11-20 (--as-of)"));
}

TEST_F(HealthFiles, ReadsRulesSettingsAndSuppressions) {
  const std::string rules =
      Write("house.sql",
            "-- @rule drive.any\n-- @part drives\nSELECT 'critical', id, state FROM drives\n"
            "WHERE setting('resets') = 9;\n");
  const std::string settings = Write("our.settings", "resets = 9 # ours\n");
  EXPECT_EQ(JudgeSample("hba-only", {"--rules", rules}).exitCode, 0);
  EXPECT_EQ(JudgeSample("hba-only", {"--rules", rules, "--settings", settings}).exitCode, 2);
  EXPECT_EQ(JudgeSample("hba-only", {"--rules", rules, "--settings", settings, "--set", "resets=8"})
                .exitCode,
            0);
  const std::string known = Write("known.txt", "drive.any * # a test\n");
  const HostRun run =
      JudgeSample("hba-only", {"--rules", rules, "--settings", settings, "--suppress", known});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr("(would be critical; suppressed: a test)"));
}

TEST_F(HealthFiles, NamesFileAndLineOfAWrongRule) {
  const std::string rules =
      Write("house.sql", "-- @rule mine\n-- @part drives\nSELECT 'critical', id, sate FROM drives");
  const HostRun run = JudgeSample("hba-only", {"--rules", rules});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.error, "pqhost: " + rules + ":3: mine: no such column: sate\n");
}

TEST_F(HealthFiles, NamesFileAndLineOfASuppressionOfNoRule) {
  const std::string known = Write("known.txt", "drive.* * # any\n\ndrive.media-error * # a slip\n");
  const HostRun run = JudgeSample("hba-only", {"--suppress", known});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.error, "pqhost: " + known +
                           ":3: there is no rule drive.media-error; did you mean "
                           "drive.media-errors?\n");
  const std::string others = Write("others.txt", "collection.nothing all # no tools there\n");
  EXPECT_EQ(JudgeSample("no-bmc", {"--suppress", others}).exitCode, 0);
}

TEST_F(HealthFiles, TellsWhatMakesARecordingDoubtful) {
  std::filesystem::copy(Sample("hba-only"), folder / "it",
                        std::filesystem::copy_options::recursive);
  Write("it/submission.json", "{");
  const HostRun run = RunHost({"health", "--replay", folder / "it", "--format", "json"});
  EXPECT_THAT(run.error, HasSubstr("submission.json"));
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["findings"][0]["key"], "collection.doubt recording");
  EXPECT_THAT(json["findings"][0]["text"].get<std::string>(), HasSubstr("submission.json"));
}

TEST_F(HealthFiles, RefusesTextsThatAreNoUtf8) {
  const HostRun run = JudgeSample("hba-only", {"--settings", Write("s", "resets = 9 # \xff\n")});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.error, HasSubstr("it is not UTF-8"));
  const std::string nul = Write("zero.sql", std::string("-- @rule \0\n", 11));
  EXPECT_THAT(JudgeSample("hba-only", {"--rules", nul}).error,
              HasSubstr("zero.sql: it has a NUL character, so it is no text"));
}

TEST_F(HealthFiles, WritesToAFile) {
  const HostRun run = JudgeSample("hba-only", {"--output", folder / "verdict.txt"});
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.exitCode, 0);
  std::ifstream file(folder / "verdict.txt");
  std::string word;
  file >> word;
  EXPECT_EQ(word, "OK");
}

/// Two recordings in a folder that tells nothing of itself.
class HealthOfRecordings : public HealthFiles {
 protected:
  HealthOfRecordings() {
    for (const char* name : {"hba-only", "two-socket-server"}) {
      std::filesystem::copy(Sample(name), folder / name, std::filesystem::copy_options::recursive);
    }
  }

  /// One that cannot be read.
  void Break() {
    std::filesystem::create_directory(folder / "broken");
    Write("broken/recording.json", "{");
  }

  HostRun Judge(const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"health", "--replay", folder.Path().string()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunHost(arguments);
  }
};

TEST_F(HealthOfRecordings, HasOneVerdictForEachAndTheExitCodeOfTheWorst) {
  const HostRun run = Judge({"--brief"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, StartsWith("WARNING   2 machines: 0 critical, 1 warning, 0 unknown, 1 OK\n"
                                  "\n"
                                  "WARNING   two-socket-server (NODE31, serial NGR208-0031): 0 "
                                  "critical, 4 warning, 0 unknown, 3 notice\n"
                                  "  warning   Replace drive 0-2-0-0"));
  EXPECT_THAT(run.out,
              EndsWith("OK        hba-only: 0 critical, 0 warning, 0 unknown, 0 notice\n"));
  EXPECT_EQ(run.error, "");
}

TEST_F(HealthOfRecordings, ComesFromRecordingsNamedOneByOne) {
  const HostRun run = RunHost(
      {"health", "--replay", Sample("vroc"), "--replay", Sample("no-bmc"), "--format", "nagios"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.out, StartsWith("CRITICAL - 2 machines: 1 critical, 0 warning, 1 unknown, 0 OK; "
                                  "vroc: Replace drive 2-4-0-0"));
  EXPECT_THAT(run.out, HasSubstr("\nUNKNOWN - no-bmc: Find out why nothing"));
}

TEST_F(HealthOfRecordings, JudgesTheOthersWhenOneCannotBeRead) {
  Break();
  const HostRun warning = Judge({"--format", "json"});
  EXPECT_EQ(warning.exitCode, 1);  // A warning is worse than what nobody knows.
  const nlohmann::json all = nlohmann::json::parse(warning.out);
  EXPECT_EQ(all["machines"][0]["machine"], "broken");
  EXPECT_EQ(all["machines"][0]["health"]["verdict"], "unknown");
  EXPECT_THAT(all["machines"][0]["health"]["findings"][0]["observed"].get<std::string>(),
              HasSubstr("recording.json"));
  EXPECT_EQ(all["machines"][1]["health"]["verdict"], "ok");
  EXPECT_EQ(all["machines"][2]["name"], "NODE31");
  EXPECT_EQ(all["machines"][2]["recordedAt"], "2026-11-18T09:41:12+01:00");
  std::filesystem::remove_all(folder / "two-socket-server");
  EXPECT_EQ(Judge({}).exitCode, 3);
}

TEST_F(HealthOfRecordings, WritesCsvOfAll) {
  Break();
  const HostRun run = Judge({"--format", "csv"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("\r\nbroken,,,unknown,"));
  EXPECT_THAT(run.out, HasSubstr("\r\nhba-only,,,ok,"));
  EXPECT_THAT(run.out, HasSubstr("\r\ntwo-socket-server,NODE31,NGR208-0031,warning,"));
}

TEST_F(HealthOfRecordings, TellsWhichOneIsDoubtful) {
  Write("hba-only/submission.json", "{");
  EXPECT_THAT(Judge({"--brief"}).error, HasSubstr("pqhost: hba-only: submission.json"));
}

// It may be half of a recording that is still on its way.
TEST_F(HealthOfRecordings, KnowsNothingOfAFolderWithoutADescription) {
  std::filesystem::remove_all(folder / "two-socket-server");
  std::filesystem::create_directory(folder / "empty");
  std::filesystem::create_directory(folder / ".hidden");
  Write(".hidden/a", "");
  EXPECT_EQ(Judge({}).exitCode, 0);
  std::filesystem::create_directory(folder / "half");
  Write("half/sel.txt", "");
  const HostRun run = Judge({"--brief"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("UNKNOWN   half: "));
}

TEST_F(HealthOfRecordings, JudgesTheOthersWhenOneIsTooMuchForARule) {
  const std::string rules = Write("house.sql",
                                  "-- @rule big\n-- @part volumes\n"
                                  "SELECT 'notice', id, zeroblob(300000000) FROM volumes");
  const HostRun run = Judge({"--rules", rules, "--format", "json"});
  EXPECT_EQ(run.exitCode, 3);
  const nlohmann::json all = nlohmann::json::parse(run.out);
  EXPECT_EQ(all["machines"][0]["health"]["verdict"], "ok");
  EXPECT_EQ(all["machines"][1]["health"]["findings"][0]["observed"],
            rules +
                ":3: big: for this machine the query makes a value of more than 256 MiB; take "
                "the rule away, or let it ask for less");
}

// A script that asks a folder gets the same answer however many recordings have come.
TEST_F(HealthOfRecordings, HasTheFormOfSeveralAlsoForAFolderOfOne) {
  std::filesystem::remove_all(folder / "two-socket-server");
  const nlohmann::json all = nlohmann::json::parse(Judge({"--format", "json"}).out);
  EXPECT_EQ(all["machines"].size(), 1U);
  const HostRun one = JudgeSample("hba-only", {"--format", "json"});
  EXPECT_EQ(all["machines"][0]["health"], nlohmann::json::parse(one.out));
}

TEST_F(HealthOfRecordings, ObeysOptionsForEach) {
  const std::string known = Write("known.txt", "* * # all is known\n");
  EXPECT_EQ(Judge({"--suppress", known}).exitCode, 0);
  const std::string settings = Write("our.settings", "media_errors = 1000000\n");
  EXPECT_THAT(Judge({"--settings", settings}).out, Not(HasSubstr("drive.media-errors")));
  EXPECT_THAT(Judge({"--require", "amt"}).out,
              HasSubstr("Find out why the source \"amt\" tells nothing: this machine has no AMT"));
  EXPECT_THAT(Judge({"--as-of", "2030-01-01"}).out, HasSubstr("as of 2030-01-01 (--as-of)"));
}

TEST_F(HealthOfRecordings, AreNotJudgedByAWrongRule) {
  const std::string rules = Write("house.sql", "-- @rule r\n-- @part drives\nSELECT sate");
  const HostRun run = Judge({"--rules", rules, "--output", folder / "verdict.txt"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.error, "pqhost: " + rules + ":3: r: no such column: sate\n");
  EXPECT_FALSE(std::filesystem::exists(folder / "verdict.txt"));
}

TEST_F(HealthOfRecordings, RefusesALogFolderThatItWouldNotFill) {
  for (const HostRun& run :
       {Judge({"--log-folder", folder / "logs"}),
        RunHost({"health", "--replay", Sample("blade"), "--log-folder", folder / "logs"})}) {
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.error, HasSubstr("--log-folder has no use here without this machine's tools"));
    EXPECT_FALSE(std::filesystem::exists(folder / "logs"));
  }
}

TEST_F(HealthOfRecordings, WritesNothingIntoThem) {
  const HostRun run = Judge({"--output", folder / "hba-only/verdict.txt"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.error, HasSubstr("is in the recording, which stays as it is"));
}

TEST_F(HealthOfRecordings, WritesADatabaseOfAll) {
  Break();
  const std::string file = folder / "fleet.db";
  const HostRun run = Judge({"--format", "sqlite", "--output", file});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.error, "Database: " + file + "\n");
  const auto ask = [&](const std::string& sql) {
    return RunHost({"query", file, "--format", "csv", sql}).out;
  };
  EXPECT_EQ(ask("SELECT machine, value FROM machine WHERE name = 'verdict'"),
            "machine,value\r\nbroken,unknown\r\nhba-only,ok\r\ntwo-socket-server,warning\r\n");
  EXPECT_EQ(ask("SELECT machine, count(*) FROM findings GROUP BY machine"),
            "machine,count(*)\r\nbroken,1\r\ntwo-socket-server,7\r\n");
  EXPECT_EQ(ask("SELECT machine, count(*) FROM drives GROUP BY machine"),
            "machine,count(*)\r\nhba-only,4\r\ntwo-socket-server,32\r\n");
  EXPECT_EQ(ask("SELECT count(*) > 7 FROM findings JOIN evidence USING (machine, finding)"),
            "count(*) > 7\r\n1\r\n");
}

TEST_F(HealthFiles, WritesADatabaseWithTheVerdictOfItsOptions) {
  const std::string known = Write("known.txt", "* * # all is known\n");
  const std::string file = folder / "server.db";
  EXPECT_EQ(JudgeSample("two-socket-server",
                        {"--suppress", known, "--format", "sqlite", "--output", file})
                .exitCode,
            0);
  const std::string question =
      "SELECT value, suppressed, reason FROM machine, findings "
      "WHERE name = 'verdict' AND rule = 'sensor.threshold'";
  EXPECT_EQ(RunHost({"query", file, "--format", "csv", question}).out,
            "value,suppressed,reason\r\nok,warning,all is known\r\n");
}

TEST(HealthCommand, WritesNoDatabaseToATerminal) {
  const HostRun run =
      RunHost({"health", "--replay", Sample("hba-only"), "--format", "sqlite"}, {.out = true});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.out, "");
}

TEST(HealthCommand, WritesCsvOfOneMachineAsOfSeveral) {
  EXPECT_THAT(JudgeSample("hba-only", {"--format", "csv"}).out,
              EndsWith("\r\nhba-only,,,ok,2026-11-18T14:02:55,,,,,,,,,,,,,,\r\n"));
}

TEST(HealthCommand, WritesCsvOfWhatCannotBeRead) {
  const HostRun run = RunHost({"health", "--replay", "nowhere", "--format", "csv"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("\r\nnowhere,,,unknown,"));
}

TEST(HealthCommand, ListsItsRules) {
  const HostRun run = RunHost({"health", "--list-rules"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, HasSubstr("drive.media-errors"));
}

TEST(CollectCommand, BeginsWithTheVerdictOnATerminal) {
  const HostRun run =
      RunHost({"collect", "--replay", Sample("vroc")}, {.out = true, .error = true});
  EXPECT_THAT(run.out,
              HasSubstr("\n\nCRITICAL  1 critical, 0 warning, 0 unknown, 0 notice; checked "
                        "1 controller, 3 drives, 1 volume, 1 group\n"
                        "critical  Replace drive 2-4-0-0"));
}

// The verdict is not about the collection, which has all that it asked for.
TEST(CollectCommand, KeepsItsOwnExitCode) {
  EXPECT_EQ(
      RunHost({"collect", "--replay", Sample("two-socket-server"), "--format", "json"}).exitCode,
      RunHost({"collect", "--replay", Sample("two-socket-server"), "--format", "none"}).exitCode);
  EXPECT_EQ(RunHost({"collect", "--replay", Sample("two-socket-server")}).exitCode, 0);
}

TEST(CollectCommand, TellsTheSameVerdictAsHealth) {
  const auto collected = nlohmann::json::parse(
      RunHost({"collect", "--replay", Sample("two-socket-server"), "--format", "json"}).out);
  EXPECT_EQ(collected["health"],
            nlohmann::json::parse(JudgeSample("two-socket-server", {"--format", "json"}).out));
}

TEST(Readme, ShowsTheVerdictThatACollectionBeginsWith) {
  std::ifstream file(Sample("") + "../README.md", std::ios::binary);
  const std::string readme{std::istreambuf_iterator<char>(file), {}};
  const std::size_t begin = readme.find("```\nWARNING");
  ASSERT_NE(begin, std::string::npos);
  const std::string shown = readme.substr(begin + 4, readme.find("```", begin + 4) - begin - 4);
  EXPECT_THAT(RunHost({"collect", "--replay", Sample("two-socket-server")}).out,
              HasSubstr("\n" + shown));
}

}  // namespace
