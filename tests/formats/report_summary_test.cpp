// The report's first screen: words, order, evidence and areas, of machines of a few parts.
#include "host/formats/report_summary.h"

#include <gmock/gmock.h>

#include <limits>
#include <sstream>
#include <string>
#include <utility>

#include "host/answers/health/machine_areas.h"
#include "host/formats/report_areas.h"
#include "host/formats/report_charts.h"
#include "host/formats/report_evidence.h"
#include "tests/answers/health/judged.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using test::AddDrive;
using test::AddSensor;
using test::AddSource;
using test::AddVolume;
using test::MadeCollection;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

Assessment Assessed(Parts parts) {
  Health health = test::Judge(parts);
  return {std::move(parts), std::move(health)};
}

std::string WriteSummary(MadeCollection& made, const Assessment& assessment) {
  std::ostringstream out;
  HtmlWriter html(out);
  const CollectionView view(made.Get());
  WriteReportSummary(view, FitIntoReport(made.Get()), assessment, nullptr, html);
  return out.str();
}

std::string WriteSummary(Parts parts) {
  MadeCollection made;
  return WriteSummary(made, Assessed(std::move(parts)));
}

std::string WriteTitle(Parts parts) {
  MadeCollection made;
  made.Get().machine.name = "NODE31";
  const Assessment assessment = Assessed(std::move(parts));
  std::ostringstream out;
  HtmlWriter html(out);
  WriteReportTitle(made.Get(), &assessment, html);
  return out.str();
}

/// The element of `page` that begins with `begin`, up to `end`.
std::string CutOut(const std::string& page, const std::string& begin, const std::string& end) {
  const std::size_t at = page.find(begin);
  return at == std::string::npos ? "" : page.substr(at, page.find(end, at) - at);
}

Parts MakeWell() {
  Parts parts;
  AddSource(parts, "lsi", "read");
  test::AddController(parts);
  AddDrive(parts, "lsi0 69:0", "Onln");
  return parts;
}

TEST(ReportSummary, SaysTheWorstInWords) {
  EXPECT_THAT(WriteSummary(MakeWell()), HasSubstr("<h2>Nothing found in 3 of "));
  Parts parts = MakeWell();
  AddDrive(parts, "lsi0 69:9", "Onln").mediaErrors = 3;
  EXPECT_THAT(WriteSummary(parts), HasSubstr("<h2>Needs attention: Watch drive 69:9"));
  EXPECT_THAT(WriteTitle(parts), "1 warning – NODE31");
  AddVolume(parts, "lsi0 v0", "OfLn");
  EXPECT_THAT(WriteSummary(parts), HasSubstr("<h2>Act now: "));
  EXPECT_THAT(WriteTitle(parts), "1 critical, 1 warning – NODE31");
  EXPECT_THAT(WriteTitle(MakeWell()), "Nothing found – NODE31");
}

TEST(ReportSummary, CallsNothingWellThatWasNotLookedAt) {
  const std::string page = WriteSummary(Parts());
  EXPECT_THAT(page, HasSubstr("<h2>Not known: Find out why nothing"));
  EXPECT_THAT(page, HasSubstr("class=\"verdict unknown\""));
  // All but the collection itself, of which there is nothing to say.
  EXPECT_THAT(CutOut(page, "class=\"tiles\"", "</section>"), Not(HasSubstr("class=\"tile ok\"")));
}

TEST(ReportSummary, ShowsTheWorstFirstThenByArea) {
  Parts parts = MakeWell();
  AddSensor(parts, "Fan 5", 4, "nc");
  AddDrive(parts, "lsi0 69:9", "Onln").mediaErrors = 3;
  AddDrive(parts, "lsi0 69:8", "Offln");
  const std::string page = CutOut(WriteSummary(parts), "id=\"findings\"", "</section>");
  const std::size_t failed = page.find("<b>Replace drive 69:8");
  const std::size_t watched = page.find("<b>Watch drive 69:9");
  const std::size_t fan = page.find("<b>Look at Fan 5");
  EXPECT_LT(failed, watched);
  EXPECT_LT(watched, fan);
  EXPECT_LT(fan, page.size());
}

