#include "host/answers/health/health.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/read_parts.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/usage_error.h"
#include "tests/answers/health/judged.h"
#include "tests/support/collected.h"
#include "tests/support/samples.h"

namespace {

using namespace test;
using host::HealthOptions;
using host::Parts;

/// Severity and key of each finding.
std::vector<std::string> ListKeys(const host::Health& health) {
  std::vector<std::string> list;
  for (const host::HealthFinding& finding : health.findings) {
    list.push_back(std::string(host::GetWord(finding.severity)) + " " + finding.key);
  }
  return list;
}

/// A machine with a trouble of each kind.
Parts MakeTroubledParts() {
  Parts parts;
  AddSource(parts, "lsi", "read");
  AddSource(parts, "sel", "read");
  AddController(parts).status = "Needs Attention";
  AddVolume(parts, "lsi0 v0", "Dgrd");
  for (const char* id : {"lsi0 69:1", "lsi0 69:2", "lsi0 69:3"}) {
    AddDrive(parts, id, "Onln").group = "lsi0 g0";
  }
  parts.drives[1].state = "Offln";
  parts.drives[1].condition = "failed";
  parts.drives[2].mediaErrors = 4;
  parts.drives[2].serial = "SN3";
  AddSensor(parts, "FAN1", 4, "nc");
  AddLsiEvent(parts, 0x60, "drives", "lsi0 69:3");
  AddSelEvent(parts, "CPU1 Status", 7, 0x6f, 1);
  return parts;
}

HealthOptions WithRules(const std::string& text) {
  HealthOptions options;
  host::AddRules(options.rules, host::ReadOwnRules(text, "house.sql"));
  return options;
}

/// The words of the error that judging `rules` ends with.
std::string Refuse(const std::string& rules) {
  try {
    Judge(MakeTroubledParts(), WithRules(rules));
  } catch (const host::HealthFileError& error) {
    return error.what();
  }
  return "judged";
}

TEST(Health, IsUnknownWhenNothingWasLookedAt) {
  const host::Health health = Judge({});
  EXPECT_STREQ(host::GetVerdict(health), "UNKNOWN");
  EXPECT_EQ(host::GetExitCode(health), 3);
}

TEST(Health, IsOkWhenNothingIsWrong) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln");
  const host::Health health = Judge(parts);
  EXPECT_STREQ(host::GetVerdict(health), "OK");
  EXPECT_EQ(host::GetExitCode(health), 0);
  EXPECT_TRUE(health.findings.empty());
}

TEST(Health, JoinsHitsOfOneCause) {
  EXPECT_EQ(ListKeys(Judge(MakeTroubledParts())),
            (std::vector<std::string>{
                // Nothing protects the other drives of the volume any more.
                "critical drive.failed lsi0 69:2", "critical drive.media-errors lsi0 69:3",
                "critical sel.event CPU1 Status", "warning sensor.threshold FAN1"}));
}

TEST(Health, NamesEveryPartThatMayBeTheCause) {
  Parts parts;
  AddController(parts).status = "Needs Attention";
  AddCacheBackup(parts, "BBU", "Failed");
  AddCacheBackup(parts, "CacheVault", "Failed");
  EXPECT_EQ(GetHit(Judge(parts), "controller.status").because,
            (std::vector<std::string>{"lsi0 BBU", "lsi0 CacheVault"}));
}

TEST(Health, SaysOfEachSourceWhetherSomethingOfItWasRead) {
  const std::pair<const char*, void (*)(Parts&)> sources[] = {
      {"lsi", [](Parts& p) { AddController(p); }},
      {"microchip", [](Parts& p) { AddDrive(p, "mchp1 0,1", "Online"); }},
      {"sensors", [](Parts& p) { AddSensor(p, "FAN1", 4, "ok"); }},
      {"sel", [](Parts& p) { AddSelEvent(p, "CPU1 Status", 7, 0x6f, 1, true, kLongAgo); }},
      {"amt", [](Parts& p) { AddOtherEvent(p, "AMT", 0, "entry", kLongAgo); }},
      {"power supplies", [](Parts& p) { p.powerSupplies.emplace_back().id = "PSU 1"; }},
      {"leds", [](Parts& p) { p.leds.emplace_back().id = "ID"; }},
      {"self-test", [](Parts& p) { p.selfTests.emplace_back().id = "BMC self-test"; }},
  };
  for (const auto& [id, addPart] : sources) {
    Parts parts;
    AddSource(parts, id, "failed");
    const std::string nothing = GetHit(Judge(parts), "collection.failed").text;
    EXPECT_EQ(nothing.find("not all of"), std::string::npos) << nothing;
    addPart(parts);
    const std::string some = GetHit(Judge(parts), "collection.failed").text;
    EXPECT_NE(some.find("not all of"), std::string::npos) << some;
  }
}

