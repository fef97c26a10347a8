#include "host/answers/parts/bmc.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "tests/support/bmc_machine.h"

namespace {

using host::FindPlace;
using host::Integer;
using host::Parts;
using host::Place;
using host::Real;
using testing::IsEmpty;

Parts ReadBmc(const host::Recording& machine) {
  return host::ReadParts(host::Collect(machine, host::Selection{{"BMC_Info"}, {}}));
}

Parts ReadWith(const std::string& arguments, const std::string& output,
               std::uint32_t detection = 5) {
  host::Recording machine = test::MakeBmcMachine(detection);
  test::AnswerOf(machine, arguments).standardOutput = output;
  return ReadBmc(machine);
}

/// "STATE: OBSERVED"
std::string FindSource(const Parts& parts, const std::string& id) {
  const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                   [&](const auto& one) { return one.id == id; });
  return source == parts.sources.end() ? "" : source->state + ": " + source->observed;
}

constexpr char kTail[] = "ipmiutil sensor, completed successfully\r\n";
constexpr char kError[] =
    "LANPLUS error in RAKP1\r\nipmi_open_lan2 error -1\r\nipmiutil sensor version 3.18\r\n"
    "Opening lanplus connection to node 127.0.0.1 ...\r\nipmiutil sensor, error -1\r\n";

TEST(BmcParts, HaveSensorsWhereTheTableShowsThem) {
  const Parts parts = ReadWith("sensor -s -q",
                               "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n"
                               "Fan 1|5400|RPM|ok|600|900|1200|na|na|na\r\n");
  ASSERT_EQ(parts.sensors.size(), 2U);
  EXPECT_EQ(parts.sensors[1].readAt, (Place{"SENSORINFO", 2, "item4", 0, "ipmiutil sensor -s -q"}));
}

TEST(BmcParts, FindTheStatusBehindTwoBarsWithNothingBetween) {
  const Parts parts =
      ReadWith("sensor -s -q", "Fan 1 | 5400 || nc | 600 | 900 | 1200 | na | na | na\r\n");
  ASSERT_EQ(parts.sensors.size(), 1U);
  EXPECT_EQ(parts.sensors[0].status, "nc");
  EXPECT_EQ(parts.sensors[0].readAt, (Place{"SENSORINFO", 1, "item3", 0, "ipmiutil sensor -s -q"}));
}

TEST(BmcParts, HaveTheReportsLineForAPlaceWhereTheTableEndsBefore) {
  const Parts parts = ReadWith("sensor -s -q",
                               "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n"
                               "Fan 1 | 5400 | | nc | 600 | 900 | 1200 | na | na | na\r\n");
  ASSERT_EQ(parts.sensors.size(), 2U);
  EXPECT_EQ(parts.sensors[1].status, "nc");
  EXPECT_EQ(parts.sensors[1].readAt, (Place{{}, 0, {}, 2, "ipmiutil sensor -s -q"}));
}

TEST(BmcParts, AreNotMoreThanAnyMachineHas) {
  std::string readings;
  for (std::size_t i = 0; i < host::kMostParts + 2; ++i) {
    readings += "T" + std::to_string(i) + " | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n";
  }
  const Parts parts = ReadWith("sensor -s -q", readings);
  EXPECT_EQ(parts.sensors.size(), host::kMostParts);
  EXPECT_EQ(parts.sensors.back().name, "T1999");
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].text, "2 more sensors were left out: a table has 2000 at most");
}

TEST(BmcParts, KeepTheFirstOfTooManyUnreadLines) {
  std::string lines = "P0 Temp | 41 | C | cr | na | na | na | 85 | 92 | 100\r\n";
  for (std::size_t i = 0; i < host::kMostParts + 5; ++i) lines += "A | B\r\n";
  const Parts parts = ReadWith("sensor -s -q", lines);
  EXPECT_EQ(parts.sensors.size(), 1U);
  ASSERT_EQ(parts.unread.size(), host::kMostParts + 1);
  EXPECT_EQ(parts.unread[0].text, "5 more unread lines were left out: a table has 2000 at most");
}

