#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "pqmodules/rwininfo.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"

namespace {

using host::RecordedCommand;
using host::Recording;
using test::Collect;
using test::Collected;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kModule[] = "Windows_Related_Info";
constexpr char kEtc[] = "C:\\Windows\\System32\\drivers\\etc\\";
constexpr char kLogs[] = "C:\\Halyard\\logs\\";

Recording Sample(const std::string& name) {
  return host::LoadRecording(test::SamplesFolder() + "/" + name);
}

RecordedCommand Tool(const std::string& tool, const std::string& arguments,
                     const std::string& output) {
  RecordedCommand command;
  command.tool = tool;
  command.arguments = arguments;
  command.standardOutput = output;
  return command;
}

/// A US English machine on which arp prints `text`, and nothing else does anything.
Recording ArpPrints(const std::string& text) {
  Recording recording;
  recording.commands = {Tool("arp.exe", "-a", text), Tool("netstat.exe", "", "")};
  return recording;
}

/// A US English machine on which netstat prints `text`, and nothing else does anything.
Recording NetstatPrints(const std::string& text) {
  Recording recording;
  recording.commands = {Tool("arp.exe", "-a", ""), Tool("netstat.exe", "", text)};
  return recording;
}

constexpr char kArpHead[] =
    "\r\n"
    "Interface: 10.0.0.7 --- 0x5\r\n"
    "  Internet Address      Physical Address      Type\r\n";
constexpr char kNetstatHead[] =
    "\r\n"
    "Active Connections\r\n"
    "\r\n"
    "  Proto  Local Address          Foreign Address        State\r\n";

/// How many of `texts` begin with `start`.
std::ptrdiff_t CountStarting(const std::vector<std::string>& texts, const std::string& start) {
  return std::count_if(texts.begin(), texts.end(),
                       [&](const std::string& text) { return text.starts_with(start); });
}

/// The process events of a trace that do not inherit handles.
std::size_t CountWithoutInheritance(const std::string& trace) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = trace.find("\"inheritHandles\":false", at)) != std::string::npos;
       ++at) {
    ++count;
  }
  return count;
}

// ---- Whole collections

TEST(RWINInfo, CollectsATwoSocketServer) {
  EXPECT_EQ(Collect(Sample("two-socket-server"), kModule).trace,
            test::TestData("windows_two_socket_server.trace"));
}

TEST(RWINInfo, CollectsAMachineThatIsNotEnglish) {
  EXPECT_EQ(Collect(Sample("bare-machine"), kModule).trace,
            test::TestData("windows_bare_machine.trace"));
}

TEST(RWINInfo, GoesOnWhenNoToolCanBeStarted) {
  Recording recording = Sample("two-socket-server");
  for (RecordedCommand& command : recording.commands) {
    if (command.tool == "route") command.startError = 5;
    if (command.tool == "arp.exe") command.pipeError = 1;
    if (command.tool == "netstat.exe") command.startError = 8;
    if (command.tool == "net") command.startError = 1450;
    if (command.tool == "getsmbios.exe") command.startError = 4294967295;
  }
  const auto failCopy = [&](const std::string& name, std::uint32_t error) {
    RecordedCommand copy =
        Tool("copy",
             "C:\\WINDOWS\\system32\\drivers\\etc\\" + name + " \"" + kLogs + name + ".txt\"", "");
    copy.startError = error;
    recording.commands.push_back(copy);
  };
  failCopy("hosts", 2);
  failCopy("protocol", 3);
  failCopy("lmhosts.sam", 740);
  const Collected collected = Collect(recording, kModule);
  EXPECT_EQ(collected.trace, test::TestData("windows_failing.trace"));
  EXPECT_EQ(collected.openHandles, 0);
}

// ---- The collection's steps

TEST(RWINInfo, CollectsOnceForBothTables) {
  const Collected collected = Collect(Recording(), kModule, {"ARPINFO", "NETSTATINFO"});
  EXPECT_EQ(CountStarting(collected.LogTexts(), "3 Enter CollectData-Windows related info"), 1);
  EXPECT_EQ(CountStarting(collected.LogTexts(), "3 Enter EnumWINInstances"), 2);
  EXPECT_EQ(CountStarting(collected.LogTexts(), "3 Exit EnumWINInstances"), 2);
}