TEST(Health, TellsWhereItsEvidenceIs) {
  Parts parts = MakeTroubledParts();
  NotePlace(parts.drives[2], "media_errors",
            {"LSILINK", 1, "pdlist", 77, "storcli /c0/eall/sall show all"});
  const host::Health health = Judge(parts);
  EXPECT_EQ(GetHit(health, "drive.media-errors").place.line, 77);
  EXPECT_EQ(GetHit(health, "drive.failed").place, parts.drives[1].readAt);
  EXPECT_EQ(GetHit(health, "lsi.event").place, parts.events[0].readAt);
}

TEST(Health, ShowsTheLastEntryOfTheLogThatIsMeant) {
  Parts parts;
  AddOtherEvent(parts, "SAS2", 1, "volume degraded", "").readAt = {"SAS2LOG", 1, "log", 5, "sas2"};
  AddOtherEvent(parts, "SAS2", 0, "started", "");
  AddOtherEvent(parts, "Microchip", 3, "cable lost");
  EXPECT_EQ(GetHit(Judge(parts), "sas2.event").place.line, 5);
}

TEST(Health, DoesNotDependOnTheOrderOfParts) {
  const Parts parts = MakeTroubledParts();
  const std::vector<std::string> expected = ListKeys(Judge(parts));
  std::mt19937 random(7);
  for (int i = 0; i < 10; ++i) {
    Parts shuffled = parts;
    std::shuffle(shuffled.drives.begin(), shuffled.drives.end(), random);
    test::ShuffleEvents(shuffled, random);
    std::shuffle(shuffled.sources.begin(), shuffled.sources.end(), random);
    EXPECT_EQ(ListKeys(Judge(shuffled)), expected);
  }
}

TEST(Health, IsNotChangedByWhatIsOld) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln");
  AddController(parts).status = "Optimal";
  ASSERT_STREQ(host::GetVerdict(Judge(parts)), "OK");
  for (int code = 0; code < 0x200; ++code) {
    AddLsiEvent(parts, code, "controllers", "lsi0", kLongAgo).level = 4;
    AddLsiEvent(parts, code, "drives", "lsi0 69:9", kLongAgo).sense = "3/11/00";
  }
  for (int type = 0; type < 0x30; ++type) {
    for (int bit = 0; bit < 16; ++bit) AddSelEvent(parts, "old", type, 0x6f, bit, true, kLongAgo);
  }
  for (const char* source : {"AMT", "Microchip"}) AddOtherEvent(parts, source, 3, "old", kLongAgo);
  EXPECT_STREQ(host::GetVerdict(Judge(parts)), "OK");
}

TEST(Health, NeverBecomesOkWhenASourceFails) {
  for (const char* id :
       {"lsi", "microchip", "intel", "sensors", "sel", "power supplies", "leds", "amt", "sas2"}) {
    Parts parts;
    AddDrive(parts, "lsi0 69:9", "Onln");
    AddSource(parts, id, "failed").observed = "no answer";
    EXPECT_STREQ(host::GetVerdict(Judge(parts)), "UNKNOWN") << id;
  }
}

TEST(Health, KnowsEveryStateOfEverySensorOnce) {
  // Event type, sensor type and offset; every one of them fires as a state or as an event.
  int count = 0;
  for (int eventType = 0; eventType <= 0x7f; ++eventType) {
    for (int type : {0x05, 0x07, 0x08, 0x09, 0x0c, 0x0d, 0x0f, 0x10, 0x12, 0x13, 0x1b, 0x20, 0x21,
                     0x23, 0x28, 0x29, 0x2a}) {
      if (eventType != 0x6f && type != 0x2a) continue;
      Parts parts;
      AddDiscrete(parts, "sensor", type, eventType, 0xffff);
      for (const host::HealthFinding& finding : Judge(parts).findings) {
        for (const host::HealthHit& hit : finding.hits) count += hit.rule == "sensor.state" ? 1 : 0;
      }
    }
  }
  EXPECT_EQ(count, 97);
}