TEST(BmcParts, FindCellsThatTheTableDealtToOtherRows) {
  // Nine cells a sensor, ten columns: the second status is the fourth cell of the second row.
  const std::string begin = " | Full | Temperature | 0";
  const Parts parts = ReadWith(
      "sensor -s -q", "ipmiutil sensor version 3.18\r\n0001" + begin +
                          "1 | A | OK | 1.00 C \t| Thresh 0:0:0:0:0:0 | Fri\r\n0002" + begin +
                          "2 | B | OK | 2.00 C \t| Thresh 0:0:0:0:0:0 | Fri\r\n" + kTail);
  ASSERT_EQ(parts.sensors.size(), 2U);
  EXPECT_EQ(parts.sensors[0].readAt.row, 1);
  EXPECT_EQ(parts.sensors[0].readAt.key, "item7");
  EXPECT_EQ(parts.sensors[1].readAt.row, 2);
  EXPECT_EQ(parts.sensors[1].readAt.key, "item6");
  EXPECT_EQ(FindSource(parts, "sensors"), "read: ");
}

TEST(BmcParts, ReadAListingThatTheTableLeavesOutForAnErrorInIt) {
  const Parts parts =
      ReadWith("sensor -s -q",
               "0001 | Full | Fan | 11 | F1 | OK | 40.00 RPM \t| Thresh 0 | Fri\r\n"
               "0002 | Full | Fan | 12 | F2 Error in GetSensorReading, cc = 0xc3\r\n"
               "ipmiutil sensor, error -1\r\n");
  ASSERT_EQ(parts.sensors.size(), 1U);
  EXPECT_EQ(parts.sensors[0].readAt, (Place{"", 0, "", 1, "ipmiutil sensor -s -q"}));
  EXPECT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(FindSource(parts, "sensors"), "failed: cut short: ipmiutil sensor, error -1");
}

TEST(BmcParts, NameTheTableThatShowsWhyThereAreNoSensors) {
  const auto tell = [](const std::string& arguments) {
    const Parts parts = ReadWith(arguments, kError);
    const auto source = std::ranges::find(parts.sources, "sensors", &host::PartSource::id);
    return source->readAt.className + ": " + source->observed;
  };
  EXPECT_EQ(tell("sensor -s -q"), "SENSORINFO: ipmiutil sensor, error -1");
  EXPECT_EQ(tell("sensor"), "SDRINFO: cut short: ipmiutil sensor, error -1");
}

TEST(BmcParts, HaveStatesOfPlatformsThatAreNotAskedForTheirRecords) {
  const std::string record =
      "0001 SDR Comp 02 6f 20 a 08 snum 43 PS2 Status       = 0009 AC_Lost\r\n";
  Parts parts = ReadWith("sensor", record, 9);
  ASSERT_FALSE(parts.sensors.empty());
  EXPECT_EQ(parts.sensors.back().states, Integer(9));
  EXPECT_EQ(FindPlace(parts.sensors.back(), "states"), (Place{"", 0, "", 1, "ipmiutil sensor"}));
  parts = ReadWith("sensor", record, 5);
  EXPECT_EQ(FindPlace(parts.sensors.back(), "states"),
            (Place{"SDRINFO", 1, "SDRINFO", 0, "ipmiutil sensor"}));
}

TEST(BmcParts, KnowWhichSensorAnEventIsAbout) {
  host::Recording machine = test::MakeBmcMachine();
  test::AnswerOf(machine, "sensor").standardOutput =
      "0001 SDR Comp 02 6f 20 a 08 snum 43 PS2 Status       = 0009 AC_Lost\r\n";
  test::AnswerOf(machine, "sel").standardOutput =
      "SEL Ver 51 Support 0a, Size = 512 records (Used=3, Free=509)\r\n"
      "RecId Date/Time_______ SEV Src_ Evt_Type___ Sens# Evt_detail - Trig [Evt_data]\r\n"
      "0001 08/21/26 11:20:45 INF Sms  Power Supply #43  AC Lost 6f [03 ff ff]\r\n"
      "0002 08/21/26 11:20:45 INF Sms  Memory #0e  Correctable ECC 6f [00 ff ff]\r\n"
      "0003 INF e0 OEM Event 42\r\n"
      "0004 08/21/26 11\r\n"
      "ipmiutil sel, completed successfully\r\n";
  const Parts parts = ReadBmc(machine);
  ASSERT_EQ(parts.events.size(), 3U);
  EXPECT_EQ(parts.events[0].part, "sensors");
  EXPECT_EQ(parts.events[0].partId, "PS2 Status");
  EXPECT_EQ(parts.events[0].readAt, (Place{"SELINFO", 3, "SELINFO", 0, "ipmiutil sel"}));
  EXPECT_EQ(parts.events[1].partId, "Memory #0e");
  EXPECT_EQ(parts.events[2].part, "");
  ASSERT_EQ(parts.unread.size(), 2U);
  EXPECT_EQ(parts.unread[1].text, "0004 08/21/26 11");
  EXPECT_EQ(FindSource(parts, "sel"), "read: ");
  const auto sel = std::find_if(parts.sources.begin(), parts.sources.end(),
                                [](const auto& one) { return one.id == "sel"; });
  EXPECT_EQ(sel->records, Integer(3));
  EXPECT_EQ(sel->capacity, Integer(512));
}