// A table can leave an output out, for an error text in it; then its line is shown here.
TEST(ReportSummary, LeadsFromAnOutputThatNoTableKeepsToItsTable) {
  MadeCollection made;
  made.Table("SENSORINFO");
  CollectedAnswer& answer = made.Get().answers.emplace_back();
  answer.commandLine = "C:\\host\\pq_tools\\ipmiutilnh.exe sensor -s -q";
  answer.output = "ipmiutil sensor version 3.18\r\n0001 | Full | Fan | 1 | F<1>\r\n";
  Parts parts = MakeWell();
  Unread& unread = parts.unread.emplace_back();
  unread.id = "1";
  unread.text = "0001 | Full";
  unread.readAt = {"", 0, "", 2, "ipmiutil sensor -s -q"};
  const Assessment assessment = Assessed(std::move(parts));
  const std::string page = WriteSummary(made, assessment);
  EXPECT_THAT(page, HasSubstr("href=\"#at/SENSORINFO\">ipmiutil sensor -s -q, line 2</a>"));
  EXPECT_THAT(page, HasSubstr("0001 | Full | Fan | 1 | F&lt;1&gt;"));
}

TEST(ReportSummary, LeadsFromAReportOfAFurtherControllerToTheTableOfTheFirst) {
  MadeCollection made;
  made.Table("PMCLINK");
  Parts parts = MakeWell();
  host::Drive& drive = AddDrive(parts, "mchp2 0,3", "Failed");
  drive.readAt = {"", 0, "", 7, "arcconf savesupportarchive, Controller_2_Config.txt"};
  const std::string page = WriteSummary(made, Assessed(std::move(parts)));
  EXPECT_THAT(page, HasSubstr("href=\"#at/PMCLINK\">arcconf savesupportarchive, "
                              "Controller_2_Config.txt, line 7</a>"));
}

TEST(ReportSummary, FoldsMoreThanEightFindings) {
  Parts parts;
  for (int i = 0; i < 8; ++i) {
    AddDrive(parts, "lsi0 69:" + std::to_string(i), "Onln").mediaErrors = 3;
  }
  EXPECT_THAT(WriteSummary(parts), Not(HasSubstr("<details class=\"more\">")));
  AddDrive(parts, "lsi0 69:8", "Onln").mediaErrors = 3;
  EXPECT_THAT(WriteSummary(parts),
              HasSubstr("<details class=\"more\"><summary>and 1 more</summary>"));
}

TEST(ReportSummary, SaysHowManyFindingsItLeavesOut) {
  Parts parts;
  for (int i = 0; i < 230; ++i) {
    AddDrive(parts, "lsi0 69:" + std::to_string(i), "Onln").mediaErrors = 3;
  }
  const std::string page = WriteSummary(parts);
  EXPECT_THAT(page, HasSubstr("30 more are left out here; pqhost health shows all of them."));
  EXPECT_THAT(page, HasSubstr("200 of 230 are shown here"));
}

TEST(ReportSummary, QuotesTheLineOfAReportAndLeadsToIt) {
  MadeCollection made;
  made.Table("LSILINK").FileRow("one\r\n  two <b>\r\nthree", "c0_showall");
  Parts parts = MakeWell();
  Drive& drive = AddDrive(parts, "lsi0 69:9", "Offln");
  drive.readAt = {"LSILINK", 1, "file", 2, "storcli /c0 show"};
  const std::string page = WriteSummary(made, Assessed(parts));
  EXPECT_THAT(page, HasSubstr("<a class=\"evidence\" href=\"#at/LSILINK/1/file/2\">"
                              "storcli /c0 show, line 2</a>: Offln<code>two &lt;b&gt;</code>"));
  EXPECT_THAT(page, HasSubstr("<a href=\"#part-drives-2\">lsi0 69:9</a> in Drives"));
  EXPECT_THAT(page, HasSubstr("<tr id=\"part-drives-2\"><th scope=\"row\">"
                              "<a href=\"#at/LSILINK/1/file/2\">lsi0 69:9</a>"));
}

