// One machine, edited as time edits machines: each edit is found, and nothing else.
#include <gmock/gmock.h>

#include <chrono>
#include <string>
#include <vector>

#include "host/answers/columns_fit.h"
#include "tests/answers/difference/compared_machines.h"

namespace {

using host::Difference;
using host::Recording;
using test::AssessedMachine;
using test::Compare;
using test::Exchange;
using test::ListDifferences;
using test::ListLines;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

constexpr char kShow[] = "/c0 show";
constexpr char kDrives[] = "/c0/eall/sall show all";
constexpr char kEvents[] = "/c0 show events";
constexpr char kReadings[] = "sensor -s -q";
constexpr char kRecords[] = "sensor";
constexpr char kSel[] = "sel";
constexpr char kFru[] = "korvaxoem fru";
constexpr char kArcconf[] = "Controller_1_Config.txt";

class EditedMachine : public testing::Test {
 protected:
  std::vector<std::string> Differences(const host::DifferenceOptions& options = {}) const {
    return ListDifferences(before, after, options);
  }

  const Recording before = test::LoadSample("two-socket-server");
  Recording after = before;
};

TEST_F(EditedMachine, HasNoDifferenceToItself) { EXPECT_THAT(Differences(), IsEmpty()); }

// Readings, temperatures, clocks, neighbours on the network.
TEST_F(EditedMachine, MayBeWarmerAndLater) {
  Exchange(after, kReadings, "CPU0 Temp        |   47.00", "CPU0 Temp        |   55.00");
  Exchange(after, kRecords, "= 23 OK   47.00 degrees C", "= 2b OK   55.00 degrees C");
  Exchange(after, kDrives, "Drive Temperature =  24C (75.20 F)",
           "Drive Temperature =  31C (87.80 F)");
  Exchange(after, kShow, "System Time = 11/18/2026 09:41:07", "System Time = 11/18/2026 21:14:30");
  Exchange(after, kShow, "KVCAP3 Optimal 27C", "KVCAP3 Optimal 31C");
  Exchange(after, "korvaxoem psu", "0.92 A  208 W", "0.97 A  219 W");
  Exchange(after, "-a", "10.24.9.115", "10.24.9.116");
  Exchange(after, "", "ESTABLISHED", "TIME_WAIT");
  EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(EditedMachine, HasDrivesThatChangedPlaces) {
  Exchange(after, kDrives, "Z4K002C7663", "swapped");
  Exchange(after, kDrives, "Z4K002C7A3A", "Z4K002C7663");
  Exchange(after, kDrives, "swapped", "Z4K002C7A3A");
  EXPECT_THAT(Differences(), ElementsAre("> drive lsi0 69:2 (Z4K002C7A3A) place 69:3 -> 69:2",
                                         "> drive lsi0 69:3 (Z4K002C7663) place 69:2 -> 69:3"));
}

/// The two controllers of storcli under each other's numbers.
Recording Renumber(Recording machine) {
  for (host::RecordedCommand& command : machine.commands) {
    if (!command.tool.starts_with("storcli")) continue;
    std::string text(command.standardOutput.Text());
    for (std::string* one : {&command.arguments, &text}) {
      test::ExchangeIn(*one, "/c0", "/c#");
      test::ExchangeIn(*one, "/c1", "/c0");
      test::ExchangeIn(*one, "/c#", "/c1");
      test::ExchangeIn(*one, "Controller = 0", "Controller = #");
      test::ExchangeIn(*one, "Controller = 1", "Controller = 0");
      test::ExchangeIn(*one, "Controller = #", "Controller = 1");
    }
    command.standardOutput = text;
  }
  return machine;
}

TEST_F(EditedMachine, HasControllersWithOtherNumbers) {
  after = Renumber(before);
  EXPECT_THAT(Differences(), ElementsAre("? not compared: RAIDINFO: not read in the second: it is "
                                         "of lsi0, which was another controller"));
}

TEST_F(EditedMachine, HasADriveThatWasReplaced) {
  Exchange(after, kDrives, "S4K002CBB81", "NEW00000001");
  Exchange(after, kDrives, "Other Error Count = 4\r\nDrive Temperature",
           "Other Error Count = 0\r\nDrive Temperature");
  EXPECT_THAT(Differences({.parts = {"drives"}}),
              Contains("= drive lsi0 69:14 (NEW00000001) serial S4K002CBB81 -> NEW00000001"));
}

TEST_F(EditedMachine, HasCountersThatGrew) {
  Exchange(after, kDrives, "Media Error Count = 37", "Media Error Count = 52");
  EXPECT_THAT(Differences(), ElementsAre("~ drive lsi0 69:9 (Z4K002C9144) media_errors 37 -> 52"));
}

TEST_F(EditedMachine, HasADriveThatFailed) {
  for (const char* report : {kShow, kDrives}) {
    Exchange(after, report, "69:8     20 Onln ", "69:8     20 Offln");
  }
  Exchange(after, kShow, "1/1   RAID6  Optl ", "1/1   RAID6  Pdgd ");
  const std::vector<std::string> lines = Differences();
  EXPECT_THAT(lines, IsSupersetOf({"~ drive lsi0 69:8 (Z4K002C8D6D) state Onln -> Offln",
                                   "~ volume lsi0 v1 state Optl -> Pdgd"}));
  EXPECT_THAT(lines.front(), StartsWith("new critical drive.failed lsi0 69:8: "));
  EXPECT_THAT(lines, Contains(StartsWith("new warning volume.partly-degraded lsi0 v1")));
  EXPECT_THAT(lines, Not(Contains(HasSubstr("gone"))));
}

constexpr char kLastOfSel[] = "Lo Noncrit thresh act=13 thr=14";
constexpr char kNewOfSel[] =
    "Lo Noncrit thresh act=13 thr=14\r\n"
    "000d 11/18/26 09:00:00 CRT BMC  Power Supply #4d  AC Lost     6f [03 ff ff]";

TEST_F(EditedMachine, HasANewEntryInTheSel) {
  Exchange(after, kSel, kLastOfSel, kNewOfSel);
  const Difference difference = Compare(before, after);
  ASSERT_EQ(difference.logs.size(), 1U);
  EXPECT_EQ(difference.logs[0].log, "SEL");
  EXPECT_FALSE(difference.logs[0].wasCleared);
  ASSERT_EQ(difference.logs[0].entries.size(), 1U);
  EXPECT_EQ(difference.logs[0].entries[0].number, 13);
  EXPECT_EQ(difference.logs[0].entries[0].time, "2026-11-18T09:00:00");
  EXPECT_THAT(ListLines(difference), Contains("log SEL: 1 new, 1 of them warnings or worse:"));
  EXPECT_THAT(difference.parts, IsEmpty());
  EXPECT_THAT(difference.cells, IsEmpty());
}

TEST_F(EditedMachine, HasASelThatWasCleared) {
  for (host::RecordedCommand& command : after.commands) {
    if (command.arguments != kSel) continue;
    std::string text(command.standardOutput.Text());
    const std::size_t first = text.find("0001 ");
    const std::size_t end = text.find("ipmiutil sel, completed");
    text.replace(first, end - first,
                 "0001 11/18/26 09:30:00 INF BMC  Event Log #52  Log Cleared 6f [02 ff ff]\r\n");
    const std::string used = "Used=12, Free=1012";
    text.replace(text.find(used), used.size(), "Used=1, Free=1023");
    command.standardOutput = text;
  }
  const Difference difference = Compare(before, after);
  ASSERT_EQ(difference.logs.size(), 1U);
  EXPECT_TRUE(difference.logs[0].wasCleared);
  EXPECT_EQ(difference.logs[0].entries.size(), 1U);
  EXPECT_THAT(ListLines(difference),
              Contains("log SEL: 1 new, it was cleared or has wrapped around"));
}

TEST_F(EditedMachine, HasNewEventsOfItsController) {
  Exchange(after, kEvents, "Event Description: Unexpected sense: PD 15(e0x45/s9), Sense: 1/0b/01",
           "Event Description: Unexpected sense: PD 15(e0x45/s9), Sense: 3/11/00");
  const Difference difference = Compare(before, after);
  ASSERT_EQ(difference.logs.size(), 1U);
  EXPECT_EQ(difference.logs[0].log, "LSI lsi0");
  EXPECT_GE(difference.logs[0].entries.size(), 1U);
  EXPECT_THAT(difference.parts, IsEmpty());
}

TEST_F(EditedMachine, HasNewFirmware) {
  Exchange(after, "korvaxoem ver", "3.62.17", "3.63.02");
  EXPECT_THAT(Differences(), ElementsAre("~ VERINFO BMC Firmware: '3.62.17' -> '3.63.02'"));
}

TEST_F(EditedMachine, HasAnotherBoard) {
  Exchange(after, kFru, "NGB22-00982", "NGB26-00017");
  EXPECT_THAT(Differences(),
              ElementsAre("~ FRUINFO [Baseboard,20,00] Board Serial Number: 'NGB22-00982' -> "
                          "'NGB26-00017'"));
}

/// Without the lines that begin so.
void DropLines(Recording& machine, const std::string& arguments, const std::string& begin) {
  for (host::RecordedCommand& command : machine.commands) {
    if (command.arguments != arguments) continue;
    std::string text(command.standardOutput.Text());
    for (std::size_t at = 0; (at = text.find("\n" + begin, at)) != std::string::npos;) {
      text.erase(at, text.find('\n', at + 1) - at);
    }
    command.standardOutput = text;
  }
}

TEST_F(EditedMachine, LacksADrive) {
  DropLines(after, kShow, "69:22 ");
  Exchange(after, kShow, "Physical Drives = 24", "Physical Drives = 23");
  for (host::RecordedCommand& command : after.commands) {
    if (command.arguments != kDrives) continue;
    std::string text(command.standardOutput.Text());
    const std::size_t begin = text.find("Drive /c0/e69/s22 :");
    text.erase(begin, text.find("Drive /c0/e69/s23 :") - begin);
    command.standardOutput = text;
  }
  EXPECT_THAT(Differences(), ElementsAre("- drive lsi0 69:22 (S4K002CE1E7) UGood"));
  EXPECT_THAT(ListDifferences(after, before),
              ElementsAre("+ drive lsi0 69:22 (S4K002CE1E7) UGood"));
}

// The controller's tool says that there is one less.
TEST_F(EditedMachine, LacksAController) {
  std::erase_if(after.commands, [](const host::RecordedCommand& command) {
    return command.arguments.starts_with("/c1");
  });
  Exchange(after, "show ctrlcount", "Controller Count = 2", "Controller Count = 1");
  const Difference difference = Compare(before, after);
  EXPECT_THAT(ListLines(difference), Contains(StartsWith("- controller lsi1 ")));
  for (const host::PartDifference& part : difference.parts) {
    EXPECT_EQ(part.change, host::PartChange::kRemoved) << part.id;
    EXPECT_THAT(part.id, StartsWith("lsi1"));
  }
  EXPECT_GE(difference.parts.size(), 3U);
}

// Of those that it counts and of which it has a report, all is known.
TEST_F(EditedMachine, LacksItsSecondMicrochipController) {
  Exchange(after, kArcconf, "Controllers found: 2", "Controllers found: 1");
  std::erase_if(after.files,
                [](const auto& file) { return file.first.ends_with("Controller_2_Config.txt"); });
  EXPECT_THAT(Differences(), ElementsAre(StartsWith("- controller mchp2")));
}

TEST_F(EditedMachine, IsCheckedAlthoughAnotherControllerIsNot) {
  std::erase_if(after.files,
                [](const auto& file) { return file.first.ends_with("Controller_2_Config.txt"); });
  Recording well = after;
  Exchange(after, kArcconf, "State                                   : Online",
           "State                                   : Rebuilding");
  const std::vector<std::string> lines = ListDifferences(after, well);
  EXPECT_THAT(lines, Contains(StartsWith("gone warning drive.rebuilding mchp1 0,0")));
  EXPECT_THAT(lines, Not(Contains(StartsWith("not checked"))));
}

TEST_F(EditedMachine, HasNoControllerAnyMore) {
  const std::vector<std::string> lines = ListDifferences(before, test::LoadSample("no-controller"));
  EXPECT_THAT(lines, Contains(StartsWith("- controller lsi0 ")));
  EXPECT_THAT(lines, Contains(StartsWith("- controller intel")));
  EXPECT_THAT(lines, Contains(StartsWith("gone warning drive.predicted intel 0-2-0-0")));
  EXPECT_THAT(lines, Not(Contains(HasSubstr("counts no controller"))));
}

TEST_F(EditedMachine, TellsWhyALogIsEmpty) {
  const std::vector<std::string> lines = ListDifferences(before, test::LoadSample("hba-only"));
  EXPECT_THAT(lines, Contains(StartsWith("? not compared: log LSI lsi0: not read in the second: "
                                         "storcli.exe ended with code 46")));
  EXPECT_THAT(lines, Contains(HasSubstr("there is no controller lsi1")));
}

TEST_F(EditedMachine, IsNotComparedByCellsThatDoNotFit) {
  AssessedMachine old(before);
  AssessedMachine now(test::LoadSample("hba-only"));
  host::NoteUnfitColumns(old.collection);
  host::NoteUnfitColumns(now.collection);
  const std::vector<std::string> lines = ListLines(host::FindDifference(old.Get(), now.Get()));
  EXPECT_THAT(lines, Contains(StartsWith("~ RAIDINFO Product Name")));
  EXPECT_THAT(lines, Not(Contains(HasSubstr("RAIDINFO FW Version"))));
  EXPECT_THAT(lines, Not(Contains(StartsWith("~ PMCVER"))));
  EXPECT_THAT(lines, Contains(HasSubstr("1 cell of RAIDINFO")));
}

TEST_F(EditedMachine, LacksPartsFirstThenCellsThenLogs) {
  AssessedMachine old(before);
  AssessedMachine now(test::LoadSample("hba-only"));
  host::NoteUnfitColumns(now.collection);
  std::vector<std::string> told;
  for (const auto& one : host::FindDifference(old.Get(), now.Get()).notCompared) {
    if (one.what == "51 sensors" || one.what == "1 cell of RAIDINFO" || one.what == "log SEL") {
      told.push_back(one.what);
    }
  }
  EXPECT_THAT(told, testing::ElementsAre("51 sensors", "1 cell of RAIDINFO", "log SEL"));
}

// The log calls a sensor otherwise where its name is not known.
TEST_F(EditedMachine, HasOneEntryThoughSensorsWereNotRead) {
  Recording blind = before;
  std::erase_if(blind.commands, [](const host::RecordedCommand& command) {
    return command.arguments == kReadings || command.arguments == kRecords;
  });
  for (Recording* machine : {&after, &blind}) {
    Exchange(*machine, kSel, "Used=12", "Used=13");
    Exchange(*machine, kSel, "ipmiutil sel, completed",
             "000d 11/17/26 10:00:00 CRT BMC  Processor #4a  Thermal Trip 6f [01 ff ff]\n"
             "ipmiutil sel, completed");
  }
  const std::vector<std::string> lines = ListDifferences(after, blind);
  EXPECT_THAT(lines, Not(Contains(StartsWith("new critical sel"))));
  EXPECT_THAT(lines, Not(Contains(StartsWith("gone critical sel"))));
}

// --- other tools ---

TEST_F(EditedMachine, MayHaveAToolThatMasksSerialNumbers) {
  Exchange(after, kArcconf, "OV41F2207C1", "OV*********");
  Exchange(after, kArcconf, "QX-70C410E", "QX-*******");
  EXPECT_THAT(Differences(),
              ElementsAre("~ controller mchp1 (OV*********) serial OV41F2207C1 -> OV*********",
                          "~ drive mchp1 0,0 (QX-*******) serial QX-70C410E -> QX-*******"));
}

TEST_F(EditedMachine, RebuildsADriveOfAnArcconfVolume) {
  Exchange(after, kArcconf, "Status of Logical Device                   : Optimal",
           "Status of Logical Device                   : Degraded");
  Exchange(after, kArcconf, "State                                   : Online",
           "State                                   : Rebuilding");
  const std::vector<std::string> lines = Differences();
  EXPECT_THAT(lines, IsSupersetOf({"~ drive mchp1 0,0 (QX-70C410E) state Online -> Rebuilding",
                                   "~ volume mchp1 v0 state Optimal -> Degraded"}));
  EXPECT_THAT(lines, Contains(StartsWith("new critical volume.degraded mchp1 v0")));
}

// Another build of the tool does not know the maker's words.
TEST_F(EditedMachine, MayHaveOtherWordsForTheSameStates) {
  Exchange(after, kRecords, "= 0080 ProcPresent", "= 0080 DiscreteEvt");
  EXPECT_THAT(Differences(), IsEmpty());
}

TEST_F(EditedMachine, HasAProcessorThatWasDisabled) {
  Exchange(after, kRecords, "CPU1 Status      = 0080 ProcPresent",
           "CPU1 Status      = 0180 ProcDisabled");
  EXPECT_THAT(Differences(),
              IsSupersetOf({"~ sensor CPU1 Status status ProcPresent -> ProcDisabled, states 128 "
                            "-> 384"}));
}

// --- options ---

TEST_F(EditedMachine, IsComparedWithoutWhatIsIgnored) {
  Exchange(after, kDrives, "Media Error Count = 37", "Media Error Count = 52");
  Exchange(after, kFru, "NGB22-00982", "NGB26-00017");
  Exchange(after, "korvaxoem ver", "3.62.17", "3.63.02");
  EXPECT_THAT(Differences({.ignored = {{"drives", "media_errors"},
                                       {"FRUINFO", "*Serial Number"},
                                       {"VERINFO", "BMC Firmware"}}}),
              IsEmpty());
}

TEST_F(EditedMachine, IsComparedByTheCellsOfANamedTable) {
  Exchange(after, kShow, "69:22    42 UGood", "69:22    42 UBad ");
  const std::vector<std::string> lines = Differences({.tables = {"PINFO"}, .parts = {"leds"}});
  EXPECT_THAT(lines, ElementsAre("~ PINFO 69:22 State: 'UGood' -> 'UBad'"));
}

TEST_F(EditedMachine, HasReportsWithOtherLines) {
  Exchange(after, kShow, "SubVendor Id = 0x1DA1", "SubVendor Id = 0x1DA2");
  EXPECT_THAT(Differences(), IsEmpty());
  EXPECT_THAT(Differences({.comparesReports = true}),
              ElementsAre("~ LSILINK lsi0 lsishowall: 1 line gone, 1 new"));
}

// --- which machine, and when ---

TEST(ComparedMachines, AreToldApartByTheirSerialNumbers) {
  const Recording server = test::LoadSample("two-socket-server");
  EXPECT_TRUE(Compare(server, test::LoadSample("blade")).otherMachine);
  Recording rebuilt = server;
  Exchange(rebuilt, kFru, "NGB22-00982", "NGB26-00017");
  EXPECT_FALSE(Compare(server, rebuilt).otherMachine);
  EXPECT_FALSE(Compare(server, test::LoadSample("bare-machine")).otherMachine);
  // Controllers on one side and drives on the other tell nothing of the machines.
  Recording details;
  Recording lists;
  for (const host::RecordedCommand& command : server.commands) {
    if (command.arguments == "/c0/eall/sall show all") details.commands.push_back(command);
    if (command.arguments == "/c0 show") lists.commands.push_back(command);
    if (command.arguments == "show ctrlcount") {
      details.commands.push_back(command);
      lists.commands.push_back(command);
    }
  }
  EXPECT_FALSE(Compare(lists, details).otherMachine);
}

TEST(ComparedMachines, AreToldWhenTheSecondIsOlder) {
  AssessedMachine before(test::LoadSample("two-socket-server"));
  AssessedMachine after(test::LoadSample("two-socket-server"));
  const auto isOlder = [&] { return host::FindDifference(before.Get(), after.Get()).isOlder; };
  EXPECT_FALSE(isOlder());
  after.collection.machine.recordedAt->time -= std::chrono::hours(1);
  EXPECT_TRUE(isOlder());
  before.collection.machine.recordedAt->time -= std::chrono::hours(2);
  EXPECT_FALSE(isOlder());
}

TEST(ComparedMachines, TellTheirAgeByTheirOwnClocks) {
  Recording before = test::LoadSample("two-socket-server");
  before.submission.reset();
  Recording after = before;
  Exchange(after, kShow, "System Time = 11/18/2026", "System Time = 11/14/2026");
  Exchange(after, "/c1 show", "System Time = 11/18/2026", "System Time = 11/14/2026");
  EXPECT_TRUE(Compare(before, after).isOlder);
  EXPECT_FALSE(Compare(after, before).isOlder);
}

}  // namespace