TEST(Health, TakesSettings) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln").mediaErrors = 3;
  HealthOptions options;
  host::TakeSetting("media_errors = 3", options.settings);
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "OK");
  EXPECT_THROW(host::TakeSetting("media_error=3", options.settings), host::UsageError);
  EXPECT_THROW(host::TakeSetting("media_errors=three", options.settings), host::UsageError);
  EXPECT_THROW(host::TakeSetting("media_errors=-1", options.settings), host::UsageError);
  host::TakeSettings("# ours\n\nresets=9 # many\n", "f", options.settings);
  EXPECT_EQ(options.settings["resets"], 9);
  try {
    host::TakeSettings("resets=9\nrests=9\n", "our.settings", options.settings);
    ADD_FAILURE();
  } catch (const host::HealthFileError& error) {
    EXPECT_TRUE(std::string(error.what()).starts_with("our.settings:2: there is no setting rests"))
        << error.what();
  }
}

TEST(Health, CountsTheDaysOfTheWindow) {
  Parts parts;
  AddController(parts).status = "Optimal";
  AddLsiEvent(parts, 0xda, "controllers", "lsi0", "2026-11-10T12:00:01");
  HealthOptions options;
  options.settings["recent_days"] = 10;
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "WARNING");
  test::ChangeEvent(parts, 0, [](host::Event& event) { event.time = "2026-11-10T11:59:59"; });
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "OK");
  options.asOf = "2026-11-19";
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "WARNING");
}

TEST(Health, TakesItsTimeFromTheMachine) {
  Parts parts;
  AddController(parts);
  EXPECT_EQ(host::JudgeParts(parts, kNow, {}).asOf, kNow);
  AddLsiEvent(parts, 1, "controllers", "lsi0", "2026-03-01T00:00:00");
  AddLsiEvent(parts, 1, "controllers", "lsi0", "2026-02-01T00:00:00");
  EXPECT_EQ(host::JudgeParts(parts, kNow, {}).asOf, "2026-03-01T00:00:00");
  AddSource(parts, "sensors", "read").time = "2026-02-03T00:00:00";
  EXPECT_EQ(host::JudgeParts(parts, kNow, {}).asOf, "2026-02-03T00:00:00");
  EXPECT_EQ(host::JudgeParts(parts, kNow, {}).asOfFrom,
            "the machine's clock, as the list of its sensors tells");
  parts.controllers[0].systemTime = "2026-02-02T00:00:00";
  EXPECT_EQ(host::JudgeParts(parts, kNow, {}).asOf, "2026-02-02T00:00:00");
}

TEST(Health, CountsWhatThereIsToLookAt) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln");
  for (const auto& [media, model] :
       {std::pair("DVD", "QL-24X"), std::pair("Unknown", "BD-RE  BH10")}) {
    host::Drive& drive = AddDrive(parts, std::string("lsi0 15:") + media, "JBOD");
    drive.media = media;
    drive.model = model;
    drive.size = 0;
  }
  AddCacheBackup(parts, "BBU", "Optimal");
  AddCacheBackup(parts, "ZMM", "ZMM not installed");
  const std::vector<std::pair<std::string, std::size_t>> expected{
      {"drives", 1}, {"optical_drives", 2}, {"cache_backups", 1}};
  EXPECT_EQ(Judge(parts).checked, expected);
}

TEST(Health, AsksRulesOfAUser) {
  const std::string rule =
      "-- a house rule\n-- @rule volume.mine\n-- @part volumes\n-- @why Ours.\n"
      "SELECT 'warning', id, 'state ' || state FROM volumes;\n";
  const host::Health health = Judge(MakeTroubledParts(), WithRules(rule));
  const host::HealthHit& hit = GetHit(health, "volume.mine", "lsi0 v0");
  EXPECT_EQ(hit.text, "lsi0 v0: state Dgrd");
  EXPECT_EQ(hit.area, "arrays");
  EXPECT_EQ(hit.why, "Ours.");
}

TEST(Health, ReadsTextsOfARuleOverLines) {
  const std::string rule =
      "-- @rule mine\n-- @part drives\n-- @why First,\n--   second,\n--     third.\n"
      "-- no text\n--   nor this\n-- @next Look.\nSELECT 'notice', id, 1 FROM drives";
  const host::Health health = Judge(MakeTroubledParts(), WithRules(rule));
  EXPECT_EQ(GetHit(health, "mine").why, "First, second, third.");
  EXPECT_EQ(GetHit(health, "mine").next, "Look.");
}