TEST(BmcParts, HavePowerSuppliesOfSeveralLines) {
  const Parts parts =
      ReadWith("korvaxoem psu",
               "PSU 1  present   NG-PS   serial PSN1   1100 W\r\n"
               "       AC input  231.5 V  0.92 A  208 W\r\n"
               "       DC output  12.08 V  15.6 A  188 W   fan 6240 RPM   status OK\r\n\r\n"
               "PSU 2  present   NG-PS   serial PSN2   1100 W\r\n"
               "       AC input  0.0 V\r\n");
  ASSERT_EQ(parts.powerSupplies.size(), 2U);
  EXPECT_EQ(parts.powerSupplies[0].id, "PSU 1");
  EXPECT_EQ(parts.powerSupplies[0].acVolts, Real(231.5));
  EXPECT_EQ(parts.powerSupplies[0].outputWatts, Real(188));
  EXPECT_EQ(parts.powerSupplies[0].status, "OK");
  EXPECT_EQ(FindPlace(parts.powerSupplies[0], "status").row, 3);
  EXPECT_EQ(parts.powerSupplies[1].readAt.row, 4);
  EXPECT_EQ(parts.powerSupplies[1].text,
            "PSU 2  present   NG-PS   serial PSN2   1100 W / AC input  0.0 V");
  EXPECT_EQ(parts.powerSupplies[1].acVolts, Real(0));
  EXPECT_EQ(parts.powerSupplies[1].status, "");
}

TEST(BmcParts, HaveLightsWithAndWithoutColour) {
  const Parts parts = ReadWith(
      "korvaxoem led", "System status LED  Amber   On\r\nFan LED off\r\nsomething else\r\n");
  ASSERT_EQ(parts.leds.size(), 2U);
  EXPECT_EQ(parts.leds[0].id, "System status LED");
  EXPECT_EQ(parts.leds[0].colour, "amber");
  EXPECT_EQ(parts.leds[0].state, "on");
  EXPECT_EQ(parts.leds[1].id, "Fan LED");
  EXPECT_EQ(parts.leds[1].colour, "");
  EXPECT_EQ(parts.leds[1].state, "off");
  EXPECT_EQ(parts.unread.back().text, "something else");
}

TEST(BmcParts, HaveTheCodeOfTheSelfTest) {
  const auto code = [](const std::string& output) {
    const Parts parts = ReadWith("korvaxoem selftest", output);
    return parts.selfTests.size() == 1 ? parts.selfTests[0].code + " " + parts.selfTests[0].text
                                       : "none";
  };
  EXPECT_EQ(code("Selftest result : 57h 02h,\r\nFRU corrupted\r\n"),
            "57 Selftest result: 57h 02h,  FRU corrupted");
  EXPECT_EQ(code("Result : 57h 02h\r\nSDR empty\r\nplease reload\r\n"),
            "57 Result: 57h 02h SDR empty, please reload");
  EXPECT_EQ(code("Result : 0xFF\r\n"), "ff Result: 0xFF");
  EXPECT_EQ(code("Result : 5512\r\n"), " Result: 5512");
}

// --- sources ---

TEST(BmcSources, AreReadOnlyWhenSomethingIsUnderstood) {
  // A refused login is rows of text as well.
  host::Recording machine = test::MakeBmcMachine();
  for (const char* arguments : {"sensor", "sensor -s -q", "korvaxoem fru", "sel"}) {
    test::AnswerOf(machine, arguments).standardOutput = kError;
  }
  const Parts parts = ReadBmc(machine);
  for (const char* id : {"sensors", "fru", "sel"}) {
    EXPECT_EQ(FindSource(parts, id), "failed: ipmiutil sensor, error -1") << id;
  }
  EXPECT_THAT(parts.sensors, IsEmpty());
  EXPECT_THAT(parts.unread, IsEmpty());
}

