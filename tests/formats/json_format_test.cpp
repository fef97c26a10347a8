#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>

#include "host/answers/assessment.h"
#include "host/formats/health_formats.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;
using halyard::repository::RInstance;
using test::MadeCollection;
using testing::HasSubstr;

TEST(JsonFormat, WritesALargeFileWhole) {
  std::string file = "a";  // so that no power of two begins a character
  std::string text = "a";
  for (int i = 0; i < 1'200'000; ++i) {
    file += '\xE4';
    text += "\xC3\xA4";
  }
  MadeCollection made;
  made.Table("T").FileRow(file, "large.txt");
  const Json all = Json::parse(made.As("json"));
  EXPECT_TRUE(all["tables"][0]["rows"][0]["file"] == text);
}

TEST(JsonFormat, SaysFormatTimeMachineAndModules) {
  MadeCollection made;
  MachineFacts& machine = made.Get().machine;
  machine = {true, "two sockets", "NODE31", 1031, 850, "C:\\H\\h.exe", "C:\\H\\logs\\"};
  const Json all = Json::parse(made.As("json"));
  EXPECT_EQ(all["format"], 1);
  EXPECT_EQ(all["program"]["name"], "pqhost");
  EXPECT_EQ(all["collected"], "2026-11-18T09:41:07Z");
  EXPECT_EQ(all["machine"],
            Json::parse(R"({"recorded": true, "name": "NODE31", "description": "two sockets",
                            "languageId": 1031, "codePage": 850, "hostExecutable": "C:\\H\\h.exe",
                            "logFolder": "C:\\H\\logs\\", "serials": []})"));
  EXPECT_EQ(all["modules"], Json::parse(R"([{"name": "Example", "description": "For tests"}])"));
}

TEST(JsonFormat, HasTheVerdictThatHealthTells) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}});
  const Json health = Json::parse(made.As("json"))["health"];
  EXPECT_EQ(health.dump(), Json::parse(MakeHealthJson(Assess(made.Get()).health)).dump());
  EXPECT_EQ(health["verdict"], "unknown");
}

TEST(JsonFormat, HasNoVerdictOnAnAnswer) {
  MadeCollection made;
  made.Get().machineIsKnown = false;
  made.Table("T").Row({{"A", "1"}});
  EXPECT_TRUE(Json::parse(made.As("json")).at("health").is_null());
}

TEST(JsonFormat, SaysWhichMachineItIsAndWhenItWasRecorded) {
  MadeCollection made;
  MachineFacts& machine = made.Get().machine;
  machine.recordedAt = ParseIsoTime("2026-02-03T04:05:06+01:00");
  machine.system = "Windows";
  machine.contentKey = "abc";
  made.Table("FRUINFO").Row({{"A", "[Baseboard,20,00] Product Manufacturer: Makers"},
                             {"B", "[Baseboard,20,00] Product Name : P-1"},
                             {"C", "[Baseboard,20,00] Product Serial Num : 4711"},
                             {"D", "[Baseboard,20,00] Product Asset Tag : A-1"},
                             {"E", "[Baseboard,20,00] Board Serial Number : 4712"}});
  Json found = Json::parse(made.As("json"))["machine"];
  for (const char* known : {"recorded", "name", "description", "languageId", "codePage",
                            "hostExecutable", "logFolder"}) {
    EXPECT_EQ(found.erase(known), 1u) << known;
  }
  EXPECT_EQ(found, Json::parse(R"({"recordedAt": "2026-02-03T04:05:06+01:00", "system": "Windows",
                                   "maker": "Makers", "product": "P-1", "serial": "4711",
                                   "assetTag": "A-1", "serials": ["4711", "4712"],
                                   "contentKey": "abc"})"));
}

TEST(JsonFormat, WritesATableWithColumnsAndRowsInOrder) {
  MadeCollection made;
  made.Table("ARPINFO").Row({{"Address", "b"}, {"Type", " x \r\n"}}).Row({{"Address", "a"}});
  const Json all = Json::parse(made.As("json"));
  EXPECT_EQ(all["tables"][0].dump(),
            R"({"class":"ARPINFO","title":"ARP table","module":"Example",)"
            R"("status":{"outcome":"","text":"","notes":[]},)"
            R"("layout":{"by":"row","headers":[],"widths":[]},)"
            R"("columns":[{"key":"k1","label":"Address"},{"key":"k2","label":"Type"}],)"
            R"("instances":["made"],"attachments":[],)"
            R"("rows":[{"k1":"b","k2":" x \r\n"},{"k1":"a"}]})");
}

