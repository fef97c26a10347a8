// Sensors, SDR, FRU, SEL and the raw dumps.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/bmc_machine.h"

namespace test {
namespace {

using std::string_literals::operator""s;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kSensorStart[] = "4 Start to run ipmiutilnh.exe sensor -s -q command";
constexpr char kSensorNext[] = "3 Oru Debug  fru info 1";
constexpr char kSdrStart[] = "4 Start to run ipmiutilnh sensor command";
constexpr char kSdrNext[] = "3 Oru Debug  sel info 1";

/// The values of the sensor rows.
std::vector<std::vector<std::string>> SensorsOf(const Collected& collected) {
  std::vector<std::vector<std::string>> sensors;
  const auto table = collected.Tables().find("SENSORINFO");
  if (table == collected.Tables().end()) return sensors;
  for (const host::Row& row : table->second.rows) {
    const auto values = row.Values();
    sensors.emplace_back(values.begin(), values.end());
  }
  return sensors;
}

std::vector<std::vector<std::string>> SensorsIn(const std::string& listing) {
  return SensorsOf(CollectBmcWith("sensor -s -q", listing));
}

TEST(Sensors, LogAPipeThatCannotBeCreatedAndNothingElse) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "sensor -s -q").pipeError = 4;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, "4 Failed to create pipe for sensor info", kSensorNext),
              ElementsAre("4 Failed to create pipe for sensor info"));
  EXPECT_THAT(collected.LogTexts(), Not(Contains(kSensorStart)));
  EXPECT_THAT(SensorsOf(collected), IsEmpty());
}

TEST(Sensors, LogAProcessThatCannotStartAsProgress) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "sensor -s -q").startError = 2;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, kSensorStart, kSensorNext),
              ElementsAre(kSensorStart, "3 CreateProcess failed (2)"));
  EXPECT_THAT(SensorsOf(collected), IsEmpty());
  EXPECT_EQ(collected.openHandles, 0);
}

TEST(Sensors, RejectAListingWithAnErrorTextAfterTheToolEnded) {
  for (const std::string& output : {"a|Error in b|c\r\n"s, "Error: no session\r\n"s}) {
    const Collected collected = CollectBmcWith("sensor -s -q", output);
    EXPECT_THAT(GetLogBetween(collected, kSensorStart, kSensorNext),
                ElementsAre(kSensorStart, "4 dw:" + std::to_string(output.size()), "4 " + output,
                            "4 se:" + output));
    EXPECT_THAT(SensorsOf(collected), IsEmpty());
    EXPECT_EQ(collected.openHandles, 0);
  }
}

TEST(Sensors, TakeOtherErrorTextsForFields) {
  EXPECT_THAT(SensorsIn("Cannot open an IPMI driver|Error|Bad response\r\n"),
              ElementsAre(ElementsAre("Cannot open an IPMI driver", "Error", "Bad response", "", "",
                                      "", "", "", "", "")));
}

TEST(Sensors, AreOneRowPerTenFields) {
  EXPECT_THAT(SensorsIn("T1|41|C|ok|a|b|c|d|e|f\r\nT2|42|C|nc|g|h|i|j|k|l\r\n"),
              ElementsAre(ElementsAre("T1", "41", "C", "ok", "a", "b", "c", "d", "e", "f"),
                          ElementsAre("T2", "42", "C", "nc", "g", "h", "i", "j", "k", "l")));
}

TEST(Sensors, EndAtAThresholdOfOneBlank) {
  const Collected collected = CollectBmcWith("sensor -s -q",
                                             "T1|41|C|ok|a|b|c|d|e|f\r\n"
                                             "T2|42|C|ok| |b|c|d|e|f\r\n"
                                             "T3|43|C|ok|a|b|c|d|e|f\r\n");
  EXPECT_THAT(SensorsOf(collected),
              ElementsAre(ElementsAre("T1", "41", "C", "ok", "a", "b", "c", "d", "e", "f"),
                          ElementsAre("T2", "42", "C", "ok", "", "", "", "", "", "")));
  EXPECT_THAT(GetLogBetween(collected, "4 T2", kSensorNext),
              ElementsAre("4 T2", "4 42", "4 C", "4 ok", "4  ", "4 found the blank value, break"));
}