TEST(RWINInfo, OnlyLogsEntryAndExitTheSecondTime) {
  const std::vector<std::string> texts =
      Collect(Recording(), kModule, {"NETSTATINFO", "ARPINFO"}).LogTexts();
  ASSERT_GE(texts.size(), 3u);
  EXPECT_THAT(std::vector<std::string>(texts.end() - 3, texts.end()),
              ElementsAre("3 Exit EnumWINInstances", "3 Enter EnumWINInstances",
                          "3 Exit EnumWINInstances"));
}

TEST(RWINInfo, KeepsTheNetworkTablesAsFilesOnAnotherSystemLanguage) {
  const Collected collected = Collect(Sample("bare-machine"), kModule);
  EXPECT_THAT(collected.Tables(), IsEmpty());
  const Recording sample = Sample("bare-machine");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\arp.txt"), sample.commands[0].standardOutput);
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\netstat.txt"),
            sample.commands[2].standardOutput);
}

TEST(RWINInfo, WritesNoNetworkFilesOnAUsEnglishSystem) {
  const Collected collected = Collect(Sample("two-socket-server"), kModule);
  EXPECT_FALSE(collected.files.contains("C:\\Halyard\\logs\\arp.txt"));
  EXPECT_FALSE(collected.files.contains("C:\\Halyard\\logs\\netstat.txt"));
}

TEST(RWINInfo, TakesOtherKindsOfEnglishForAnotherLanguage) {
  Recording recording = ArpPrints(std::string(kArpHead) +
                                  "  10.0.0.1              00-1c-73-5a-90-02     dynamic\r\n");
  recording.languageId = 2057;
  const Collected collected = Collect(recording, kModule);
  EXPECT_THAT(collected.Tables(), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains("3 Get OS language, lcid=2057"));
}

TEST(RWINInfo, LeavesTheRawReportsInTheLogFolder) {
  const Recording sample = Sample("two-socket-server");
  const Collected collected = Collect(sample, kModule);
  const auto output = [&](const std::string& tool) {
    return std::find_if(sample.commands.begin(), sample.commands.end(),
                        [&](const RecordedCommand& command) { return command.tool == tool; })
        ->standardOutput;
  };
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\route.txt"), output("route"));
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\netshare.txt"), output("net"));
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\smbios_info.txt"), output("getsmbios.exe"));
}

TEST(RWINInfo, CopiesTheNetworkConfiguration) {
  Recording recording;
  const std::string etc = kEtc;
  recording.files = {{etc + "hosts", "1\r\n"},
                     {etc + "hosts.ics", "2\r\n"},
                     {etc + "protocol", "3\r\n"},
                     {etc + "lmhosts.sam", "4 \x81\xFF\r\n"}};
  const Collected collected = Collect(recording, kModule);
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\hosts.txt"), "1\r\n");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\hosts.ics.txt"), "2\r\n");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\protocol.txt"), "3\r\n");
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\lmhosts.sam.txt"), "4 \x81\xFF\r\n");
}

TEST(RWINInfo, SkipsAMissingSourceFileSilently) {
  const Collected collected = Collect(Recording(), kModule);
  EXPECT_EQ(CountStarting(collected.commandLines, "/c copy"), 0);
  EXPECT_FALSE(collected.files.contains("C:\\Halyard\\logs\\hosts.ics.txt"));
  for (const std::string& text : collected.LogTexts()) {
    EXPECT_THAT(text, Not(HasSubstr("hosts")));
  }
}

TEST(RWINInfo, SpellsTheFolderOfTheSharedConnectionsHostsFileAsItTestsIt) {
  Recording recording;
  recording.files = {{std::string(kEtc) + "hosts.ics", "x"}};
  EXPECT_THAT(Collect(recording, kModule).commandLines,
              Contains("/c copy C:\\Windows\\System32\\drivers\\etc\\hosts.ics "
                       "\"C:\\Halyard\\logs\\hosts.ics.txt\" > nul \""));
}