// The later of two clocks: the listing takes a while.
TEST(BmcSources, TellWhenTheSensorsWereRead) {
  const std::string begin = "0001 | Full | Fan | 1";
  const Parts parts =
      ReadWith("sensor -s -q",
               begin + "1 | F1 | OK | 40.00 RPM \t| Thresh 0 | Fri Nov 20 09:23:10 2026\r\n" +
                   begin + "2 | F2 | OK | 40.00 RPM \t| Thresh 0 | Fri Nov 20 09:23:12 2026\r\n" +
                   begin + "3 | F3 | OK | 40.00 RPM \t| Thresh 0 | never\r\n");
  const auto sensors = std::find_if(parts.sources.begin(), parts.sources.end(),
                                    [](const auto& one) { return one.id == "sensors"; });
  ASSERT_NE(sensors, parts.sources.end());
  EXPECT_EQ(sensors->time, "2026-11-20T09:23:12");
}

TEST(BmcSources, ShowWhereWordsWereCut) {
  const std::string words(300, 'w');
  EXPECT_EQ(FindSource(ReadWith("korvaxoem fru", words + "\r\n"), "fru"),
            "failed: " + words.substr(0, 199) + "…");
}

TEST(BmcSources, AreReadWhenAListingIsWholeAndEmpty) {
  EXPECT_EQ(FindSource(ReadWith("sel", "ipmiutil sel, completed successfully\r\n"), "sel"),
            "read: ");
  EXPECT_EQ(
      FindSource(ReadWith("korvaxoem fru", "ipmiutil fru, completed successfully\r\n"), "fru"),
      "read: ");
}

TEST(BmcSources, KnowTheFruByItsFields) {
  EXPECT_EQ(
      FindSource(ReadWith("korvaxoem fru", "[Baseboard,20,00] Product Name : R208\r\n"), "fru"),
      "read: ");
  EXPECT_EQ(FindSource(ReadWith("korvaxoem fru", "nonsense\r\n"), "fru"), "failed: nonsense");
}

TEST(BmcSources, AreCutShortWithoutTheLastLineOfAListingThatHasTheFirst) {
  const std::string entry = "0001 INF e0 OEM Event 42\r\n";
  EXPECT_EQ(FindSource(ReadWith("sel", entry), "sel"), "read: ");
  EXPECT_EQ(FindSource(ReadWith("sel", "ipmiutil sel version 3.18\r\n" + entry), "sel"),
            "failed: cut short: it breaks off without its last line");
}

TEST(BmcSources, AreCutShortWithFewerRecordsThanTheLogSaysItHas) {
  const auto read = [](const std::string& used) {
    return FindSource(ReadWith("sel", "SEL Ver 51 Support 0a, Size = 512 records (Used=" + used +
                                          ", Free=486)\r\n0001 INF e0 OEM Event 42\r\n"),
                      "sel");
  };
  EXPECT_EQ(read("1"), "read: ");
  EXPECT_EQ(read("26"), "failed: cut short: 1 of 26 records");
}

TEST(BmcSources, AreCutShortWithAnExitCodeUnlessTheListingIsWhole) {
  host::Recording machine = test::MakeBmcMachine();
  host::RecordedCommand& sel = test::AnswerOf(machine, "sel");
  sel.exitCode = 3;
  sel.standardOutput = "0001 INF e0 OEM Event 42\r\n";
  EXPECT_EQ(FindSource(ReadBmc(machine), "sel"),
            "failed: cut short: ipmiutil sel ended with code 3");
  sel.standardOutput = "0001 INF e0 OEM Event 42\r\nipmiutil sel, completed successfully\r\n";
  EXPECT_EQ(FindSource(ReadBmc(machine), "sel"), "read: ");
}

TEST(BmcSources, KnowWhetherThereWasASelfTest) {
  EXPECT_EQ(
      FindSource(ReadWith("korvaxoem selftest", "Selftest result : 55h 00h\r\n"), "self-test"),
      "read: ");
  host::Recording machine = test::MakeBmcMachine();
  host::RecordedCommand& test = test::AnswerOf(machine, "korvaxoem selftest");
  test.standardOutput = "Selftest result : 55h 00h\r\n";
  test.exitCode = 3;
  EXPECT_EQ(FindSource(ReadBmc(machine), "self-test"),
            "failed: cut short: ipmiutil korvaxoem selftest ended with code 3");
  test.standardOutput = "";
  EXPECT_THAT(FindSource(ReadBmc(machine), "self-test"), testing::StartsWith("failed: "));
}

TEST(BmcSources, AreCutShortWhereOneOfTwoListingsIsEmpty) {
  host::Recording machine = test::MakeBmcMachine();
  test::AnswerOf(machine, "sensor -s -q").standardOutput =
      "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n";
  test::AnswerOf(machine, "sensor").standardOutput = "";
  EXPECT_EQ(FindSource(ReadBmc(machine), "sensors"),
            "failed: cut short: ipmiutil sensor printed nothing");
}