TEST(Health, LetsARuleOfAUserReplaceAnother) {
  const std::string rule =
      "-- @rule drive.media-errors\n-- @part drives\n"
      "SELECT 'notice', id, media_errors FROM drives WHERE media_errors > setting('media_errors')";
  const host::Health health = Judge(MakeTroubledParts(), WithRules(rule));
  EXPECT_EQ(GetHit(health, "drive.media-errors").severity, host::Severity::kNotice);
}

TEST(Health, TakesARuleThatSaysTheSameOfAPartManyTimes) {
  Parts parts;
  AddVolume(parts, "lsi0 v0", "Optl");
  for (int i = 0; i < 100; ++i) AddDrive(parts, "lsi0 9:" + std::to_string(i), "Onln");
  const host::Health health = Judge(
      parts,
      WithRules(
          "-- @rule mine\n-- @part volumes\nSELECT 'notice', v.id, 1 FROM volumes v, drives"));
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].hits.size(), 100U);
}

TEST(Health, RefusesRulesByFileAndLine) {
  const std::string head = "-- @rule mine\n-- @part drives\n\n";
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id FROM drives"),
            "house.sql:4: mine: the answer needs three columns: severity, id, observed");
  EXPECT_EQ(Refuse(head + "SELECT 'bad', id, state FROM drives"),
            "house.sql:4: mine: \"bad\" is no severity: critical, warning, notice or unknown");
  EXPECT_EQ(
      Refuse(head + "SELECT 'two\nlines', id, state FROM drives"),
      "house.sql:4: mine: \"two lines\" is no severity: critical, warning, notice or unknown");
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, wrong FROM drives"),
            "house.sql:4: mine: no such column: wrong");
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, setting('wrong') FROM drives"),
            "house.sql:4: mine: there is no setting wrong");
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, state, '', '', 1 AS other FROM drives"),
            "house.sql:4: mine: column 6 of the answer has to be part, area or event");
  EXPECT_EQ(Refuse(head), "house.sql:1: mine has no SELECT");
  EXPECT_EQ(Refuse("-- @rule mine\nSELECT 1"),
            "house.sql:1: mine does not say which parts it judges: add -- @part TABLE");
  EXPECT_EQ(Refuse("-- @rule mine\n-- @part wheels\nSELECT 1"),
            "house.sql:2: there is no table of parts wheels");
  const std::string areas =
      "areas are arrays, drives, controllers, cooling, temperatures, power, voltages, memory, "
      "sensors, bmc, log, network, amt, collection";
  EXPECT_EQ(Refuse("-- @rule mine\n-- @part drives\n-- @area drivers\nSELECT 1"),
            "house.sql:3: there is no area drivers; did you mean drives?; " + areas);
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, state, '', '', 'wheels' AS area FROM drives"),
            "house.sql:4: mine: there is no area wheels; " + areas);
  EXPECT_EQ(Refuse("-- @rule mine\n-- @part drives\n-- @reason x\nSELECT 1"),
            "house.sql:3: there is no @reason");
  EXPECT_EQ(Refuse("SELECT 1"), "house.sql:1: a statement begins with a line \"-- @rule ID\"");
  EXPECT_EQ(Refuse("-- nothing\n"), "house.sql:1: there is no rule in it");
}

TEST(Health, LetsRulesOnlyRead) {
  const std::string head = "-- @rule mine\n-- @part drives\n";
  EXPECT_EQ(Refuse(head + "DELETE FROM drives"),
            "house.sql:3: mine: the query would change the database; only reading is possible");
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, randomblob(3) FROM drives"),
            "house.sql:3: mine: a query cannot use the function randomblob");
  EXPECT_EQ(Refuse(head + "SELECT 'warning', id, 1 FROM drives; DELETE FROM drives"),
            "house.sql:3: mine: the query has more than one statement");
}