TEST(RWINInfo, InheritsHandlesInEveryStep) {
  Recording english = Sample("two-socket-server");
  english.files[std::string(kEtc) + "hosts.ics"] = "x";
  const Collected first = Collect(english, kModule);
  EXPECT_EQ(first.commandLines.size(), 9u);
  EXPECT_EQ(CountWithoutInheritance(first.trace), 0u);
  EXPECT_EQ(CountWithoutInheritance(Collect(Sample("bare-machine"), kModule).trace), 0u);
}

TEST(RWINInfo, LogsTheFolderOfTheHost) {
  Recording recording;
  recording.hostExecutable = "D:\\Program Files (x86)\\Halyard\\halyard.exe";
  const Collected collected = Collect(recording, kModule);
  EXPECT_THAT(collected.LogTexts(), Contains("3 the exepath:D:\\Program Files (x86)\\Halyard"));
  EXPECT_THAT(collected.commandLines,
              Contains("/c \"\"D:\\Program Files (x86)\\Halyard\\pq_tools\\getsmbios.exe\" "
                       ">\"C:\\Halyard\\logs\\smbios_info.txt\"\""));
}

/// A machine on which the tool `tool` (with `arguments`) cannot be started.
Recording StartFails(const std::string& tool, const std::string& arguments,
                     std::uint32_t languageId = pq::kUsEnglish) {
  Recording recording;
  recording.languageId = languageId;
  recording.commands = {Tool(tool, arguments, "")};
  recording.commands[0].startError = 5;
  return recording;
}

TEST(RWINInfo, LogsAFailedStartWithTheTextOfItsStep) {
  const auto expectText = [](const Recording& recording, const std::string& text) {
    const std::vector<std::string> texts = Collect(recording, kModule).LogTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 1) << text;
    EXPECT_EQ(texts.back(), "3 Exit EnumWINInstances") << text;
  };
  expectText(StartFails("route", "print"), "3 CreateProcess failed in getting route(5)");
  expectText(StartFails("arp.exe", "-a"), "3 CreateProcess failed in getting arp info(5)");
  expectText(StartFails("netstat.exe", ""), "3 CreateProcess failed in getting netstat info(5)");
  expectText(StartFails("arp.exe", "-a", 1031), "3 CreateProcess failed in getting arp data(5)");
  expectText(StartFails("netstat.exe", "", 1031),
             "3 CreateProcess failed in getting netstat data(5)");
  expectText(StartFails("net", "share"), "3 CreateProcess failed in getting netshare(5)");
  expectText(StartFails("getsmbios.exe", ""), "3 CreateProcess failed(5)");
}

TEST(RWINInfo, LogsAFailedCopyOfTheSharedConnectionsHostsFile) {
  Recording recording = StartFails("copy",
                                   "C:\\Windows\\System32\\drivers\\etc\\hosts.ics "
                                   "\"C:\\Halyard\\logs\\hosts.ics.txt\"");
  recording.files = {{std::string(kEtc) + "hosts.ics", "x"}};
  EXPECT_THAT(Collect(recording, kModule).LogTexts(),
              Contains("3 CreateProcess failed in copying hosts.ics(5)"));
}

TEST(RWINInfo, TreatsAMissingToolAsOneThatPrintedNothing) {
  const Collected collected = Collect(Recording(), kModule);
  EXPECT_EQ(collected.files.at("C:\\Halyard\\logs\\smbios_info.txt"), "");
  EXPECT_EQ(CountStarting(collected.LogTexts(), "3 CreateProcess"), 0);
  EXPECT_THAT(collected.Tables(), IsEmpty());
}

TEST(RWINInfo, GoesOnWhenTheLogFolderCannotBeWritten) {
  Recording recording = Sample("bare-machine");
  for (const char* file : {"route.txt", "arp.txt", "netstat.txt", "netshare.txt", "hosts.ics.txt",
                           "smbios_info.txt", "hosts.txt", "protocol.txt"}) {
    recording.readOnly.push_back(std::string(kLogs) + file);
  }
  const Collected collected = Collect(recording, kModule);
  EXPECT_EQ(collected.trace, test::TestData("windows_bare_machine.trace"));
  EXPECT_EQ(collected.files.size(), recording.files.size());
}

