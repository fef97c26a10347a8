#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/text/decoder.h"
#include "host/text/screen_text.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;
using halyard::repository::RInstance;
using test::MadeCollection;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

/// The data block as it is in the page, between its script element's tags.
std::string FindDataBlock(const std::string& page) {
  const std::string begin = R"(<script type="application/json" id="data">)";
  const std::size_t at = page.find(begin) + begin.size();
  return page.substr(at, page.find("</script>", at) - at);
}

Json ReadData(MadeCollection& made) { return Json::parse(FindDataBlock(made.As("html"))); }

Json ReadTable(MadeCollection& made) { return ReadData(made)["areas"][0]["tables"][0]; }

/// The page without the data block and the script.
std::string ReadMarkup(MadeCollection& made) {
  const std::string page = made.As("html");
  return page.substr(0, page.find(R"(<script type="application/json")"));
}

/// What the page says of the machine: name and value of each fact, in `element`.
std::vector<std::pair<std::string, std::string>> ReadFacts(MadeCollection& made,
                                                           const std::string& element) {
  const std::string page = ReadMarkup(made);
  const std::size_t at = page.find("<" + element);
  const std::string part = page.substr(at, page.find("</" + element + ">", at) - at);
  const std::regex fact("<dt>([^<]*)</dt><dd>([^<]*)</dd>");
  std::vector<std::pair<std::string, std::string>> facts;
  for (std::sregex_iterator found(part.begin(), part.end(), fact), end; found != end; ++found) {
    facts.emplace_back((*found)[1], (*found)[2]);
  }
  return facts;
}

TEST(HtmlFormat, SaysWhatWasCollectedWhereAndWhen) {
  MadeCollection made;
  made.Get().machine = {true, "two sockets", "NODE31", 1031, 850, "C:\\\x94\\h.exe", "C:\\H\\"};
  made.Get().problems = {"not collected: A: b"};
  made.Table("T").Row({{"A", "1"}}).Row({{"A", "2"}}).Table("EMPTY");
  EXPECT_EQ(ReadData(made)["outcome"], "1 of 2 tables with 2 rows");
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<h1>NODE31</h1>"));
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<li>not collected: A: b</li>"));
  EXPECT_THAT(ReadMarkup(made), HasSubstr("Made 2026-11-18 09:41:07 UTC by pqhost 0.1.0."));
  EXPECT_THAT(ReadFacts(made, "header"), ElementsAre(Pair("Description", "two sockets"),
                                                     Pair("Recorded", "at an unknown time")));
  EXPECT_THAT(ReadFacts(made, "footer"),
              ElementsAre(Pair("From", "a recording"),
                          Pair("Judged as of",
                               "2026-11-18T09:41:07Z (now, since nothing tells when it was)"),
                          Pair("Language", "1031"), Pair("Code page", "850"),
                          Pair("Host program", "C:\\ö\\h.exe")));
}

TEST(HtmlFormat, IsTitledByTheDescriptionOfANamelessMachine) {
  MadeCollection made;
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<h1>unnamed machine</h1>"));
  made.Get().machine.description = "two sockets";
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<h1>two sockets</h1>"));
  EXPECT_THAT(ReadFacts(made, "header").front(), Pair("Recorded", "at an unknown time"));
}