TEST(ReportSummary, LeadsNowhereThatIsNotShown) {
  MadeCollection made;
  made.Table("LSILINK").FileRow("one", "c0_showall");
  for (const Place& place :
       {Place{"LSILINK", 2, "file", 1, "t"}, Place{"LSILINK", 1, "none", 1, "t"},
        Place{"LSILINK", 1, "file", 2, "t"}, Place{"OTHER", 1, "file", 1, "t"},
        Place{"OTHER", 0, "", 0, "t"}}) {
    Parts parts = MakeWell();
    AddDrive(parts, "lsi0 69:9", "Offln").readAt = place;
    EXPECT_THAT(WriteSummary(made, Assessed(parts)), Not(HasSubstr("class=\"evidence\"")));
  }
}

TEST(ReportSummary, MarksTheCellThatWasJudged) {
  Parts parts = MakeWell();
  Drive& drive = AddDrive(parts, "lsi0 69:9", "Onln");
  drive.mediaErrors = 37;
  NotePlace(drive, "media_errors", {"LSILINK", 1, "pdlist", 794, "storcli"});
  const std::string row = CutOut(WriteSummary(parts), "<tr id=\"part-drives-2\">", "</tr>");
  EXPECT_THAT(row, HasSubstr("<td class=\"number\" data-value=\"37\"><span class=\"chip warning\">"
                             "<span aria-hidden=\"true\">▲ </span><span class=\"visually-hidden\">"
                             "Warning: </span>37</span></td>"));
  EXPECT_THAT(row, HasSubstr("<td>Onln</td>"));
}

// It was read where the whole volume was.
TEST(ReportSummary, MarksTheCellThatTheRuleIsAbout) {
  Parts parts = MakeWell();
  Volume& volume = AddVolume(parts, "lsi0 v0", "Optl");
  volume.readAt = {"LSILINK", 1, "lsishowall", 87, "storcli"};
  volume.access = "B";
  const std::string row = CutOut(WriteSummary(parts), "<tr id=\"part-volumes-1\">", "</tr>");
  EXPECT_THAT(row, HasSubstr("<td>Optl</td>"));
  EXPECT_THAT(row, HasSubstr("Critical: </span>B</span></td>"));
}

TEST(ReportSummary, TellsWhatIsNotThereFromWhatNobodyAsked) {
  MadeCollection made;
  made.Table("LSILINK").Table("SENSORINFO");
  made.Get().tables[0].status = {"tool missing", "storcli.exe is not on this machine"};
  made.Get().tables[1].status = {"no such device", "this machine has no BMC"};
  Parts parts;
  for (const auto& [id, className] :
       {std::pair("lsi", "LSILINK"), std::pair("sensors", "SENSORINFO")}) {
    PartSource& source = AddSource(parts, id, "none");
    source.observed = made.Get().tables[parts.sources.size() - 1].status.text;
    source.readAt.className = className;
  }
  const std::string page = WriteSummary(made, Assessed(parts));
  EXPECT_THAT(CutOut(page, "<b>Drives</b>", "</small>"),
              AllOf(HasSubstr(">not checked<"), HasSubstr("storcli.exe is not on this machine")));
  EXPECT_THAT(CutOut(page, "<b>Cooling</b>", "</small>"),
              AllOf(HasSubstr(">not there<"), HasSubstr("this machine has no BMC")));
}

// A report can tell of drives and be silent on the controller.
TEST(ReportSummary, DoesNotTakeForNotThereWhatAReportDoesNotShow) {
  Parts parts;
  AddSource(parts, "lsi", "read");
  AddDrive(parts, "lsi0 69:9", "Onln");
  EXPECT_THAT(CutOut(WriteSummary(parts), "<b>RAID controllers</b>", "</small>"),
              AllOf(HasSubstr(">none shown<"), HasSubstr("none in what was read")));
}

