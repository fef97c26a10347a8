#include "host/formats/difference/difference_formats.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "tests/support/collected.h"

namespace {

using host::Difference;
using host::DifferenceSide;
using host::FindingChange;
using host::PartChange;
using host::PartType;
using host::Severity;
using testing::HasSubstr;

/// One of each.
Difference MakeDifference() {
  Difference difference;
  difference.before = {"2026-11-14T09:40:00Z", "the collection", "ok"};
  difference.after = {"2026-11-18T09:41:00Z", "the collection", "critical"};
  difference.findings.push_back({"drive.failed", "drives", "lsi0 1:2", "S1", FindingChange::kNew,
                                 std::nullopt, Severity::kCritical, "Offln", "Replace it"});
  difference.parts.push_back({"drives",
                              "lsi0 1:2",
                              "S1",
                              PartChange::kChanged,
                              "",
                              {{"state", PartType::kText, "Onln", "Offln"},
                               {"media_errors", PartType::kInteger, std::nullopt, "3"}}});
  difference.parts.push_back({"power_supplies", "PSU 2", "", PartChange::kRemoved, "", {}});
  difference.cells.push_back({"ARRAY", "A0", "Size", "1 GB", "2 GB"});
  difference.reports.push_back({"LSILINK", "lsi0 pdlist", 1, 2});
  difference.logs.push_back({"SEL", true, {{13, "2026-11-18T09:00:00", 2, "AC \"lost\""}}});
  difference.notCompared.push_back({"FRUINFO", DifferenceSide::kAfter, "no answer"});
  difference.notCompared.push_back({"MCINFO", DifferenceSide::kAfter, "no answer"});
  return difference;
}

template <typename Write>
std::string WriteTo(const Write& write, const host::Screen& screen = {}) {
  std::ostringstream out;
  write({"server", "server", MakeDifference()}, screen, out);
  return out.str();
}

TEST(DifferenceTable, HasALineForEachDifference) {
  EXPECT_EQ(WriteTo(host::WriteDifferenceTable),
            "server: 2026-11-14 09:40 -> 2026-11-18 09:41    2 parts, 1 cell, 1 log entry, 1 "
            "finding\n"
            "  new critical drive.failed lsi0 1:2: Offln\n"
            "  ~ drive lsi0 1:2 (S1) state Onln -> Offln, media_errors nothing -> 3\n"
            "  - power supply PSU 2\n"
            "  ~ ARRAY A0 Size: '1 GB' -> '2 GB'\n"
            "  ~ LSILINK lsi0 pdlist: 1 line gone, 2 new\n"
            "  log SEL: 1 new, it was cleared or has wrapped around, 1 of them warnings or worse:\n"
            "      2026-11-18T09:00:00 AC \"lost\"\n"
            "  ? not compared: FRUINFO, MCINFO: not read in the second: no answer\n");
}

TEST(DifferenceTable, IsAsWideAsTheScreen) {
  std::istringstream text(WriteTo(host::WriteDifferenceTable, {.width = 40}));
  for (std::string line; std::getline(text, line);) EXPECT_LE(line.size(), 40U) << line;
}

TEST(DifferenceJson, KeepsTypes) {
  EXPECT_EQ(
      WriteTo(host::WriteDifferenceJson),
      R"({"format":1,)"
      R"("old":{"name":"server","asOf":"2026-11-14T09:40:00Z","asOfFrom":"the collection","verdict":"ok"},)"
      R"("new":{"name":"server","asOf":"2026-11-18T09:41:00Z","asOfFrom":"the collection","verdict":"critical"},)"
      R"("newIsOlder":false,"otherMachine":false,)"
      R"("findings":[{"rule":"drive.failed","part":"drives","id":"lsi0 1:2","serial":"S1","change":"new","old":null,"new":"critical","observed":"Offln","text":"Replace it"}],)"
      R"("parts":[{"part":"drives","id":"lsi0 1:2","serial":"S1","change":"changed","state":"","columns":[{"column":"state","old":"Onln","new":"Offln"},{"column":"media_errors","old":null,"new":3}]},)"
      R"({"part":"power_supplies","id":"PSU 2","serial":"","change":"removed","state":"","columns":[]}],)"
      R"("cells":[{"class":"ARRAY","key":"A0","column":"Size","old":"1 GB","new":"2 GB"}],)"
      R"("reports":[{"class":"LSILINK","key":"lsi0 pdlist","oldLines":1,"newLines":2}],)"
      R"("logs":[{"log":"SEL","new":1,"cleared":true,"entries":[{"number":13,"time":"2026-11-18T09:00:00","level":2,"text":"AC \"lost\""}]}],)"
      R"("notCompared":[{"what":"FRUINFO","side":"new","why":"no answer"},{"what":"MCINFO","side":"new","why":"no answer"}]})"
      "\n");
}