TEST(Health, SuppressesWhatIsKnown) {
  HealthOptions options;
  options.suppressions = host::ReadSuppressions(
      "drive.* SN3 # spare is ordered\n"
      "drive.failed \"lsi0 69:2\" until=2026-11-19 # until yesterday\n",
      "known.txt");
  const host::Health health = Judge(MakeTroubledParts(), options);
  const host::HealthHit& known = GetHit(health, "drive.media-errors");
  EXPECT_EQ(known.severity, host::Severity::kNotice);
  EXPECT_EQ(known.suppressed, host::Severity::kCritical);
  EXPECT_EQ(known.reason, "spare is ordered");
  const host::HealthHit& over = GetHit(health, "drive.failed");
  EXPECT_EQ(over.severity, host::Severity::kCritical);
  EXPECT_EQ(over.observed, "Offln (suppressed until 2026-11-19: until yesterday)");
}

TEST(Health, RefusesSuppressionsByLine) {
  const auto refuse = [](const char* text) -> std::string {
    try {
      host::ReadSuppressions(text, "known.txt");
    } catch (const host::HealthFileError& error) {
      return error.what();
    }
    return "read";
  };
  EXPECT_EQ(refuse("\n# all\ndrive.failed *\n"),
            "known.txt:3: there is no reason: end the line with # and why");
  EXPECT_EQ(refuse("drive.failed lsi0 69:2 # blank\n"),
            "known.txt:1: a line is RULE ID [until=DATE] # REASON; an id with blanks is in "
            "quotation marks");
  EXPECT_EQ(refuse("drive.failed * until=soon # ?\n"),
            "known.txt:1: until needs a day, as in until=2026-12-31");
}

TEST(Health, FitsPatterns) {
  EXPECT_TRUE(host::FitsPattern("drive.failed", "drive.*"));
  EXPECT_TRUE(host::FitsPattern("drive.failed", "*"));
  EXPECT_TRUE(host::FitsPattern("a.b.c", "*.b*c"));
  EXPECT_TRUE(host::FitsPattern("", "*"));
  EXPECT_FALSE(host::FitsPattern("drive.failed", "drive"));
  EXPECT_FALSE(host::FitsPattern("a.b", "*.c"));
}

TEST(Health, AsksForWhatIsRequired) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9", "Onln");
  AddSource(parts, "lsi", "read");
  AddSource(parts, "sensors", "none").observed = "tool missing";
  HealthOptions options;
  host::TakeRequired("lsi", options.required);
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "OK");
  host::TakeRequired("lsi, sensors", options.required);
  EXPECT_STREQ(host::GetVerdict(Judge(parts, options)), "UNKNOWN");
  EXPECT_THROW(host::TakeRequired("sensor", options.required), host::UsageError);
}

TEST(Health, CountsNothingThatIsMissing) {
  Parts parts;
  AddDrive(parts, "mchp1 0,1", "Failed");
  parts.missingDrives.emplace_back().id = "mchp1 v0 segment 1";
  EXPECT_EQ(Judge(parts).checked,
            (std::vector<std::pair<std::string, std::size_t>>{{"drives", 1}}));
}

TEST(Health, SortsByNumbers) {
  Parts parts;
  for (const char* id : {"lsi0 52:11", "lsi0 52:4", "lsi0 8:30"}) {
    AddDrive(parts, id, "Onln").otherErrors = 1;
  }
  std::vector<std::string> ids;
  for (const auto& finding : Judge(parts).findings) ids.push_back(finding.hits.front().id);
  EXPECT_THAT(ids, testing::ElementsAre("lsi0 8:30", "lsi0 52:4", "lsi0 52:11"));
}

// The words that anybody may have added to a part must not become columns or reasons.
TEST(Health, TakesTextsOfToolsAsTexts) {
  Parts parts;
  AddDrive(parts, "lsi0 69:9'; DROP TABLE drives; --", "Offln");
  AddSensor(parts, "FAN;lsi0 69:9", 4, "cr");
  EXPECT_EQ(Judge(parts).findings.size(), 2U);
}

// What was made for the machine before must not be seen in the next.
TEST(Health, OfOneMachineSaysNothingOfTheNext) {
  host::HealthJudge judge;
  const Parts troubled = MakeTroubledParts();
  const std::vector<std::string> expected = ListKeys(Judge(troubled));
  Parts well;
  AddDrive(well, "lsi0 69:2", "Onln");
  AddSensor(well, "FAN1", 4, "ok");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(ListKeys(judge.JudgeParts(troubled, kNow)), expected);
    EXPECT_STREQ(host::GetVerdict(judge.JudgeParts(well, kNow)), "OK");
    EXPECT_STREQ(host::GetVerdict(judge.JudgeParts({}, kNow)), "UNKNOWN");
  }
}