TEST(ReportSummary, DoesNotTakeALogForReadThatNobodyWasToldOf) {
  MadeCollection made;
  made.Table("EVENTLOG1");
  made.Get().tables[0].status = {"tool reported an error", "storcli.exe ended with code 46"};
  Parts parts;
  AddSource(parts, "lsi", "read");
  AddDrive(parts, "lsi0 69:9", "Onln");
  const auto tell = [&] {
    return CutOut(WriteSummary(made, Assessed(parts)), "<b>Event logs</b>", "</small>");
  };
  EXPECT_THAT(tell(), AllOf(HasSubstr(">not checked<"), HasSubstr("ended with code 46")));
  made.Get().tables[0].status = {"no rows in output",
                                 "storcli.exe printed nothing that belongs here"};
  EXPECT_THAT(tell(), AllOf(HasSubstr(">none shown<"), HasSubstr("none in what was read")));
}

// Of two controllers one may not have answered.
TEST(ReportSummary, CallsNoAreaWellOfWhichMoreCouldNotBeRead) {
  Parts parts;
  AddSource(parts, "lsi", "failed").observed = "storcli /c1 show has no answer";
  AddDrive(parts, "lsi0 69:9", "Onln");
  const std::string page = WriteSummary(parts);
  EXPECT_THAT(CutOut(page, "<b>Drives</b>", "</small>"),
              AllOf(HasSubstr("? read in part"), HasSubstr("1 drive")));
  EXPECT_THAT(page, HasSubstr("0 areas without a finding, 1 read in part"));
}

TEST(ReportSummary, CallsNothingNotThereForWordsOfTheInterpreter) {
  MadeCollection made;
  made.Table("LEDINFO");
  made.Get().tables[0].status = {"rows", "2 rows, but it is missing", {}, "it is missing"};
  Parts parts;
  AddSource(parts, "leds", "none").observed = "it is missing";
  EXPECT_THAT(CutOut(WriteSummary(made, Assessed(parts)), "<b>BMC</b>", "</small>"),
              HasSubstr(">not checked<"));
}

TEST(ReportSummary, CallsNoAreaWellThatAFindingOfAnotherIsOf) {
  Parts parts = MakeWell();
  Drive& drive = AddDrive(parts, "lsi0 69:9", "Offln");
  drive.group = "lsi0 g0";
  AddVolume(parts, "lsi0 v0", "Dgrd");
  const std::string page = WriteSummary(parts);
  // One finding, called by the drive.
  EXPECT_THAT(page, HasSubstr("<p>1 critical; 2 areas without a finding"));
  EXPECT_THAT(CutOut(page, "<b>Drives</b>", "</small>"), HasSubstr("● 1"));
  EXPECT_THAT(CutOut(page, "<b>Arrays</b>", "</small>"), HasSubstr("● 1"));
}

TEST(ReportSummary, CountsOneAsOne) {
  Parts parts = MakeWell();
  AddDrive(parts, "lsi0 69:1", "Onln").otherErrors = 1;
  test::AddLsiEvent(parts, 0x60, "drives", "lsi0 69:1").level = 1;
  EXPECT_THAT(WriteSummary(parts), HasSubstr("1 warning or worse, on 2026-11-18T06:00:00</dd>"));
  parts.events = {};
  EXPECT_THAT(WriteSummary(parts),
              HasSubstr("1 notice <span class=\"faint\">that raises no alarm</span>"));
  AddDrive(parts, "lsi0 69:2", "Onln").otherErrors = 1;
  EXPECT_THAT(WriteSummary(parts),
              HasSubstr("2 notices <span class=\"faint\">that raise no alarm</span>"));
}

TEST(ReportSummary, CountsOpticalDrivesApart) {
  Parts parts = MakeWell();
  AddDrive(parts, "lsi0 15:0", "JBOD").media = "DVD";
  AddDrive(parts, "lsi0 69:1", "");
  EXPECT_THAT(CutOut(WriteSummary(parts), "<b>Drives</b>", "</small>"),
              HasSubstr("2 drives: 1 online, 1 without a state; 1 optical drive"));
}

TEST(ReportSummary, CountsPowerSuppliesAndTheirSensors) {
  Parts parts = MakeWell();
  AddSensor(parts, "PSU1 Input", 8, "ok");
  AddSensor(parts, "PSU2 Input", 8, "nc");
  parts.powerSupplies.emplace_back().id = "PSU 1";
  EXPECT_THAT(CutOut(WriteSummary(parts), "<b>Power</b>", "</small>"),
              HasSubstr("1 supply; 1 of 2 sensors without a finding"));
}