TEST(RWINInfo, DoesNotStartACommandLineThatDoesNotFit) {
  Recording recording;
  recording.hostExecutable = "C:\\" + std::string(240, 'h') + "\\halyard.exe";
  recording.logFolder = "C:\\" + std::string(240, 'l') + "\\";
  const Collected collected = Collect(recording, kModule);
  EXPECT_THAT(collected.LogTexts(), Contains("3 CreateProcess failed(206)"));
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("getsmbios"))));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("route print")));
}

/// Runs the module in a host whose folder's path has `length` characters.
void CollectInFolder(test::FakePlatform& machine, std::size_t length) {
  const pq::MachineInUse inUse(machine);
  machine.hostExecutable = "C:\\" + std::string(length - 3, 'h') + "\\halyard.exe";
  halyard::repository::RRepository repository;
  pq::RWINInfo().EnumWINInstances(repository);
}

TEST(RWINInfo, EndsTheProcessWhenTheHostsFolderFillsTheCommandOfTheSmbiosDump) {
  test::FakePlatform machine;
  EXPECT_THROW(CollectInFolder(machine, 507), test::RangeCheckFailed);
}

TEST(RWINInfo, ReportsAnSmbiosDumpWhoseCommandDoesNotFit) {
  test::FakePlatform machine;
  const test::LogLines log;
  CollectInFolder(machine, 506);
  EXPECT_THAT(log.texts, Contains("3 [repo] CreateProcess failed(206)"));
  EXPECT_EQ(log.texts.back(), "3 [repo] Exit EnumWINInstances");
}

// ---- The ARP table

TEST(RWINInfoArp, TurnsPrintedRowsIntoInstances) {
  const Collected collected =
      Collect(ArpPrints(std::string(kArpHead) +
                        "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n"
                        "  224.0.0.22            01-00-5e-00-00-16     static    \r\n"),
              kModule);
  EXPECT_THAT(
      collected.Rows("ARPINFO"),
      ElementsAre(ElementsAre("item1=10.0.0.1", "item2=00-1c-73-5a-90-02", "item3=dynamic"),
                  ElementsAre("item1=224.0.0.22", "item2=01-00-5e-00-00-16", "item3=static")));
}

TEST(RWINInfoArp, PutsAllBlocksIntoOneTable) {
  const std::string block =
      std::string(kArpHead) + "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n";
  EXPECT_EQ(Collect(ArpPrints(block + block + block), kModule).Rows("ARPINFO").size(), 3u);
}

TEST(RWINInfoArp, DropsARowOfExactly52Characters) {
  // "static" and CR LF end at 54, "type" and CR LF at 52.
  const Collected collected = Collect(
      ArpPrints(std::string(kArpHead) + "  10.0.0.1              00-1c-73-5a-90-02     type\r\n"
                                        "  10.0.0.2              00-1c-73-5a-90-03     other\r\n"),
      kModule);
  EXPECT_THAT(collected.LogTexts(),
              Contains("4 52 :   10.0.0.1              00-1c-73-5a-90-02     type\r\n"));
  EXPECT_THAT(collected.Rows("ARPINFO"),
              ElementsAre(ElementsAre("item1=10.0.0.2", "item2=00-1c-73-5a-90-03", "item3=other")));
}

TEST(RWINInfoArp, ReadsLinesThatEndWithALineFeedOnly) {
  const Collected collected =
      Collect(ArpPrints("\nInterface\nTitles\n"
                        "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \n"),
              kModule);
  EXPECT_EQ(collected.Rows("ARPINFO").size(), 1u);
}

TEST(RWINInfoArp, FindsNoRowsInFewerThanFourLines) {
  const Collected collected =
      Collect(ArpPrints("\r\nInterface\r\n"
                        "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n"),
              kModule);
  EXPECT_THAT(collected.Tables(), IsEmpty());
  EXPECT_EQ(CountStarting(collected.LogTexts(), "4 final_buf_arp:"), 0);
  EXPECT_EQ(CountStarting(collected.LogTexts(), "4 58 : "), 1);
}