TEST(HtmlFormat, SaysWhichMachineItIsAndWhenItWasRecorded) {
  MadeCollection made;
  made.Get().machine.system = "Windows Server 2022 Standard, build 20348";
  made.Get().machine.recordedAt = ParseIsoTime("2026-02-03T04:05:06+01:00");
  made.Table("FRUINFO").Row({{"A", "[Baseboard,20,00] Product Manufacturer: Makers"},
                             {"B", "[Baseboard,20,00] Product Name : P-1"},
                             {"C", "[Baseboard,20,00] Product Serial Num : 4711"},
                             {"D", "[Baseboard,20,00] Product Asset Tag : A-1"}});
  EXPECT_THAT(
      ReadFacts(made, "header"),
      ElementsAre(Pair("System", "Windows Server 2022 Standard, build 20348"),
                  Pair("Maker", "Makers"), Pair("Product", "P-1"), Pair("Serial number", "4711"),
                  Pair("Asset tag", "A-1"), Pair("Recorded", "2026-02-03 04:05:06 UTC+01:00")));
  made.Get().machine.recorded = false;
  EXPECT_THAT(ReadFacts(made, "header").back(), Pair("Collected", "2026-02-03 04:05:06 UTC+01:00"));
  made.Get().machine.recordedAt.reset();
  EXPECT_THAT(ReadFacts(made, "header").back(), Pair("Collected", "2026-11-18 09:41:07 UTC"));
}

TEST(HtmlFormat, NamesTheToolsVersions) {
  MadeCollection made;
  made.Get().machine.codePage = 850;
  made.Table("FRUINFO").Row({{"A", "ipmiutil fru version 3.18\x81\r\n"}});
  EXPECT_THAT(ReadFacts(made, "footer").back(), Pair("ipmiutil", "3.18ü"));
}

TEST(HtmlFormat, JudgesNoAnswer) {
  MadeCollection made;
  made.Get().machineIsKnown = false;
  made.Get().problems = {"not collected: A: b"};
  made.Table("ANSWER").Row({{"A", "1"}});
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<title>Answer – server report</title>"));
  EXPECT_THAT(ReadFacts(made, "header"), ElementsAre(Pair("Asked", "2026-11-18 09:41:07 UTC")));
  EXPECT_THAT(ReadMarkup(made), Not(HasSubstr("id=\"verdict\"")));
  EXPECT_EQ(ReadData(made)["notes"][0], "not collected: A: b");
}

TEST(HtmlFormat, WritesATableWithItsRowsByColumn) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Address", "b"}, {"Type", " x \r\n"}}).Row({{"Address", "a"}});
  made.Get().tables.front().status = {"rows", "2 rows"};
  EXPECT_EQ(
      ReadTable(made).dump(),
      R"({"class":"ARPINFO","title":"ARP table","kind":"rows","status":"2 rows","notes":[],)"
      R"("rowCount":2,"firstRow":0,"columns":[{"key":"k1","label":"Address"},)"
      R"({"key":"k2","label":"Type"}],"attachments":[],"rows":[["b"," x \r\n"],["a",null]]})");
}

TEST(HtmlFormat, WritesATableWithoutRows) {
  MadeCollection made;
  made.Table("VOLUME", /*byRow=*/false);
  made.Get().tables.front().status = {"tool missing", "the program is not there"};
  const Json table = ReadTable(made);
  EXPECT_EQ(table["status"], "the program is not there");
  EXPECT_EQ(table["rowCount"], 0);
  EXPECT_EQ(table["rows"], Json::array());
}

TEST(HtmlFormat, PutsTablesUnderWhatTheyAreAbout) {
  MadeCollection made;
  made.Table("S1TABLE1").Table("FIRST").Table("SECOND").Table("RAIDINFO");
  made.Get().modules.push_back({"Other", "Another"});
  made.Get().tables[2].module = "Other";
  const Json areas = ReadData(made)["areas"];
  ASSERT_EQ(areas.size(), 4U);
  EXPECT_EQ(areas[0]["title"], "LSI RAID");
  EXPECT_EQ(areas[1]["title"], "For tests");
  EXPECT_EQ(areas[1]["modules"], Json{"Example"});
  EXPECT_EQ(areas[1]["tables"].size(), 1U);
  EXPECT_EQ(areas[2]["title"], "Another");
  EXPECT_EQ(areas[2]["tables"][0]["class"], "SECOND");
  EXPECT_EQ(areas[3]["title"], "Samples");
}