TEST(ReportSummary, DrawsAReadingBetweenItsLimits) {
  Parts parts = MakeWell();
  Sensor& sensor = AddSensor(parts, "Inlet Temp", 1, "ok");
  EXPECT_THAT(WriteSummary(parts), Not(HasSubstr("<svg")));
  sensor.reading = 22.0;
  EXPECT_THAT(WriteSummary(parts), Not(HasSubstr("<svg")));
  sensor.unc = 38.0;
  sensor.uc = 42.0;
  EXPECT_THAT(WriteSummary(parts),
              HasSubstr("aria-label=\"22, upper warning limit 38, upper critical limit 42\""));
}

TEST(ReportSummary, DrawsTheEntriesOfEachDayByHowGraveTheyAre) {
  Parts parts = MakeWell();
  const auto add = [&](const std::string& time, std::int64_t level) {
    Event event;
    event.id = "sel " + std::to_string(parts.events.size() + 1);
    event.source = "SEL";
    event.time = time;
    event.level = level;
    parts.events.push_back(event);
  };
  add("2026-11-18T10:00:00", 2);
  add("2026-11-18T11:00:00", 1);
  add("2026-11-18T11:00:00", 1);
  add("2026-11-01T00:00:00", 0);
  add("2026-01-01T00:00:00", 3);  // Long before.
  EXPECT_THAT(WriteSummary(parts),
              HasSubstr("aria-label=\"2026-11-01: 0 critical, 0 warning, 1 other; "
                        "2026-11-18: 1 critical, 2 warning, 0 other\""));
}

// A dead clock: not every system's own function knows days before 1970.
TEST(ReportSummary, DrawsTheMonthBeforeTheFirstDayOfClocks) {
  Parts parts = MakeWell();
  Event event;
  event.id = "sel 1";
  event.time = "1970-01-05T00:00:10";
  parts.events.push_back(event);
  std::ostringstream out;
  HtmlWriter html(out);
  WriteEventsByDay(parts.events, {0}, "1970-01-05T01:00:00", html);
  EXPECT_THAT(out.str(), AllOf(HasSubstr("1969-12-07"), HasSubstr("1970-01-05: 0 critical, 0")));
}

TEST(ReportSummary, TakesAnyNumberForALevel) {
  for (const std::int64_t level :
       {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
    Parts parts = MakeWell();
    Event event;
    event.id = "lsi0 1";
    event.source = "LSI";
    event.time = "2026-11-18T10:00:00";
    event.level = level;
    parts.events.push_back(event);
    EXPECT_THAT(WriteSummary(parts), HasSubstr(std::to_string(level)));
  }
}

TEST(ReportAreas, KnowEveryAreaThatARuleCanBeOf) {
  for (const std::string& area : ListMachineAreas())
    EXPECT_NE(FindReportAreaTitle(area), "") << area;
}

TEST(ReportAreas, PutSensorsWhereTheRulesPutThem) {
  for (std::int64_t type = 0; type < 0x30; ++type) {
    Parts parts;
    const Sensor& sensor = AddSensor(parts, "S", type, "cr");
    const Health health = test::Judge(parts);
    EXPECT_EQ(test::GetHit(health, "sensor.threshold").area, FindSensorArea(sensor)) << type;
  }
}

TEST(ReportEvidence, FindsTheLineThatTheEndOfATextBeginsIn) {
  const std::string text = "one\r\ntwo\nthree\rfour";
  const auto find = [&](std::size_t from) {
    return FindFirstLine(text, std::string_view(text).substr(from));
  };
  EXPECT_EQ(find(0), 1);
  EXPECT_EQ(find(1), 1);
  EXPECT_EQ(find(5), 2);
  EXPECT_EQ(find(6), 2);
  EXPECT_EQ(find(9), 3);
  EXPECT_EQ(find(15), 4);
  EXPECT_EQ(find(text.size()), 4);
}

}  // namespace
}  // namespace host