/// A line of a report of the sample, from 1; the number is that of a hit's place.
std::string ReadReportLine(const host::Collection& collection, const host::Place& place) {
  const host::CollectedRows rows(collection);
  const auto row = rows.ListRows(place.className)[static_cast<std::size_t>(place.row - 1)];
  const auto text = row.FindText(place.key);
  host::ReportLine line;
  host::ReportLines lines(text ? text->View() : std::string_view());
  while (lines.Next(line)) {
    if (line.number == place.line) return std::string(line.text);
  }
  return {};
}

TEST(Health, ShowsEvidenceThatIsThere) {
  struct Evidence {
    const char* rule;
    const char* id;
    const char* words;
  };
  constexpr Evidence kEvidence[] = {
      {"drive.media-errors", "lsi0 69:9", "Media Error Count = 37"},
      {"drive.predicted", "lsi0 69:9", "Predictive Failure Count = 3"},
      {"drive.rebuilding", "lsi0 69:14", "Rbld"},
      {"volume.degraded", "lsi0 v3", "Dgrd"},
      {"microchip.event", "mchp1", "Write cache disabled"},
  };
  const host::Collection collection = host::Collect(test::LoadSamples().at("two-socket-server"));
  const host::Health health =
      host::JudgeCollection(collection, host::ReadParts(collection), HealthOptions());
  for (const Evidence& evidence : kEvidence) {
    const host::HealthHit* hit = FindHit(health, evidence.rule, evidence.id);
    ASSERT_NE(hit, nullptr) << evidence.rule;
    const std::string line = ReadReportLine(collection, hit->place);
    EXPECT_NE(line.find(evidence.words), std::string::npos) << evidence.rule << ": " << line;
  }
}

struct SampleVerdict {
  const char* sample;
  const char* verdict;
  std::vector<std::string> findings;  ///< that alarm
};

// What a person finds in the samples' reports.
TEST(Health, JudgesTheSamplesAsPeopleDo) {
  const SampleVerdict kVerdicts[] = {
      {"amt-desktop", "CRITICAL", {"critical amt.event amt"}},
      {"bare-machine", "UNKNOWN", {"unknown collection.nothing all"}},
      {"blade",
       "WARNING",
       {"warning sensor.threshold P1 Temp", "warning sensor.state Watchdog",
        "warning bmc.self-test BMC self-test", "unknown sensor.state P0 Status",
        "unknown sensor.state P1 Status"}},
      {"bmc-unreachable",
       "UNKNOWN",
       {"unknown collection.nothing all", "unknown collection.failed leds",
        "unknown collection.failed power supplies", "unknown collection.failed sel",
        "unknown collection.failed self-test", "unknown collection.failed sensors",
        "unknown collection.unread 1"}},
      {"hba-only", "OK", {}},
      {"hostile",
       "UNKNOWN",
       {"unknown collection.failed lsi", "unknown collection.failed sensors",
        "unknown collection.unread 1", "unknown collection.unread 5"}},
      {"no-bmc", "UNKNOWN", {"unknown collection.nothing all"}},
      {"no-controller", "UNKNOWN", {"unknown collection.nothing all"}},
      {"two-socket-server",
       "WARNING",
       {"warning drive.predicted intel 0-2-0-0", "warning drive.predicted lsi0 69:9",
        "warning volume.degraded lsi0 v3", "warning sensor.threshold Fan 5"}},
      {"vroc", "CRITICAL", {"critical drive.failed intel 2-4-0-0"}},
  };
  const auto samples = test::LoadSamples();
  EXPECT_EQ(samples.size(), std::size(kVerdicts));
  for (const SampleVerdict& expected : kVerdicts) {
    const host::Collection collection = host::Collect(samples.at(expected.sample));
    const host::Health health =
        host::JudgeCollection(collection, host::ReadParts(collection), HealthOptions());
    EXPECT_STREQ(host::GetVerdict(health), expected.verdict) << expected.sample;
    std::vector<std::string> alarms;
    for (const std::string& finding : ListKeys(health)) {
      if (!finding.starts_with("notice")) alarms.push_back(finding);
    }
    EXPECT_EQ(alarms, expected.findings) << expected.sample;
  }
}

}  // namespace