TEST(Sensors, GoOnAfterTwoBlanksOrABlankWithText) {
  EXPECT_THAT(SensorsIn("T1|  | C|ok|a|b|c|d|e|f\r\n"),
              ElementsAre(ElementsAre("T1", "  ", " C", "ok", "a", "b", "c", "d", "e", "f")));
}

TEST(Sensors, ShiftAfterALineOfNineFields) {
  EXPECT_THAT(SensorsIn("T1|41|C|ok|a|b|c|d|e\r\nT2|42|C|ok|a|b|c|d|e|f\r\n"),
              ElementsAre(ElementsAre("T1", "41", "C", "ok", "a", "b", "c", "d", "e", "T2"),
                          ElementsAre("42", "C", "ok", "a", "b", "c", "d", "e", "f", "")));
}

TEST(Sensors, AreNoneInAListingWithoutFields) {
  const Collected collected = CollectBmcWith("sensor -s -q", "\r\n|\r\n");
  EXPECT_THAT(GetLogBetween(collected, "4 se:\r\n|\r\n", kSensorNext),
              ElementsAre("4 se:\r\n|\r\n"));
  EXPECT_THAT(SensorsOf(collected), IsEmpty());
}

TEST(Sensors, AreReadInChunksOf30719BytesAndNotCut) {
  std::string listing;
  for (int i = 0; i < 1500; ++i) listing += std::to_string(1000 + i) + "|1|C|ok|a|b|c|d|e|f\r\n";
  ASSERT_GT(listing.size(), 30720u);
  const Collected collected = CollectBmcWith("sensor -s -q", listing);
  const auto sensors = SensorsOf(collected);
  ASSERT_EQ(sensors.size(), 1500u);
  EXPECT_EQ(sensors[1499][0], "2499");
  EXPECT_TRUE(std::ranges::all_of(sensors, [](const auto& row) { return row[9] == "f"; }));
  EXPECT_THAT(
      GetLogBetween(collected, "4 dw:30719", "4 se:" + listing),
      ElementsAre("4 dw:30719", "4 " + listing.substr(0, 30719),
                  "4 dw:" + std::to_string(listing.size() - 30719), "4 " + listing.substr(30719)));
}

TEST(Sensors, KeepBytesAbove127AndEndAtTheFirstNul) {
  EXPECT_THAT(SensorsIn("K\xfchler|\xb0|C\0|ok"s),
              ElementsAre(ElementsAre("K\xfchler", "\xb0", "C", "", "", "", "", "", "", "")));
}

TEST(Sdr, LogsAPipeThatCannotBeCreatedAndNothingElse) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "sensor").pipeError = 4;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, "4 Create Pipe failed", kSdrNext),
              ElementsAre("4 Create Pipe failed"));
  EXPECT_THAT(collected.LogTexts(), Not(Contains(kSdrStart)));
  EXPECT_THAT(collected.Rows("SDRINFO"), IsEmpty());
}

TEST(Sdr, LogsAProcessThatCannotStartAsProgress) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "sensor").startError = 2;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(GetLogBetween(collected, kSdrStart, kSdrNext),
              ElementsAre(kSdrStart, "3 CreateProcess failed (2)"));
  EXPECT_THAT(collected.Rows("SDRINFO"), IsEmpty());
  EXPECT_EQ(collected.openHandles, 0);
}

TEST(Sdr, HandsOverOneInstancePerLineUnderOneKey) {
  std::string listing;
  std::vector<std::string> lines;
  for (int i = 1; i <= 40; ++i) {
    lines.push_back("SDRINFO=sensor " + std::to_string(i));
    listing += "sensor " + std::to_string(i) + "\r\n";
  }
  const auto rows = CollectBmcWith("sensor", listing).Rows("SDRINFO");
  ASSERT_EQ(rows.size(), 40u);
  for (std::size_t i = 0; i < rows.size(); ++i) EXPECT_THAT(rows[i], ElementsAre(lines[i]));
}