TEST(DifferenceCsv, HasTwoTables) {
  EXPECT_EQ(WriteTo(host::WriteDifferenceCsv),
            "kind,part,id,serial,change,column,old,new,text\r\n"
            "finding,drives,lsi0 1:2,S1,new,drive.failed,,critical,Offln\r\n"
            "part,drives,lsi0 1:2,S1,changed,state,Onln,Offln,\r\n"
            "part,drives,lsi0 1:2,S1,changed,media_errors,,3,\r\n"
            "part,power_supplies,PSU 2,,removed,,,,\r\n"
            "cell,ARRAY,A0,,changed,Size,1 GB,2 GB,\r\n"
            "report,LSILINK,lsi0 pdlist,,changed,lines,1,2,\r\n"
            "log,SEL,,,cleared,,,1,\r\n"
            "not compared,FRUINFO,,,not compared,new,,,no answer\r\n"
            "not compared,MCINFO,,,not compared,new,,,no answer\r\n"
            "\r\n"
            "log,number,time,level,text\r\n"
            "SEL,13,2026-11-18T09:00:00,2,\"AC \"\"lost\"\"\"\r\n");
}

TEST(DifferenceDocument, IsTheOneInDocs) {
  std::ifstream file(test::SamplesFolder() + "/../docs/diff.md", std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(host::WriteDifferenceDocument(), written)
      << "docs/diff.md is stale: pqhost diff --list-compared > docs/diff.md";
}

TEST(DifferencePage, ShowsEachDifference) {
  const std::string page = WriteTo(host::WriteDifferenceHtml);
  EXPECT_THAT(page, HasSubstr(">Changes since 2026-11-14 09:40</h2>"));
  EXPECT_THAT(page, HasSubstr("The verdict was OK; now it is critical."));
  EXPECT_THAT(page, HasSubstr("new: critical</span> Replace it"));
  EXPECT_THAT(page, HasSubstr("<td>State</td><td><del>Onln</del></td><td>Offln</td>"));
  EXPECT_THAT(page, HasSubstr("<td>Media errors</td><td></td><td>3</td>"));
  EXPECT_THAT(page, HasSubstr("power supply PSU 2</th><td>removed</td>"));
  EXPECT_THAT(page, HasSubstr("<td><del>1 GB</del></td><td>2 GB</td>"));
  EXPECT_THAT(page, HasSubstr("LSILINK lsi0 pdlist: 1 line gone, 2 new"));
  EXPECT_THAT(page, HasSubstr("SEL: 1 new, 1 of them warnings or worse; it was cleared or has "));
  EXPECT_THAT(page, HasSubstr("<b>2026-11-18T09:00:00 AC &quot;lost&quot;</b>"));
  EXPECT_THAT(page, HasSubstr("FRUINFO, MCINFO: not read now: no answer"));
}

TEST(DifferencePage, TellsHowMuchOfLongListsIsLeftOut) {
  Difference difference;
  for (int i = 0; i < 1000; ++i) difference.cells.push_back({"ARRAY", "A", "Size", "1", "2"});
  difference.logs.push_back({"SEL", false, {}});
  difference.logs.back().entries.resize(51);
  std::ostringstream out;
  host::WriteDifferenceHtml({"then", "now", difference}, {}, out);
  EXPECT_THAT(out.str(), HasSubstr("and 800 more, which pqhost diff shows"));
  EXPECT_THAT(out.str(), HasSubstr("and 1 before them, which pqhost diff shows"));
}

}  // namespace