TEST(JsonFormat, WritesATableWithoutRows) {
  MadeCollection made;
  made.Table("VOLUME", /*byRow=*/false);
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["instances"], Json::array());
  EXPECT_EQ(table["rows"], Json::array());
  EXPECT_EQ(table["layout"].dump(), R"({"by":"property","headers":[],"numbers":[]})");
}

TEST(JsonFormat, WritesNotesOfATable) {
  MadeCollection made;
  made.Table("VOLUME").Get().tables[0].status = {"rows", "2 rows", {"one is \"left\" out", "so"}};
  EXPECT_EQ(Json::parse(made.As("json"))["tables"][0]["status"].dump(),
            R"({"outcome":"rows","text":"2 rows","notes":["one is \"left\" out","so"]})");
}

TEST(JsonFormat, ListsTheKnownColumnsOfATableWithoutRows) {
  MadeCollection made;
  made.Table("ARPINFO");
  EXPECT_EQ(Json::parse(made.As("json"))["tables"][0]["columns"][0].dump(),
            R"({"key":"item1","label":"Internet Address"})");
}

TEST(JsonFormat, SaysWhatCouldNotBeCollected) {
  MadeCollection made;
  EXPECT_EQ(Json::parse(made.As("json"))["problems"], Json::array());
  made.Get().problems = {"not collected: A: b"};
  EXPECT_EQ(Json::parse(made.As("json"))["problems"].dump(), R"(["not collected: A: b"])");
}

TEST(JsonFormat, WritesACollectionWithoutTables) {
  MadeCollection made;
  EXPECT_EQ(Json::parse(made.As("json"))["tables"], Json::array());
}

TEST(JsonFormat, WritesIntegersAsNumbers) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("n", "N", -2147483647 - 1, false);
  instance.AddToRepository(made.Repository());
  EXPECT_EQ(Json::parse(made.As("json"))["tables"][0]["rows"].dump(), R"([{"n":-2147483648}])");
}

TEST(JsonFormat, KeepsARowsOwnOrderOfProperties) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}, {"B", "2"}});
  RInstance instance("T", "made", -1);
  instance.AddProperty("k2", "B", std::string("3"), false);
  instance.AddProperty("k1", "A", std::string("4"), false);
  instance.AddToRepository(made.Repository());
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["rows"].dump(), R"([{"k1":"1","k2":"2"},{"k2":"3","k1":"4"}])");
}

TEST(JsonFormat, NamesTheInstanceOfEachRowWhenTheyDiffer) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).Row({{"A", "2"}});
  RInstance("T", "other", -1).AddToRepository(made.Repository());
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["instances"].dump(), R"(["made","made","other"])");
}

TEST(JsonFormat, NamesTheOtherLabelsOfAKey) {
  MadeCollection made;
  made.Table("T").Row({{"First", "1"}}).Row({{"Second", "2"}}).Row({{"First", "3"}});
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["columns"].dump(), R"([{"key":"k1","label":"First","otherLabels":["Second"]}])");
}

TEST(JsonFormat, HasOneMemberForKeysThatReadTheSame) {
  MadeCollection made;
  made.Table("T");
  RInstance instance("T", "made", -1);
  instance.AddProperty("a\x81", "A", std::string("1"), false);
  instance.AddProperty("b", "B", std::string("2"), false);
  instance.AddProperty("a\x8d", "A", std::string("3"), false);
  instance.AddToRepository(made.Repository());
  EXPECT_THAT(made.As("json"), HasSubstr("\n  {\"a\uFFFD\":\"3\",\"b\":\"2\"}]"));
  EXPECT_THAT(made.As("ndjson"), HasSubstr("{\"a\uFFFD\":\"3\",\"b\":\"2\"}}\n"));
}

TEST(JsonFormat, BeginsLinesWithTheirMachine) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}});
  MachineFacts& machine = made.Get().machine;
  machine.recorded = false;
  machine.name = "NODE31";
  machine.serials = {"S1"};
  machine.contentKey = "c0";
  EXPECT_EQ(made.As("ndjson"),
            "{\"machine\":\"NODE31\",\"serial\":\"S1\",\"recordedAt\":\"2026-11-18T09:41:07Z\","
            "\"collection\":\"c0\",\"class\":\"T\",\"row\":{\"k1\":\"1\"}}\n");
  machine.contentKey.clear();
  EXPECT_NE(made.As("ndjson"), made.As("ndjson")) << "live collections are told apart";
}