TEST(BmcSources, AreCutShortWithinTheFirstLineOfAListing) {
  for (const char* head : {"ipm", "ipmiutil s", "ipmiutil sensor"}) {
    host::Recording machine = test::MakeBmcMachine();
    test::AnswerOf(machine, "sensor -s -q").standardOutput =
        "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n";
    test::AnswerOf(machine, "sensor").standardOutput = head;
    EXPECT_EQ(FindSource(ReadBmc(machine), "sensors"),
              "failed: cut short: it breaks off without its last line")
        << head;
  }
}

TEST(BmcSources, AreCutShortWhereOneOfTwoListingsCouldNotBeMade) {
  for (const char* listing : {"sensor", "sensor -s -q"}) {
    host::Recording machine = test::MakeBmcMachine();
    test::AnswerOf(machine, "sensor -s -q").standardOutput =
        "P0 Temp | 41 | C | ok | na | na | na | 85 | 92 | 100\r\n";
    test::AnswerOf(machine, "sensor").standardOutput =
        "0001 SDR Full 01 01 20 a 01 snum 1a P0 Temp      = 29 OK   41.00 degrees C\r\n";
    test::AnswerOf(machine, listing).startError = 5;
    EXPECT_EQ(FindSource(ReadBmc(machine), "sensors"),
              "failed: cut short: ipmiutil " + std::string(listing) + " printed nothing");
  }
}

TEST(BmcSources, AreCutShortWhenTheListingEndsWithAnError) {
  EXPECT_EQ(
      FindSource(ReadWith("sel", "0001 INF e0 OEM Event 42\r\nipmiutil sel, error -3\r\n"), "sel"),
      "failed: cut short: ipmiutil sel, error -3");
}

TEST(BmcSources, AreNoneWithoutABmc) {
  const Parts parts = ReadBmc(test::MakeBmcMachine(3));
  for (const char* id : {"sensors", "sel", "fru", "power supplies", "leds"}) {
    EXPECT_EQ(FindSource(parts, id), "none: this machine has no BMC") << id;
  }
}

TEST(BmcSources, AreNoneWhereTheyAreNotAsked) {
  const Parts parts = ReadBmc(test::MakeBmcMachine(9));
  EXPECT_EQ(FindSource(parts, "leds"), "none: this platform family (9) is not asked for it");
  EXPECT_EQ(FindSource(parts, "sensors"), "read: ");
}

TEST(BmcSources, AreNoneWhereTheToolIsMissing) {
  host::Recording machine = test::MakeBmcMachine();
  std::erase_if(machine.commands,
                [](const auto& command) { return command.tool == "ipmiutilnh.exe"; });
  const Parts parts = ReadBmc(machine);
  for (const char* id : {"sensors", "sel", "fru", "power supplies", "leds", "self-test"}) {
    EXPECT_EQ(FindSource(parts, id), "none: ipmiutilnh.exe is not on this machine") << id;
  }
  EXPECT_THAT(parts.selfTests, IsEmpty());
  EXPECT_THAT(parts.unread, IsEmpty());
}

// The interpreter's words in place of one answer say nothing of the other.
TEST(BmcSources, AreNotNoneWhereOneOfTwoListingsFails) {
  host::Recording machine = test::MakeBmcMachine();
  std::erase_if(machine.commands,
                [](const auto& command) { return command.arguments == "sensor -s -q"; });
  test::AnswerOf(machine, "sensor").standardOutput = "Cannot open an IPMI driver\r\n";
  EXPECT_EQ(FindSource(ReadBmc(machine), "sensors"), "failed: Cannot open an IPMI driver");
  std::erase_if(machine.commands,
                [](const auto& command) { return command.arguments == "korvaxoem led"; });
  EXPECT_EQ(FindSource(ReadBmc(machine), "leds"),
            "none: the recording has no such answer of ipmiutilnh.exe");
}

TEST(BmcSources, AreNoneWhereTheMakersQueryHasNoAnswer) {
  EXPECT_EQ(FindSource(ReadWith("korvaxoem led", ""), "leds"),
            "none: ipmiutilnh.exe printed nothing");
  EXPECT_EQ(FindSource(ReadWith("korvaxoem psu", "Invalid command\r\n"), "power supplies"),
            "failed: Invalid command");
}

TEST(BmcSources, AreNoneWhenNobodyAsked) {
  const Parts parts = host::ReadParts(
      host::Collect(test::MakeBmcMachine(), host::Selection{{"Windows_Related_Info"}, {}}));
  EXPECT_EQ(FindSource(parts, "sensors"), "none: not collected");
}

}  // namespace