TEST(HtmlFormat, ChoosesHowATableIsShown) {
  const auto chooseKind = [](bool byRow, int columnCount, int rowCount) {
    MadeCollection made;
    made.Table("T", byRow);
    MadeCollection::Pairs properties(static_cast<std::size_t>(columnCount), {"A", "1"});
    for (int i = 0; i < rowCount; ++i) made.Row(properties);
    return ReadTable(made)["kind"];
  };
  EXPECT_EQ(chooseKind(true, 1, 2), "log");
  EXPECT_EQ(chooseKind(true, 1, 1), "rows");
  EXPECT_EQ(chooseKind(true, 2, 2), "rows");
  EXPECT_EQ(chooseKind(false, 2, 4), "properties");
  EXPECT_EQ(chooseKind(false, 2, 5), "rows");
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).FileRow("text", "file");
  EXPECT_EQ(ReadTable(made)["kind"], "rows");
}

TEST(HtmlFormat, LetsNoTextEndItsDataBlock) {
  MadeCollection made;
  const std::string hostile = "</script><!--<script>alert(1)</script>\x1b\"\\";
  made.Get().modules.front().description = hostile;
  made.Get().problems = {hostile};
  made.Get().machine.description = hostile;
  made.Get().machine.hostExecutable = hostile;
  made.Table("T").Row({{hostile, hostile}}).FileRow(hostile, hostile);
  made.Get().tables.front().status.text = hostile;
  const std::string page = made.As("html");
  const std::string block = FindDataBlock(page);
  EXPECT_EQ(block.find_first_of("<>"), std::string::npos);
  const Json data = Json::parse(block);
  const Json table = data["areas"][0]["tables"][0];
  EXPECT_EQ(table["status"], hostile);
  EXPECT_EQ(table["columns"][0]["label"], hostile);
  EXPECT_EQ(table["rows"][0][0], hostile);
  EXPECT_EQ(table["attachments"][0]["filename"], hostile);
  EXPECT_EQ(table["attachments"][0]["text"], hostile);
  const std::string shown =
      "&lt;/script&gt;&lt;!--&lt;script&gt;alert(1)&lt;/script&gt;\\x1b&quot;\\";
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<h1>" + shown + "</h1>"));
  EXPECT_THAT(ReadMarkup(made), HasSubstr("<li>" + shown + "</li>"));
  EXPECT_THAT(ReadMarkup(made), Not(HasSubstr("alert(1)<")));
}

TEST(HtmlFormat, IsValidJsonWhateverTheBytes) {
  MadeCollection made;
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  made.Table("T" + all).Row({{all, all}}).FileRow(all, all);
  for (const std::uint32_t codePage : {932U, 1252U, 65001U}) {
    made.Get().machine.codePage = codePage;
    EXPECT_TRUE(Json::accept(FindDataBlock(made.As("html")))) << codePage;
  }
}

TEST(HtmlFormat, ReadsTextsInTheMachinesCodePage) {
  MadeCollection made;
  made.Get().machine.codePage = 437;
  made.Get().modules.front() = {"Example", "\x84"};
  made.Table("T").Row({{"\x81", "\x9b"}});
  EXPECT_EQ(ReadData(made)["areas"][0]["title"], "ä");
  EXPECT_EQ(ReadTable(made)["columns"][0]["label"], "ü");
  EXPECT_EQ(ReadTable(made)["rows"][0][0], "¢");
}

TEST(HtmlFormat, ShowsWholeFilesBelowTheTableInsteadOfInIt) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).FileRow("raw\r\ntext", "c0_showall");
  const Json table = ReadTable(made);
  EXPECT_EQ(table["attachments"].dump(),
            R"([{"label":"File","filename":"c0_showall","key":"file","row":2,"firstLine":1,)"
            R"("text":"raw\r\ntext"}])");
  EXPECT_EQ(table["columns"].dump(), R"([{"key":"k1","label":"A"}])");
  EXPECT_EQ(table["rows"].dump(), R"([["1"],[null]])");
}