TEST(RWINInfoArp, LogsItsTotalsAlsoWhenNoLineIsLongEnough) {
  const std::vector<std::string> texts =
      Collect(ArpPrints("\r\nNo ARP Entries Found.\r\n\r\n\r\n"), kModule).LogTexts();
  const auto at = std::find(texts.begin(), texts.end(), "4 final_buf_arp:");
  ASSERT_NE(at, texts.end());
  EXPECT_EQ(*(at + 1), "4 lines:4");
  EXPECT_EQ(*(at + 2), "4 ");
}

TEST(RWINInfoArp, LogsWhatStandsBehindTheLastLineEndOnlyWithinTheScan) {
  const std::vector<std::string> texts =
      Collect(ArpPrints("\r\n\r\n\r\n\r\ncut o"), kModule).LogTexts();
  const auto at = std::find(texts.begin(), texts.end(), "4 lines:4");
  ASSERT_NE(at, texts.end());
  EXPECT_EQ(*(at + 1), "4 ");
}

TEST(RWINInfoArp, LeavesColumnsOfAnIncompleteRowEmpty) {
  const Collected collected =
      Collect(ArpPrints(std::string(kArpHead) +
                        "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n"
                        "  10.0.0.2              00-1c-73-5a-90-03               \r\n"),
              kModule);
  EXPECT_THAT(collected.Rows("ARPINFO"),
              ElementsAre(ElementsAre("item1=10.0.0.1", "item2=00-1c-73-5a-90-02", "item3=dynamic"),
                          ElementsAre("item1=10.0.0.2", "item2=00-1c-73-5a-90-03", "item3=")));
}

TEST(RWINInfoArp, CutsALongLineAndLogsTheLengthThatIsLeft) {
  const std::string longLine = "  10.0.0.1  " + std::string(110, 'a') + " dynamic    end\r\n";
  const Collected collected = Collect(ArpPrints(kArpHead + longLine), kModule);
  EXPECT_THAT(collected.LogTexts(),
              Contains("4 128 :   10.0.0.1  " + std::string(110, 'a') + " dynam"));
  EXPECT_THAT(
      collected.Rows("ARPINFO"),
      ElementsAre(ElementsAre("item1=10.0.0.1", "item2=" + std::string(110, 'a'), "item3=dynam")));
}

TEST(RWINInfoArp, KeepsBytesAbove127) {
  const Collected collected =
      Collect(ArpPrints(std::string(kArpHead) +
                        "  10.0.0.1              00-1c-73-5a-90-02     dyn\x84misch\xFF\r\n"),
              kModule);
  EXPECT_THAT(collected.Rows("ARPINFO"),
              ElementsAre(ElementsAre("item1=10.0.0.1", "item2=00-1c-73-5a-90-02",
                                      "item3=dyn\x84misch\xFF")));
}

TEST(RWINInfoArp, EndsAtTheFirstNul) {
  const std::string row = "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n";
  const std::string text = kArpHead + row + std::string(1, '\0') + row;
  const Collected collected = Collect(ArpPrints(text), kModule);
  EXPECT_EQ(collected.Rows("ARPINFO").size(), 1u);
  EXPECT_THAT(collected.LogTexts(), Contains("4 se:" + (kArpHead + row)));
  EXPECT_THAT(collected.LogTexts(), Contains("4 " + (kArpHead + row)));
  EXPECT_THAT(collected.LogTexts(), Contains("4 dw:" + std::to_string(text.size())));
}

/// `count` ARP rows of 60 characters each.
std::string ArpRows(int count) {
  std::string rows;
  for (int i = 0; i < count; ++i) {
    std::string row = "  10." + std::to_string(i / 250) + "." + std::to_string(i % 250) + ".1";
    row.resize(24, ' ');
    row += "00-1c-73-5a-90-02     dynamic";
    row.resize(58, ' ');
    rows += row + "\r\n";
  }
  return rows;
}

