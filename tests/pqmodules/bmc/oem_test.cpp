#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/support/bmc_machine.h"

namespace test {
namespace {

using std::string_literals::operator""s;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// One of the six queries, and how the log of a family-5 collection goes on behind it.
struct Query {
  const char* arguments;
  const char* announcement;
  const char* pipeFailure;
  const char* className;
  const char* next;
};

constexpr Query kQueries[] = {
    {"korvaxoem mc", "4 execute ipmiutilnh.exe korvaxoem mc command",
     "4 Failed to create pipe for MC info", "MCINFO",
     "4 execute ipmiutilnh.exe korvaxoem selftest command"},
    {"korvaxoem selftest", "4 execute ipmiutilnh.exe korvaxoem selftest command",
     "4 Failed to create pipe for PQM selftest", "SELFINFO",
     "4 execute ipmiutilnh.exe korvaxoem ver command"},
    {"korvaxoem ver", "4 execute ipmiutilnh.exe korvaxoem ver command",
     "4 Failed to create pipe for version info", "VERINFO",
     "4 execute ipmiutilnh.exe korvaxoem psu command"},
    {"korvaxoem psu", "4 execute ipmiutilnh.exe korvaxoem psu command",
     "4 Failed to create pipe for PSU info", "PSUINFO",
     "4 execute ipmiutilnh.exe korvaxoem lan command"},
    {"lan", "4 execute ipmiutilnh.exe korvaxoem lan command",
     "4 Failed to create pipe for LAN info", "LANINFO",
     "4 execute ipmiutilnh.exe korvaxoem led command"},
    {"korvaxoem led", "4 execute ipmiutilnh.exe korvaxoem led command",
     "4 Failed to create pipe for LED info", "LEDINFO",
     "4 Start to run ipmiutilnh.exe sensor -s -q command"},
};

class OemQuery : public testing::TestWithParam<Query> {};

INSTANTIATE_TEST_SUITE_P(Six, OemQuery, testing::ValuesIn(kQueries),
                         [](const auto& test) { return std::string(test.param.className); });

TEST_P(OemQuery, LogsAPipeThatCannotBeCreatedAndNothingElse) {
  const Query& query = GetParam();
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, query.arguments).pipeError = 1450;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, query.pipeFailure, query.next),
              ElementsAre(query.pipeFailure));
  EXPECT_THAT(collected.LogTexts(), Not(Contains(query.announcement)));
  EXPECT_THAT(collected.Rows(query.className), IsEmpty());
}

TEST_P(OemQuery, LogsAProcessThatCannotStart) {
  const Query& query = GetParam();
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, query.arguments).startError = 1455;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, query.announcement, query.next),
              ElementsAre(query.announcement, "4 CreateProcess failed (1455)"));
  EXPECT_THAT(collected.Rows(query.className), IsEmpty());
  EXPECT_EQ(collected.openHandles, 0);
}

TEST_P(OemQuery, RejectsAnOutputWithAnErrorTextWithoutAWord) {
  const Query& query = GetParam();
  for (const char* error : {"Error", "Bad response", "Cannot open an IPMI driver"}) {
    const std::string output = "Param (3) a : b "s + error + "\r\n";
    const Collected collected = CollectBmcWith(query.arguments, output);
    EXPECT_THAT(
        GetLogBetween(collected, query.announcement, query.next),
        ElementsAre(query.announcement, "4 dw:" + std::to_string(output.size()), "4 " + output));
    EXPECT_THAT(collected.Rows(query.className), IsEmpty());
  }
}

TEST_P(OemQuery, LetsGoOfAToolThatReportedAnError) {
  EXPECT_EQ(CollectBmcWith(GetParam().arguments, "Param (3) Error\r\n").openHandles, 1);
}

TEST_P(OemQuery, BuildsAndReleasesItsInstanceAlsoWhenAnErrorIsReported) {
  const Query& query = GetParam();
  const std::string trace = CollectBmcWith(query.arguments, "Param (3) Error\r\n").trace;
  const std::size_t built = trace.find("\"class\":\""s + query.className);
  ASSERT_NE(built, std::string::npos);
  EXPECT_LT(built, trace.find("Param (3) Error"));
  const std::size_t next = trace.find(query.next + 2, built);
  EXPECT_THAT(trace.substr(built, next - built), HasSubstr("\"release\""));
  EXPECT_THAT(trace.substr(built, next - built), Not(HasSubstr("\"add\"")));
}