TEST(Sdr, IsOneInstanceFromTheFirstLineOn) {
  const std::string trace = CollectBmcWith("sensor", "a\nb\nc\n").trace;
  const std::size_t built = trace.find("\"class\":\"SDRINFO\"");
  ASSERT_NE(built, std::string::npos);
  EXPECT_EQ(built, trace.rfind("\"class\":\"SDRINFO\""));
  EXPECT_LT(trace.find("[repo] a \""), built);
  const std::string label = "\"label\":\"SDR Detailed Info\"";
  EXPECT_GT(trace.find(label), built);
}

TEST(Sdr, HasNoBlankLines) {
  EXPECT_THAT(ListValues(CollectBmcWith("sensor", "\r\n\r\na\r\n\n\r\n b\r\n\r\n"), "SDRINFO"),
              ElementsAre("a", " b"));
}

TEST(Sdr, MarksItsStepsAlsoForASingleLine) {
  EXPECT_THAT(GetLogBetween(CollectBmcWith("sensor", "a\r\n"), kSdrStart, kSdrNext),
              ElementsAre(kSdrStart, "4 dw:3", "4 a\r\n", "3 Oru Debug after sdr 1", "4 se:a\r\n",
                          "3 Oru Debug after sdr 2", "4 a ", "3 Oru Debug after sdr 3",
                          "3 Oru Debug after sdr 4"));
}

TEST(Sdr, WithoutAnyLineEndsAfterItsSecondStepWithoutInstance) {
  for (const std::string& output : {""s, "\r\n\r\n"s}) {
    const Collected collected = CollectBmcWith("sensor", output);
    EXPECT_THAT(
        GetLogBetween(collected, "3 Oru Debug after sdr 1", kSdrNext),
        ElementsAre("3 Oru Debug after sdr 1", "4 se:" + output, "3 Oru Debug after sdr 2"));
    EXPECT_THAT(collected.trace, Not(HasSubstr("\"class\":\"SDRINFO\"")));
  }
}

TEST(Sdr, TakesErrorTextsForLines) {
  const std::string output = "Error: no session\r\nCannot open an IPMI driver\r\nBad response\r\n";
  const Collected collected = CollectBmcWith("sensor", output);
  EXPECT_THAT(ListValues(collected, "SDRINFO"),
              ElementsAre("Error: no session", "Cannot open an IPMI driver", "Bad response"));
  EXPECT_EQ(collected.openHandles, 0);
}

TEST(Sdr, IsReadInChunksOf5119BytesAndNotCut) {
  std::string listing;
  for (int i = 0; i < 1000; ++i) listing += "sensor " + std::to_string(1000 + i) + "\r\n";
  ASSERT_EQ(listing.size(), 13000u);
  const Collected collected = CollectBmcWith("sensor", listing);
  const std::vector<std::string> values = ListValues(collected, "SDRINFO");
  ASSERT_EQ(values.size(), 1000u);
  EXPECT_EQ(values[393], "sensor 1393");  // The first chunk ends inside of it.
  EXPECT_EQ(values[999], "sensor 1999");
  EXPECT_THAT(
      GetLogBetween(collected, "4 dw:5119", "3 Oru Debug after sdr 1"),
      ElementsAre("4 dw:5119", "4 " + listing.substr(0, 5119), "4 dw:5119",
                  "4 " + listing.substr(5119, 5119), "4 dw:2762", "4 " + listing.substr(10238)));
}

TEST(Sdr, KeepsBytesAbove127AndEndsAtTheFirstNul) {
  EXPECT_THAT(ListValues(CollectBmcWith("sensor", "K\xfchler \xff\nb\0c\nd\n"s), "SDRINFO"),
              ElementsAre("K\xfchler \xff", "b"));
}

/// One of the two tables that are read back from a file.
struct FileTable {
  const char* arguments;
  const char* className;
  const char* path;
  const char* openFailure;
  std::vector<std::string> upToStart;  ///< log lines until the tool is started
  std::string progress;                ///< progress lines 2 to 4 without their number
  std::string lastProgress;
  const char* next;
};