TEST(RWINInfoArp, KeepsTheRowsOfTheFirst30720Characters) {
  // 512 rows of 60 characters fill the scan to its last character.
  const Collected collected = Collect(ArpPrints(ArpRows(600)), kModule);
  EXPECT_EQ(collected.Rows("ARPINFO").size(), 512u);
  EXPECT_THAT(collected.LogTexts(), Contains("4 lines:512"));
  EXPECT_THAT(collected.LogTexts(), Contains("4 " + ArpRows(600).substr(30720)));
}

TEST(RWINInfoArp, LogsLongOutputsInChunksAndWhole) {
  const std::string text = ArpRows(600);
  const std::vector<std::string> texts = Collect(ArpPrints(text), kModule).LogTexts();
  const auto first = std::find(texts.begin(), texts.end(), "4 " + text.substr(0, 30719));
  ASSERT_NE(first, texts.end());
  EXPECT_EQ(*(first + 1), "4 dw:30719");
  EXPECT_EQ(*(first + 2), "4 " + text.substr(30719));
  EXPECT_EQ(*(first + 3), "4 dw:5281");
  EXPECT_EQ(*(first + 4), "4 se:" + text);
}

TEST(RWINInfoArp, ReadsWhatTheToolWritesToStandardError) {
  Recording recording = ArpPrints("");
  recording.commands[0].standardError =
      std::string(kArpHead) + "  10.0.0.1              00-1c-73-5a-90-02     dynamic   \r\n";
  EXPECT_EQ(Collect(recording, kModule).Rows("ARPINFO").size(), 1u);
}

// ---- The connection table

TEST(RWINInfoNetstat, TurnsPrintedRowsIntoInstances) {
  const Collected collected =
      Collect(NetstatPrints(std::string(kNetstatHead) +
                            "  TCP    10.0.0.7:445           fileclient07:50112     ESTABLISHED\r\n"
                            "  TCP    10.0.0.7:3389          opsdesk:61044          TIME_WAIT\r\n"),
              kModule);
  EXPECT_THAT(collected.Rows("NETSTATINFO"),
              ElementsAre(ElementsAre("item1=TCP", "item2=10.0.0.7:445", "item3=fileclient07:50112",
                                      "item4=ESTABLISHED"),
                          ElementsAre("item1=TCP", "item2=10.0.0.7:3389", "item3=opsdesk:61044",
                                      "item4=TIME_WAIT")));
}

TEST(RWINInfoNetstat, HasNoRowsWithTheFourTitleLinesOnly) {
  const Collected collected = Collect(NetstatPrints(kNetstatHead), kModule);
  EXPECT_THAT(collected.Tables(), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains(std::string("4 se:") + kNetstatHead));
  EXPECT_EQ(CountStarting(collected.LogTexts(), "4 lines:"), 0);
}

TEST(RWINInfoNetstat, HasNoRowsWhenTheFirstOneWasCutOff) {
  EXPECT_THAT(
      Collect(NetstatPrints(std::string(kNetstatHead) + "  TCP    10.0.0.7:4"), kModule).Tables(),
      IsEmpty());
}

TEST(RWINInfoNetstat, LogsTheTextFromTheFourthLineEndOn) {
  const std::vector<std::string> texts =
      Collect(NetstatPrints(std::string(kNetstatHead) + "  TCP a b c\r\n  TCP d e f\r\n"), kModule)
          .LogTexts();
  const auto at = std::find(texts.begin(), texts.end(), "4 lines:5");
  ASSERT_NE(at, texts.end());
  EXPECT_EQ(*(at + 1), "4 \n  TCP a b c\r\n  TCP d e f\r\n");
  EXPECT_EQ(*(at + 2), "4 TCP");
  EXPECT_EQ(*(at + 3), "4 a");
}

TEST(RWINInfoNetstat, LeavesColumnsOfAnIncompleteRowEmpty) {
  const Collected collected =
      Collect(NetstatPrints(std::string(kNetstatHead) + "  TCP a b c\r\n  UDP 0.0.0.0:123 *:*\r\n"),
              kModule);
  EXPECT_THAT(collected.Rows("NETSTATINFO"),
              ElementsAre(ElementsAre("item1=TCP", "item2=a", "item3=b", "item4=c"),
                          ElementsAre("item1=UDP", "item2=0.0.0.0:123", "item3=*:*", "item4=")));
}