TEST_P(OemQuery, AddsNothingAndLogsNothingMoreWhenTheOutputHoldsNothing) {
  const Query& query = GetParam();
  const Collected collected = CollectBmcWith(query.arguments, "");
  std::vector<std::string> log = GetLogBetween(collected, query.announcement, query.next);
  if (query.className == "SELFINFO"s) {
    EXPECT_THAT(log, ElementsAre(query.announcement, "4 se:", "4 size_buf:0", "4 Has 0 lines",
                                 "4 The position of line:0", "4 after:", "4 "));
  } else {
    EXPECT_THAT(log, ElementsAre(query.announcement, "4 se:"));
  }
  EXPECT_THAT(collected.Rows(query.className), IsEmpty());
  EXPECT_THAT(collected.trace, HasSubstr("\"class\":\""s + query.className));
}

TEST_P(OemQuery, ReadsStandardErrorToo) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, GetParam().arguments).standardOutput.clear();
  AnswerOf(machine, GetParam().arguments).standardError = "odd : thing\r\n";
  EXPECT_EQ(Collect(machine, kBmcModule, {"MCINFO"}).Rows(GetParam().className).size(), 1u);
}

TEST(OemPairs, ShiftAfterAColonInsideAValue) {
  const Collected collected = CollectBmcWith("korvaxoem mc", "MAC : 5e:10\r\nIP : 10.0.0.1\r\n");
  EXPECT_THAT(collected.Rows("MCINFO"), ElementsAre(ElementsAre("MC1= 5e", "MC2=IP ", "MC3=")));
}

TEST(OemPairs, BeyondTheKeysAreLoggedButGetNoProperty) {
  std::string output;
  for (int i = 1; i <= 13; ++i) output += "n" + std::to_string(i) + ":v" + std::to_string(i) + "\n";
  const Collected collected = CollectBmcWith("korvaxoem mc", output);
  ASSERT_EQ(collected.Rows("MCINFO").size(), 1u);
  EXPECT_EQ(collected.Rows("MCINFO")[0].size(), 12u);
  EXPECT_EQ(collected.Rows("MCINFO")[0].back(), "MC12=v12");
  EXPECT_THAT(collected.LogTexts(), Contains("4 n13: v13"));
}

TEST(OemPairs, HaveAsManyPropertiesAsTheirTableHasKeys) {
  std::string output;
  for (int i = 0; i < 40; ++i) output += "Param (3):v\r\n";
  const auto widthOf = [&](const std::string& arguments, const std::string& className) {
    const auto rows = CollectBmcWith(arguments, output).Rows(className);
    return rows.size() == 1 ? rows[0].size() : 0;
  };
  EXPECT_EQ(widthOf("korvaxoem mc", "MCINFO"), 12u);
  EXPECT_EQ(widthOf("korvaxoem selftest", "SELFINFO"), 2u);
  EXPECT_EQ(widthOf("korvaxoem ver", "VERINFO"), 16u);
  EXPECT_EQ(widthOf("lan", "LANINFO"), 12u);
}

TEST(OemPairs, AreHandedOverOnce) {
  const std::string trace = CollectBmcWith("korvaxoem mc", "a:b\nc:d\ne:f\n").trace;
  const std::size_t built = trace.find("\"class\":\"MCINFO\"");
  const std::string query = trace.substr(built, trace.find("\"release\"", built) - built);
  EXPECT_EQ(query.find("\"add\""), query.rfind("\"add\""));
  EXPECT_THAT(query, HasSubstr("\"add\""));
}

TEST(OemLan, KeysFollowTheOrderOfTheLines) {
  const Collected collected = CollectBmcWith("lan",
                                             "Lan Param(12) Gateway: 10.0.0.1\r\n"
                                             "Lan Param(4) Source: Static\r\n"
                                             "Lan Param(3) IP: 10.0.0.9\r\n");
  EXPECT_THAT(collected.Rows("LANINFO"),
              ElementsAre(ElementsAre("LAN1= 10.0.0.1", "LAN2= 10.0.0.9")));
}

TEST(OemLines, HandOverFiveLinesFiveTimesUnderOneKey) {
  const std::string output = "l1\r\nl2\r\n\r\nl3\r\nl4\r\nl5\r\n";
  EXPECT_THAT(ListValues(CollectBmcWith("korvaxoem psu", output), "PSUINFO"),
              ElementsAre("l1", "l2", "l3", "l4", "l5"));
  EXPECT_THAT(ListValues(CollectBmcWith("korvaxoem led", output), "LEDINFO"),
              ElementsAre("l1", "l2", "l3", "l4", "l5"));
}

TEST(OemLines, KeepALastLineWithoutLineEnd) {
  EXPECT_THAT(ListValues(CollectBmcWith("korvaxoem led", "a\nb"), "LEDINFO"),
              ElementsAre("a", "b"));
}