const FileTable kFileTables[] = {
    {"korvaxoem fru",
     "FRUINFO",
     "C:\\Halyard\\logs\\fruinfo.txt",
     "4 Failed to open fru info file",
     {"3 Oru Debug  fru info 1",
      "4 fruinfo raw path:/c \"\"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" korvaxoem fru>"
      "\"C:\\Halyard\\logs\\fruinfo.txt\"\""},
     "3 Oru Debug  fru info ",
     "3 Oru Debug fru info 5",
     kSdrStart},
    {"sel",
     "SELINFO",
     "C:\\Halyard\\logs\\selinfo.txt",
     "4 Failed to open SEL log file",
     {"3 Oru Debug  sel info 1",
      "4 selinfo raw path:/c \"\"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" sel>"
      "\"C:\\Halyard\\logs\\selinfo.txt\"\"",
      "3 selinfo raw path:/c \"\"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" sel>"
      "\"C:\\Halyard\\logs\\selinfo.txt\"\""},
     "3 Oru Debug  sel info ",
     "3 Oru Debug  sel info 5",
     "3 Oru Debug  selhex 1"},
};

class BmcFile : public testing::TestWithParam<FileTable> {
 protected:
  std::vector<std::string> LogOf(const Collected& collected) const {
    return GetLogBetween(collected, GetParam().upToStart.front(), GetParam().next);
  }
  /// The table's log up to the start of the tool, then `rest`.
  std::vector<std::string> WithRest(const std::vector<std::string>& rest) const {
    std::vector<std::string> log = GetParam().upToStart;
    log.insert(log.end(), rest.begin(), rest.end());
    return log;
  }
};

INSTANTIATE_TEST_SUITE_P(Both, BmcFile, testing::ValuesIn(kFileTables),
                         [](const auto& test) { return std::string(test.param.className); });

TEST_P(BmcFile, LogsAProcessThatCannotStartAsDetail) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, GetParam().arguments).startError = 5;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_EQ(LogOf(collected), WithRest({"4 CreateProcess failed (5)"}));
  EXPECT_THAT(collected.opened, Not(Contains(HasSubstr(GetParam().className))));
  EXPECT_THAT(collected.trace, Not(HasSubstr("\"class\":\""s + GetParam().className)));
}

TEST_P(BmcFile, LogsAFileThatCannotBeOpened) {
  host::Recording machine = MakeBmcMachine();
  machine.readOnly.push_back(GetParam().path);
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_EQ(LogOf(collected), WithRest({GetParam().progress + "2", GetParam().progress + "3",
                                        GetParam().openFailure}));
  EXPECT_THAT(collected.trace, Not(HasSubstr("\"class\":\""s + GetParam().className)));
}

TEST_P(BmcFile, WithoutContentBuildsAnInstanceAndAddsNothing) {
  const Collected collected = CollectBmcWith(GetParam().arguments, "");
  EXPECT_EQ(LogOf(collected), WithRest({GetParam().progress + "2", GetParam().progress + "3",
                                        GetParam().progress + "4", GetParam().lastProgress}));
  EXPECT_THAT(collected.Rows(GetParam().className), IsEmpty());
  EXPECT_THAT(collected.trace, HasSubstr("\"class\":\""s + GetParam().className));
}

TEST_P(BmcFile, IsOneValuePerLineWithItsLineBreak) {
  EXPECT_THAT(ListValues(CollectBmcWith(GetParam().arguments, "a : 1\r\n\r\n b\nlast"),
                         GetParam().className),
              ElementsAre("a : 1\n", "\n", " b\n", "last"));
}

TEST_P(BmcFile, GivesALineOf600CharactersInTwoPieces) {
  EXPECT_THAT(ListValues(CollectBmcWith(GetParam().arguments, std::string(600, 'x') + "\r\nb\r\n"),
                         GetParam().className),
              ElementsAre(std::string(511, 'x'), std::string(89, 'x') + "\n", "b\n"));
}

TEST_P(BmcFile, GivesALineOf511CharactersAndItsLineBreakApart) {
  EXPECT_THAT(ListValues(CollectBmcWith(GetParam().arguments, std::string(511, 'x') + "\r\n"),
                         GetParam().className),
              ElementsAre(std::string(511, 'x'), "\n"));
}

TEST_P(BmcFile, EndsAValueAtItsFirstNulAndGoesOnWithTheNextLine) {
  EXPECT_THAT(ListValues(CollectBmcWith(GetParam().arguments, "a\0b\r\n\0\r\nc\xff\r\n"s),
                         GetParam().className),
              ElementsAre("a", "", "c\xff\n"));
}