TEST(JsonFormat, TellsOfAttachments) {
  MadeCollection made;
  made.Table("T").Row({{"A", "1"}}).FileRow("raw text", "c0_showall");
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["attachments"].dump(),
            R"([{"row":1,"key":"file","attributes":{"raw":"true","filename":"c0_showall"},)"
            R"("bytes":8}])");
  EXPECT_EQ(table["rows"][1]["file"], "raw text");
}

TEST(JsonFormat, ReadsTextsInTheMachinesCodePage) {
  MadeCollection made;
  made.Get().machine.codePage = 437;
  made.Table("T").Row({{"\x81", "\x9b"}});
  const Json table = Json::parse(made.As("json"))["tables"][0];
  EXPECT_EQ(table["columns"][0]["label"], "ü");
  EXPECT_EQ(table["rows"][0]["k1"], "¢");
}

TEST(JsonFormat, IsValidWhateverTheBytesAndLetsNoControlCharacterThrough) {
  MadeCollection made;
  std::string all;
  for (int c = 0; c < 256; ++c) all += static_cast<char>(c);
  made.Table("T" + all).Row({{all, all}}).FileRow(all, all);
  for (const std::uint32_t codePage : {932U, 1252U, 65001U}) {
    made.Get().machine.codePage = codePage;
    for (const char* format : {"json", "ndjson"}) {
      const std::string text = made.As(format);
      std::size_t at = 0;
      for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        EXPECT_TRUE(byte == '\n' || (byte >= 0x20 && byte != 0x7F)) << at;
        ++at;
      }
      for (int c1 = 0x80; c1 <= 0x9F; ++c1) {
        EXPECT_EQ(text.find(std::string("\xC2") + static_cast<char>(c1)), std::string::npos);
      }
      if (format == std::string("json")) {
        EXPECT_TRUE(Json::accept(text));
      }
    }
  }
}

TEST(JsonFormat, LetsNothingThroughThatATerminalObeys) {
  const std::string turning = "a\u061C\u200E\u200F\u2028\u2029\u202A\u202E\u2066\u2069\u009B\x7Fz";
  const std::string escaped =
      R"("a\u061c\u200e\u200f\u2028\u2029\u202a\u202e\u2066\u2069\u009b\u007fz")";
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Table("T").Row({{turning, turning}});
  for (const char* format : {"json", "ndjson"}) {
    const std::string text = made.As(format, {true, true, 80});
    EXPECT_THAT(text, HasSubstr("{\"k1\":" + escaped + "}")) << format;
    EXPECT_EQ(text.find("\xE2\x80"), std::string::npos) << format;
  }
  const Json table = Json::parse(made.As("json", {true, true, 80}))["tables"][0];
  EXPECT_EQ(table["columns"][0]["label"], turning);
  EXPECT_EQ(table["rows"][0]["k1"], turning);
}

TEST(JsonFormat, KeepsOtherTextAsItIs) {
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Table("T").Row({{"A", "größe 连接 \u00AD💾"}});
  EXPECT_THAT(made.As("json"), HasSubstr("{\"k1\":\"größe 连接 \u00AD💾\"}"));
}

TEST(JsonFormat, KeepsControlCharactersInsideTexts) {
  MadeCollection made;
  made.Get().machine.codePage = 65001;
  made.Table("T").Row({{"A", "\x1b[31m\x7f\xC2\x85"}});
  EXPECT_EQ(Json::parse(made.As("json"))["tables"][0]["rows"][0]["k1"], "\x1b[31m\x7f\xC2\x85");
}

TEST(JsonLinesFormat, WritesOneObjectPerRow) {
  MadeCollection made;
  made.Table("B").Row({{"X", "1\n2"}}).Table("A").Row({{"X", "3"}, {"Y", "4"}}).Table("EMPTY");
  made.Get().machineIsKnown = false;
  EXPECT_EQ(made.As("ndjson"),
            "{\"class\":\"B\",\"row\":{\"k1\":\"1\\n2\"}}\n"
            "{\"class\":\"A\",\"row\":{\"k1\":\"3\",\"k2\":\"4\"}}\n");
}

TEST(JsonLinesFormat, WritesNothingWithoutRows) {
  MadeCollection made;
  made.Table("EMPTY");
  EXPECT_EQ(made.As("ndjson"), "");
}

}  // namespace
}  // namespace host