TEST(OemSelfTest, JoinsExactlyTwoLines) {
  const auto rowOf = [](const std::string& output) {
    return CollectBmcWith("korvaxoem selftest", output).Rows("SELFINFO").at(0);
  };
  EXPECT_THAT(rowOf("Test : 55h\r\nok\r\n"), ElementsAre("self1= 55h  ok"));
  EXPECT_THAT(rowOf("Test : 55h\r\n"), ElementsAre("self1= 55h"));
  EXPECT_THAT(rowOf("Test : 55h\r\nok\r\nthird\r\n"), ElementsAre("self1= 55h", "self2=third"));
}

TEST(OemSelfTest, LogsWhatItCountsAmongAllBytes) {
  const Collected collected = CollectBmcWith("korvaxoem selftest", "Test : 1\r\n\0x\r\n"s);
  EXPECT_THAT(GetLogBetween(collected, "4 se:Test : 1\r\n", "4 Test  "),
              ElementsAre("4 se:Test : 1\r\n", "4 size_buf:14", "4 Has 2 lines",
                          "4 The position of line:8", "4 after:", "4 Test : 1  "));
}

TEST(OemOutput, IsReadInChunksOf1023BytesAndNotCut) {
  std::string output;
  for (int i = 0; i < 300; ++i) output += "line " + std::to_string(1000 + i) + "\r\n";
  ASSERT_EQ(output.size(), 3300u);
  const Collected collected = CollectBmcWith("korvaxoem psu", output);
  const std::vector<std::string> values = ListValues(collected, "PSUINFO");
  ASSERT_EQ(values.size(), 300u);
  EXPECT_EQ(values[93], "line 1093");  // The first chunk ends at "line" of it.
  EXPECT_EQ(values[299], "line 1299");
  EXPECT_THAT(
      GetLogBetween(collected, "4 dw:1023", "4 line 1000 "),
      ElementsAre("4 dw:1023", "4 " + output.substr(0, 1023), "4 dw:1023",
                  "4 " + output.substr(1023, 1023), "4 dw:1023", "4 " + output.substr(2046, 1023),
                  "4 dw:231", "4 " + output.substr(3069), "4 se:" + output));
}

TEST(OemOutput, MayBeCutInTheMiddleOfAName) {
  const std::string first = std::string(1000, 'a') + ":1\n";
  const Collected collected = CollectBmcWith("korvaxoem mc", first + "a name across the cut:2\n");
  EXPECT_THAT(collected.Rows("MCINFO"), ElementsAre(ElementsAre("MC1=1", "MC2=2")));
  EXPECT_THAT(collected.trace, HasSubstr("\"label\":\"a name across the cut\""));
}

TEST(OemOutput, HidesAnErrorTextThatOnlyTheCutSplits) {
  const std::string output = std::string(1020, 'a') + "Error";
  EXPECT_THAT(CollectBmcWith("korvaxoem mc", output).Rows("MCINFO"), IsEmpty());
}

TEST(OemOutput, ShowsNothingOfAnEarlierChunkInAShorterOne) {
  const std::string output = std::string(1023, 'a') + "bc";
  EXPECT_THAT(GetLogBetween(CollectBmcWith("korvaxoem led", output), "4 dw:2", "4 se:" + output),
              ElementsAre("4 dw:2", "4 bc"));
}

TEST(OemOutput, EndsAtItsFirstNul) {
  const Collected collected = CollectBmcWith("korvaxoem led", "a\r\nb\0c\r\nError\r\n"s);
  EXPECT_THAT(ListValues(collected, "LEDINFO"), ElementsAre("a", "b"));
  EXPECT_THAT(collected.LogTexts(), Contains("4 se:a\r\nb"));
  EXPECT_THAT(collected.LogTexts(), Contains("4 dw:15"));
}

TEST(OemOutput, KeepsBytesAbove127) {
  EXPECT_THAT(ListValues(CollectBmcWith("korvaxoem led",
                                        "L\xfc"
                                        "fter \xff\x80\r\n"),
                         "LEDINFO"),
              ElementsAre("L\xfc"
                          "fter \xff\x80"));
}

TEST(OemOutput, OfAMissingUtilityBecomesTheTable) {
  host::Recording machine = MakeBmcMachine();
  std::erase_if(machine.commands, [](const host::RecordedCommand& command) {
    return command.arguments == "korvaxoem led";
  });
  EXPECT_THAT(ListValues(Collect(machine, kBmcModule, {"MCINFO"}), "LEDINFO"),
              ElementsAre(HasSubstr("is not recognized as an internal or external command,"),
                          "operable program or batch file."));
}

}  // namespace
}  // namespace test