TEST(HtmlFormat, WritesNoRowsWhereAllIsFiles) {
  MadeCollection made;
  made.Table("T").FileRow("one", "a").FileRow("two", "b");
  const Json table = ReadTable(made);
  EXPECT_EQ(table["rowCount"], 2);
  EXPECT_EQ(table["attachments"].size(), 2U);
  EXPECT_EQ(table["columns"], Json::array());
  EXPECT_EQ(table["rows"], Json::array());
}

TEST(HtmlFormat, NamesAFileWithoutANameByItsKey) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("dump", "Dump", std::string("x"), false);
  instance.AddPropertyAttr("dump", "raw", "true");
  instance.AddToRepository(made.Repository());
  EXPECT_EQ(ReadTable(made)["attachments"][0]["filename"], "dump");
}

TEST(HtmlFormat, AllowsOnlyItsOwnStyleAndScriptByANonceOfItsOwn) {
  MadeCollection made;
  const std::regex nonce("nonce(?:-|=\")([0-9a-f]{32})['\"]");
  std::set<std::string> nonces;
  for (int report = 0; report < 2; ++report) {
    const std::string page = made.As("html");
    int uses = 0;
    for (std::sregex_iterator at(page.begin(), page.end(), nonce), end; at != end; ++at) {
      nonces.insert((*at)[1]);
      ++uses;
    }
    EXPECT_EQ(uses, 4);  // Two in the policy, and those of the style and the script.
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
  }
  EXPECT_EQ(nonces.size(), 2U);
}

TEST(HtmlFormat, EscapesOnATerminalWhatThatObeys) {
  const std::string turning = "a\u061C\u200E\u2028\u202E\u2069\u009B\x7F<z";
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Get().machine.name = turning;
  made.Table("T").Row({{turning, turning}}).FileRow(turning, turning);
  EXPECT_THAT(made.As("html"), HasSubstr("\u2028\u202E"));  // A file keeps its bytes.
  const std::string page = made.As("html", {true, true, 80});
  const Json data = Json::parse(FindDataBlock(page));
  EXPECT_EQ(data["areas"][0]["tables"][0]["rows"][0][0], turning);
  std::string_view rest = page;
  while (!rest.empty()) {
    const char32_t c = TakeUtf8(rest);
    EXPECT_TRUE(c == U'\n' || !IsObeyed(c)) << static_cast<unsigned>(c);
  }
}

TEST(HtmlFormat, ShowsTheSameCharactersAsEscapesAsAScreen) {
  MadeCollection made;
  const std::string page = made.As("html");
  const std::size_t begin = page.find("const UNSEEN = /[");
  ASSERT_NE(begin, std::string::npos);
  const std::string pattern = page.substr(begin, page.find("]/gu;", begin) - begin);
  const std::regex range(R"(\\u\{([0-9a-f]+)\}-\\u\{([0-9a-f]+)\})");
  std::set<unsigned long> characters;
  for (std::sregex_iterator at(pattern.begin(), pattern.end(), range), end; at != end; ++at) {
    const unsigned long last = std::stoul((*at)[2], nullptr, 16);
    for (unsigned long c = std::stoul((*at)[1], nullptr, 16); c <= last; ++c) characters.insert(c);
  }
  for (char32_t c = 0xA0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    std::string text;
    AppendUtf8(text, c);
    EXPECT_EQ(EscapeControls(text) != text, characters.contains(c)) << static_cast<unsigned>(c);
  }
}

TEST(HtmlFormat, LeavesNoPlaceOfThePageUnfilled) {
  MadeCollection made;
  const std::string page = made.As("html");
  for (const char* place : {"@NONCE@", "@TITLE@", "@STYLE@", "@HEADER@", "@SUMMARY@", "@FOOTER@",
                            "@SCRIPT@", "@DATA@", "@UNSEEN@", "@PACKED@"}) {
    EXPECT_EQ(page.find(place), std::string::npos) << place;
  }
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
}

}  // namespace
}  // namespace host