TEST_P(BmcFile, TakesErrorTextsForLines) {
  EXPECT_THAT(ListValues(CollectBmcWith(GetParam().arguments, "Error: no session\r\n"),
                         GetParam().className),
              ElementsAre("Error: no session\n"));
}

TEST_P(BmcFile, StaysInTheLogFolderAsTheToolWroteIt) {
  const std::string output = "a\r\nb\0c"s;
  const Collected collected = CollectBmcWith(GetParam().arguments, output);
  ASSERT_TRUE(collected.files.contains(GetParam().path));
  EXPECT_EQ(collected.files.at(GetParam().path), output);
}

TEST_P(BmcFile, IsOpenedWithDoubledBackslashes) {
  const Collected collected = Collect(MakeBmcMachine(), kBmcModule, {"MCINFO"});
  const std::string name = std::string(GetParam().path).substr(sizeof("C:\\Halyard\\logs\\") - 1);
  EXPECT_THAT(collected.opened, Contains("C:\\\\Halyard\\\\logs\\\\" + name));
}

TEST_P(BmcFile, IsFoundInALogFolderThatFillsItsBuffer) {
  host::Recording machine = MakeBmcMachine();
  std::string folder = "D:\\";
  while (folder.size() < 255) folder += folder.size() % 2 == 0 ? '\\' : 'x';
  machine.logFolder = folder.substr(0, 254) + "\\";
  EXPECT_THAT(Collect(machine, kBmcModule, {"MCINFO"}).Rows(GetParam().className), Not(IsEmpty()));
}

TEST(RawDumps, HoldWhatTheUtilityWrites) {
  const Collected collected = Collect(MakeBmcMachine(9), kBmcModule, {"MCINFO"});
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\SEL_Hex.txt"), "01 00 02 ff\r\n");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\sensor_with_id_string.txt"),
            "0001 P0 Temp = 41\r\n\r\n0002 K\xfchler 1 = 5400\r\n");
}

TEST(RawDumps, OverwriteWhatIsThere) {
  host::Recording machine = MakeBmcMachine();
  machine.files["C:\\Halyard\\logs\\SEL_Hex.txt"] = "a much longer text of an earlier run";
  EXPECT_EQ(Collect(machine, kBmcModule, {"MCINFO"}).files.at("C:\\Halyard\\logs\\SEL_Hex.txt"),
            "01 00 02 ff\r\n");
}

TEST(RawDumps, HoldErrorTextsUnread) {
  const Collected collected = CollectBmcWith("sel -r", "Error: no session\r\n");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\SEL_Hex.txt"), "Error: no session\r\n");
  EXPECT_THAT(
      GetLogBetween(collected, "3 Oru Debug  selhex 1", "3 Oru Debug  sen_id 1"),
      ElementsAre("3 Oru Debug  selhex 1", "3 Oru Debug  selhex 2", "3 Oru Debug  selhex 3"));
}

TEST(RawDumps, OfTheEventLogReportAFailedStartWithoutABlank) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "sel -r").startError = 14;
  EXPECT_THAT(
      GetLogBetween(Collect(machine, kBmcModule, {"MCINFO"}), "3 Oru Debug  selhex 1",
                    "3 Oru Debug  sen_id 1"),
      ElementsAre("3 Oru Debug  selhex 1", "3 Oru Debug  selhex 2", "3 CreateProcess failed(14)"));
}

TEST(RawDumps, OfTheSensorsReportAFailedStartWithoutABlank) {
  host::Recording machine = MakeBmcMachine(9);  // Does not ask for the SDR with the same command.
  AnswerOf(machine, "sensor").startError = 14;
  EXPECT_THAT(
      GetLogBetween(Collect(machine, kBmcModule, {"MCINFO"}), "3 Oru Debug  sen_id 1",
                    "3 Oru Debug after sen_id"),
      ElementsAre("3 Oru Debug  sen_id 1", "3 Oru Debug  sen_id 2", "3 CreateProcess failed(14)"));
}

}  // namespace
}  // namespace test
