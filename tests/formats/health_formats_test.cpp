#include "host/formats/health_formats.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "host/text/screen_text.h"
#include "tests/support/collected.h"

namespace {

using host::HealthHit;
using host::Severity;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

/// A machine with findings of one hit each.
host::Health MakeHealth(const std::vector<HealthHit>& hits) {
  host::Health health;
  health.asOf = "2026-11-18T09:41:12";
  health.asOfFrom = "the collection";
  for (const HealthHit& hit : hits) {
    health.findings.push_back({hit.rule + " " + hit.id, hit.severity, {hit}});
  }
  if (!hits.empty()) health.worst = hits.front().severity;
  return health;
}

HealthHit MakeHit(Severity severity, const std::string& id, const std::string& text) {
  HealthHit hit;
  hit.rule = "drive.any";
  hit.severity = severity;
  hit.part = "drives";
  hit.id = id;
  hit.observed = "seen";
  hit.text = text;
  return hit;
}

TEST(HealthDocument, IsTheOneInDocs) {
  std::ifstream file(test::SamplesFolder() + "/../docs/health.md", std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(host::WriteHealthDocument(), written)
      << "docs/health.md is stale: pqhost health --list-rules > docs/health.md";
}

TEST(HealthTable, ObeysNothingThatAToolPrinted) {
  std::ostringstream out;
  host::WriteHealthTable(MakeHealth({MakeHit(Severity::kCritical, "x", "bad \x1b[2J\nword")}),
                         /*isBrief=*/false, {}, out);
  EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
  EXPECT_NE(out.str().find("bad \\x1b[2J\\nword"), std::string::npos);
}

TEST(HealthTable, SpellsWhatWasChecked) {
  host::Health health = MakeHealth({});
  health.checked = {{"leds", 6}, {"self_tests", 1}, {"optical_drives", 2}, {"leds", 1}};
  std::ostringstream out;
  host::WriteHealthTable(health, /*isBrief=*/true, {}, out);
  EXPECT_THAT(out.str(), HasSubstr("checked 6 LEDs, 1 self-test, 2 optical drives, 1 LED\n"));
}

TEST(HealthTable, PutsNoticesOfOneRuleIntoOneLine) {
  std::ostringstream out;
  host::WriteHealthTable(MakeHealth({MakeHit(Severity::kNotice, "one", "Look at one"),
                                     MakeHit(Severity::kNotice, "two", "b"),
                                     MakeHit(Severity::kNotice, "three", "c")}),
                         /*isBrief=*/false, {}, out);
  EXPECT_THAT(out.str(),
              HasSubstr("notice    Look at one; likewise 2 more drives: two (seen), three (seen)\n"
                        "          rule      drive.any\n"));
}

TEST(HealthNagios, KeepsTextsApartFromItsOwnSigns) {
  std::ostringstream out;
  host::WriteHealthNagios(MakeHealth({MakeHit(Severity::kWarning, "x", "a | b\nc")}), out);
  EXPECT_EQ(out.str(),
            "WARNING - a / b\\nc | critical=0 warning=1 unknown=0 notice=0\n"
            "warning: a / b\\nc\n  drive.any, x: seen\n");
}

// --- the beginning of a collection's tables ---

std::string WriteSummary(const host::Health& health, const host::Screen& screen = {}) {
  std::ostringstream out;
  host::WriteHealthSummary(health, screen, out);
  return out.str();
}

std::vector<HealthHit> MakeHits(Severity severity, std::size_t count) {
  std::vector<HealthHit> hits;
  for (std::size_t i = 1; i <= count; ++i) {
    const std::string number = std::to_string(i);
    hits.push_back(MakeHit(severity, number, "Replace drive " + number));
    hits.back().rule = "rule." + number;
  }
  return hits;
}

TEST(HealthSummary, HasALineForEachOfEightFindings) {
  const std::string text = WriteSummary(MakeHealth(MakeHits(Severity::kWarning, 8)));
  EXPECT_THAT(text, StartsWith("WARNING   0 critical, 8 warning, 0 unknown, 0 notice; checked"));
  EXPECT_THAT(text, EndsWith("warning   Replace drive 7\nwarning   Replace drive 8\n"));
}

TEST(HealthSummary, CountsTheFindingsThatItLeavesOut) {
  std::vector<HealthHit> hits = MakeHits(Severity::kWarning, 9);
  hits.push_back(MakeHit(Severity::kUnknown, "u", "Ask again"));
  hits.push_back(MakeHit(Severity::kNotice, "n", "See"));
  hits.push_back(MakeHit(Severity::kNotice, "m", "See"));
  EXPECT_THAT(WriteSummary(MakeHealth(hits)),
              EndsWith("warning   Replace drive 8\n"
                       "          and 1 warning, 1 unknown, 2 notice more; pqhost health shows "
                       "all\n"));
}

TEST(HealthSummary, FitsEveryScreen) {
  host::Health health = MakeHealth(MakeHits(Severity::kCritical, 9));
  health.checked = {{"drives", 32}, {"missing_drives", 1}, {"batteries", 1}};
  for (const unsigned width : {1U, 20U, 29U, 30U, 80U}) {
    std::istringstream lines(WriteSummary(health, {.width = width}));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(host::MeasureWidth(line), std::max(width, 20U)) << line;
    }
  }
}

// --- several machines ---

host::JudgedMachine MakeMachine(const std::string& name, const std::vector<HealthHit>& hits) {
  host::JudgedMachine machine;
  machine.machine = name;
  machine.health = MakeHealth(hits);
  return machine;
}

/// One that is well, one of a critical and a notice, one that is unknown.
std::vector<host::JudgedMachine> MakeMachines() {
  std::vector<host::JudgedMachine> machines{
      MakeMachine("first", {}),
      MakeMachine("second", {MakeHit(Severity::kUnknown, "u", "Ask | again")}),
      MakeMachine("third", {MakeHit(Severity::kCritical, "c", "Replace it"),
                            MakeHit(Severity::kNotice, "n", "See")})};
  machines[0].health.checked = {{"drives", 2}};
  machines[2].name = "NODE3";
  machines[2].serial = "S3";
  return machines;
}

TEST(HealthOfSeveral, IsThatOfTheWorst) {
  EXPECT_EQ(host::FindWorst(MakeMachines()), Severity::kCritical);
  EXPECT_EQ(host::FindWorst({MakeMachine("a", {MakeHit(Severity::kUnknown, "u", "")}),
                             MakeMachine("b", {MakeHit(Severity::kWarning, "w", "")})}),
            Severity::kWarning);
  EXPECT_EQ(host::FindWorst(
                {MakeMachine("a", {}), MakeMachine("b", {MakeHit(Severity::kUnknown, "u", "")})}),
            Severity::kUnknown);
  EXPECT_EQ(host::FindWorst({MakeMachine("a", {})}), Severity::kNotice);
}

TEST(HealthOfSeveral, BeginsWithALineForAllAndGoesOnWithTheWorst) {
  std::ostringstream out;
  host::WriteHealthTable(MakeMachines(), /*isBrief=*/true, {}, out);
  EXPECT_EQ(out.str(),
            "CRITICAL  3 machines: 1 critical, 0 warning, 1 unknown, 1 OK\n\n"
            "CRITICAL  third (NODE3, serial S3): 1 critical, 0 warning, 0 unknown, 1 notice\n"
            "  critical  Replace it\n"
            "  notice    See\n"
            "UNKNOWN   second: 0 critical, 0 warning, 1 unknown, 0 notice\n"
            "  unknown   Ask | again\n"
            "OK        first: 0 critical, 0 warning, 0 unknown, 0 notice\n");
}

TEST(HealthOfSeveral, TellsOfEachAllThatIsToldOfOne) {
  std::ostringstream out;
  host::WriteHealthTable(MakeMachines(), /*isBrief=*/false, {}, out);
  EXPECT_THAT(out.str(), HasSubstr("\n\nOK        first: 0 critical, 0 warning, 0 unknown, "
                                   "0 notice; checked 2 drives\n"
                                   "          as of 2026-11-18T09:41:12 (the collection)\n"));
  EXPECT_THAT(out.str(), HasSubstr("critical  Replace it\n"
                                   "          critical  drive.any, c: seen\n"));
}

TEST(HealthOfSeveral, IsALineEachForNagios) {
  std::ostringstream out;
  host::WriteHealthNagios(MakeMachines(), out);
  EXPECT_EQ(out.str(),
            "CRITICAL - 3 machines: 1 critical, 0 warning, 1 unknown, 1 OK; third: Replace it | "
            "machines_critical=1 machines_warning=0 machines_unknown=1 machines_ok=1\n"
            "CRITICAL - third: Replace it\n"
            "UNKNOWN - second: Ask / again\n"
            "OK - first: checked 2 drives\n");
}

TEST(HealthOfSeveral, IsJsonInTheOrderThatWasAskedFor) {
  std::ostringstream out;
  const std::vector<host::JudgedMachine> machines = MakeMachines();
  host::WriteHealthJson(machines, out);
  const auto all = nlohmann::json::parse(out.str());
  EXPECT_EQ(all["verdict"], "critical");
  EXPECT_EQ(all["exit"], 2);
  EXPECT_EQ(all["counts"],
            nlohmann::json::parse(R"({"critical":1,"warning":0,"unknown":1,"ok":1})"));
  ASSERT_EQ(all["machines"].size(), 3U);
  EXPECT_EQ(all["machines"][1]["machine"], "second");
  EXPECT_EQ(all["machines"][2]["serial"], "S3");
  EXPECT_EQ(all["machines"][2]["health"],
            nlohmann::json::parse(host::MakeHealthJson(machines[2].health)));
}

TEST(HealthCsv, HasARowForEachFindingAndForAMachineWithoutAny) {
  std::ostringstream out;
  host::WriteHealthCsv(MakeMachines(), {}, out);
  EXPECT_EQ(out.str(),
            "machine,machine_name,machine_serial,verdict,as_of,position,finding,severity,area,part,"
            "id,serial,rule,observed,text,why,next,suppressed,reason\r\n"
            "first,,,ok,2026-11-18T09:41:12,,,,,,,,,,,,,,\r\n"
            "second,,,unknown,2026-11-18T09:41:12,1,drive.any u,unknown,,drives,u,,drive.any,seen,"
            "Ask | again,,,,\r\n"
            "third,NODE3,S3,critical,2026-11-18T09:41:12,1,drive.any c,critical,,drives,c,,"
            "drive.any,seen,Replace it,,,,\r\n"
            "third,NODE3,S3,critical,2026-11-18T09:41:12,2,drive.any n,notice,,drives,n,,"
            "drive.any,seen,See,,,,\r\n");
}

TEST(HealthCsv, IsNothingThatATerminalObeys) {
  std::ostringstream out;
  host::WriteHealthCsv({MakeMachine("m", {MakeHit(Severity::kWarning, "\x1b[2J", "")})},
                       {.isTerminal = true}, out);
  EXPECT_THAT(out.str(), Not(HasSubstr("\x1b")));
}

}  // namespace