TEST(RWINInfoNetstat, SplitsALastRowThatWasCutOff) {
  const Collected collected =
      Collect(NetstatPrints(std::string(kNetstatHead) + "  TCP a b c\r\n  TCP 10.0"), kModule);
  EXPECT_THAT(collected.Rows("NETSTATINFO"),
              ElementsAre(ElementsAre("item1=TCP", "item2=a", "item3=b", "item4=c"),
                          ElementsAre("item1=TCP", "item2=10.0", "item3=", "item4=")));
}

TEST(RWINInfoNetstat, SplitsAnOutputLongerThanAnyBufferToItsEnd) {
  std::string text = kNetstatHead;
  for (int i = 0; i < 2000; ++i) {
    text += "  TCP    10.0.0.7:" + std::to_string(10000 + i) + "  far:443  ESTABLISHED\r\n";
  }
  const auto rows = Collect(NetstatPrints(text), kModule).Rows("NETSTATINFO");
  ASSERT_EQ(rows.size(), 2000u);
  EXPECT_THAT(rows.back(), ElementsAre("item1=TCP", "item2=10.0.0.7:11999", "item3=far:443",
                                       "item4=ESTABLISHED"));
}

TEST(RWINInfoNetstat, FollowsAnArpTableThatCouldNotBeRead) {
  Recording recording = NetstatPrints(std::string(kNetstatHead) + "  TCP a b c\r\n");
  recording.commands[0].pipeError = 1;
  const Collected collected = Collect(recording, kModule);
  EXPECT_THAT(collected.LogTexts(), Contains("3 Failed to create pipe for arp info"));
  EXPECT_EQ(collected.Rows("NETSTATINFO").size(), 1u);
}

TEST(RWINInfoNetstat, LogsAPipeThatCouldNotBeCreated) {
  Recording recording = NetstatPrints("");
  recording.commands[1].pipeError = 1;
  const Collected collected = Collect(recording, kModule);
  EXPECT_THAT(collected.LogTexts(), Contains("3 Failed to create pipe for netstat info"));
  EXPECT_THAT(collected.commandLines, Not(Contains("/c netstat.exe")));
}

// ---- What ParseNetTable returns

int ParseOn(const Recording& recording, unsigned mode) {
  host::RecordedMachine machine(recording);
  const pq::MachineInUse inUse(machine);
  pq::RRepository repo;
  return pq::ParseNetTable(repo, mode);
}

TEST(ParseNetTable, Returns1WhenTheToolCannotBeRun) {
  Recording recording = ArpPrints("");
  recording.commands[0].startError = 5;
  recording.commands[1].pipeError = 5;
  EXPECT_EQ(ParseOn(recording, pq::kArpMode), 1);
  EXPECT_EQ(ParseOn(recording, pq::kConnectionMode), 1);
}

TEST(ParseNetTable, Returns0WithoutAnyRow) {
  EXPECT_EQ(ParseOn(ArpPrints(""), pq::kArpMode), 0);
  EXPECT_EQ(ParseOn(NetstatPrints(kNetstatHead), pq::kConnectionMode), 0);
}

TEST(ParseNetTable, ClosesThePipeThenAwaitsAndClosesTheTool) {
  for (const unsigned mode : {pq::kArpMode, pq::kConnectionMode}) {
    test::FakePlatform machine;
    const pq::MachineInUse inUse(machine);
    pq::RRepository repo;
    pq::ParseNetTable(repo, mode);
    EXPECT_THAT(machine.calls,
                ElementsAre(testing::EndsWith(", inheriting, piped"), "close write end",
                            "close read end", "wait", "close process"));
  }
}

TEST(ParseNetTable, Returns0WithRows) {
  EXPECT_EQ(
      ParseOn(NetstatPrints(std::string(kNetstatHead) + "  TCP a b c\r\n"), pq::kConnectionMode),
      0);
}

}  // namespace
