// pqhost health: its formats, files and exit codes.
#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace {

using test::HostRun;
using test::RunHost;
using test::Sample;
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
  EXPECT_EQ(run.out,
            "OK - checked 2 controllers, 4 drives | critical=0 warning=0 unknown=0 notice=0\n");
  EXPECT_THAT(JudgeSample("vroc", {"--format", "nagios"}).out,
              StartsWith("CRITICAL - Replace drive 2-4-0-0"));
}

TEST(HealthCommand, AsksForWhatIsRequired) {
  const HostRun run = JudgeSample("hba-only", {"--require", "sensors"});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.out, HasSubstr("Find out why there is nothing of sensors"));
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

TEST_F(HealthFiles, RefusesTextsThatAreNoUtf8) {
  const HostRun run = JudgeSample("hba-only", {"--settings", Write("s", "resets = 9 # \xff\n")});
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_THAT(run.error, HasSubstr("it is not UTF-8"));
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

}  // namespace
