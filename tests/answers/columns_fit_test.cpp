#include "host/answers/columns_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/collect/collect.h"
#include "tests/support/samples.h"

namespace {

using host::Recording;

constexpr char kRule[] =
    "--------------------------------------------------------------------------------\n";

/// A list of a summary; `heads` and `rows` are whole lines.
std::string MakeList(const std::string& title, const std::string& heads, const std::string& rows) {
  return title + " :\n=======\n\n" + kRule + heads + "\n" + kRule + rows + kRule;
}

/// A machine on which storcli prints `summary` for its first controller, and `details` of drives.
Recording MakeMachine(const std::string& summary, const std::string& details = "",
                      const std::string& events = "") {
  Recording recording = test::LoadSamples().at("hba-only");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments == "/c0 show") command.standardOutput = summary;
    if (command.arguments == "/c0/eall/sall show all") command.standardOutput = details;
    if (command.arguments == "/c0 show events") command.standardOutput = events;
  }
  return recording;
}

/// The notes of `className` in a collection of `tables`, or of all.
std::vector<std::string> ListNotes(const Recording& recording, std::string_view className,
                                   const std::vector<std::string>& tables = {}) {
  host::Selection selection;
  selection.tables = tables;
  host::Collection collection = host::Collect(recording, selection);
  for (host::CollectedTable& table : collection.tables) table.status.notes.clear();
  host::NoteUnfitColumns(collection);
  const auto table =
      std::find_if(collection.tables.begin(), collection.tables.end(),
                   [&](const host::CollectedTable& t) { return t.className == className; });
  return table == collection.tables.end() ? std::vector<std::string>{"no such table"}
                                          : table->status.notes;
}

/// The note as it is in a collection of all tables.
std::vector<std::string> Note(const std::string& reason, const std::string& key = "lsishowall") {
  return {"columns do not fit this report: " + reason + "; the report itself: LSILINK, row 1, " +
          key};
}

using Notes = std::vector<std::string>;

/// A summary whose lines are all there, FW Version first in `facts`.
std::string MakeSummary(const std::string& facts) {
  std::string summary;
  for (const char* label : {"Product Name", "Serial Number", "SAS Address", "Mfg. Date",
                            "System Time", "Controller Time", "FW Package Build", "BIOS Version"}) {
    summary += std::string(label) + " = 1\n";
  }
  summary += facts;
  for (const char* label :
       {"Driver Name", "Driver Version", "Bus Number", "Device Number", "Function Number"}) {
    summary += std::string(label) + " = 1\n";
  }
  return summary;
}

/// A machine whose ipmiutil prints `text` when it is asked with `arguments`.
Recording MakeBmc(const std::string& arguments, const std::string& text) {
  Recording recording = test::LoadSamples().at("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments == arguments) command.standardOutput = text;
  }
  return recording;
}

Notes BmcNote(const std::string& reason, const std::string& arguments) {
  return {"columns do not fit this report: " + reason +
          "; the report itself: what a recording keeps of ipmiutilnh.exe " + arguments};
}

TEST(ColumnsFit, OfTablesThatShowTheirReport) {
  const Recording recording = test::LoadSamples().at("two-socket-server");
  for (const char* table : {"RAIDINFO", "TINFO", "PDLIST", "EVENTLOG1", "ARPINFO"}) {
    EXPECT_EQ(ListNotes(recording, table), Notes()) << table;
  }
}

TEST(ColumnsFit, NotWhereASectorSizeOrAModelHasABlank) {
  const std::string heads = "EID:Slt DID State DG       Size Intf Med SED PI SeSz Model       Sp";
  const Recording recording =
      MakeMachine(MakeList("PD LIST", heads,
                           "2:1       3 JBOD  -  894.253 GB SAS  SSD -   -  512B KORVA_1     -\n"
                           "2:2       4 JBOD  -  894.253 GB SAS  SSD -   -  4 KB KORVA_1     -\n"
                           "2:3       5 JBOD  -  894.253 GB SAS  SSD -   -  512B KORVA NS480 -\n"));
  EXPECT_EQ(
      ListNotes(recording, "PINFO"),
      Note("row 2: SeSz is \"4\", the report has \"4 KB\"; row 3: Model is \"KORVA\", the report "
           "has \"KORVA NS480\""));
}

TEST(ColumnsFit, NotWhereAColumnIsMissing) {
  const Recording recording =
      MakeMachine(MakeList("VD LIST", "DG/VD TYPE  State Access Consist Cache sCC     Size Name",
                           "0/0   RAID5 Optl  RW     No      RWBD  ON  1.089 TB Boot disk\n"));
  EXPECT_EQ(ListNotes(recording, "VINFO"), Note("row 1: sCC is \"1.089\", the report has \"ON\""));
}

TEST(ColumnsFit, NotWhereAVolumeHasNoName) {
  const Recording recording = MakeMachine(
      MakeList("VD LIST", "DG/VD TYPE  State Access Consist Cache Cac sCC     Size Name",
               "0/0   RAID5 Optl  RW     No      RWBD  -   ON  1.089 TB Boot\n"
               "0/1   RAID5 Optl  RW     No      RWBD  -   ON  1.089 TB\n"
               "0/2   RAID5 Optl  RW     No      RWBD  -   ON  1.089 TB\n"
               "0/3   RAID5 Optl  RW     No      RWBD  -   ON  1.089 TB Last\n"));
  EXPECT_EQ(ListNotes(recording, "VINFO"),
            Note("no row for 0/1 and 1 more: fewer words than columns"));
}

/// A machine whose `program` prints `text`.
Recording MakeNetwork(const std::string& program, const std::string& text) {
  Recording recording = test::LoadSamples().at("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.tool == program) command.standardOutput = text;
  }
  return recording;
}

TEST(ColumnsFit, NotWhereALineHasMoreWords) {
  const auto list = [](const std::string& processes) {
    return ListNotes(
        MakeNetwork("netstat.exe",
                    "\r\nActive Connections\r\n\r\n"
                    "  Proto  Local Address          Foreign Address        State\r\n"
                    "  TCP    10.20.0.31:49731       10.20.0.5:445          ESTABLISHED" +
                        processes + "\r\n" +
                        "  TCP    10.20.0.31:49732       10.20.0.6:445          TIME_WAIT" +
                        processes + "\r\n"),
        "NETSTATINFO");
  };
  EXPECT_EQ(list(""), Notes());
  EXPECT_EQ(
      list("       4"),
      Notes{"columns do not fit this report: row 2: Protocol is \"4\", the report has \"TCP\"; "
            "its 2 lines are 3 rows; the report itself: what a recording keeps of "
            "netstat.exe"});
  EXPECT_EQ(ListNotes(MakeNetwork("arp.exe",
                                  "\r\nInterface: 10.20.0.31 --- 0x5\r\n"
                                  "  Internet Address      Physical Address      Type\r\n"
                                  "  10.20.0.1             00-1c-73-5a-90-02     dynamic\r\n"
                                  "  10.20.0.9                                   invalid\r\n"
                                  "  10.20.0.2             00-1c-73-5a-90-03     dynamic\r\n"),
                      "ARPINFO")
                .size(),
            1U);
}

TEST(ColumnsFit, OfAddressesWhateverStandsAboveThem) {
  for (const char* above : {"", "2 entries\r\n", "host.example.com.\r\n"}) {
    EXPECT_EQ(
        ListNotes(
            MakeNetwork("arp.exe", std::string(above) +
                                       "\r\nInterface: 10.20.0.31 --- 0x5\r\n"
                                       "  Internet Address      Physical Address      Type\r\n"
                                       "  10.20.0.1             00-1c-73-5a-90-02     dynamic\r\n"
                                       "  10.20.0.2             00-1c-73-5a-90-03     dynamic\r\n"),
            "ARPINFO"),
        Notes())
        << above;
  }
}

TEST(ColumnsFit, IsTheOnlyReasonWhyThereAreNoRows) {
  host::Collection collection = host::Collect(
      MakeMachine("Product Name = KORVA\n" +
                  MakeList("VD LIST", "DG/VD TYPE State Access Consist Cache Cac sCC Size Name",
                           "0/0 RAID5 Optl RW No RWBD - ON 1.089 TB\n")),
      {});
  host::NoteUnfitColumns(collection);
  for (const host::CollectedTable& table : collection.tables) {
    if (table.className != "RAIDINFO" && table.className != "VINFO") continue;
    EXPECT_EQ(table.status.text, "no rows") << table.className;
    EXPECT_FALSE(table.status.notes.empty()) << table.className;
  }
}

TEST(ColumnsFit, NotTheSecondGenerationOfTheTool) {
  const Recording recording = MakeMachine(
      "Product Name = KORVA eHBA\nSerial Number = K1\n" +
          MakeList(
              "PD LIST",
              "EID:Slt PID State Status DG      Size Intf Med SED_Type SeSz Model Sp LU/NS "
              "Count Alt-EID",
              "52:0     27 JBOD  Good   - 7.277 TiB SATA HDD -        512B KO8   -           1 "
              "-\n"),
      "Drive /c0/e52/s0 :\n=====\nDrive /c0/e52/s0 - Detailed Information :\nModel = KO8\n"
      "Drive /c0/e52/s1 :\n",
      "Sequence Number: 3772\nCode: 437\nSequence Number: 3773\n");
  EXPECT_EQ(ListNotes(recording, "PINFO"),
            Note("row 1: DriveGroup is \"Good\", the report has \"-\"; the report has no column "
                 "\"DID\", \"SED\", \"PI\""));
  EXPECT_EQ(ListNotes(recording, "RAIDINFO"),
            Note("it has no line \"Function Number =\", which ends a row"));
  EXPECT_EQ(ListNotes(recording, "PDLIST"), Note("0 of 2 drives have a row", "pdlist"));
  EXPECT_EQ(
      ListNotes(recording, "EVENTLOG1"),
      Note("its 2 events begin with \"Sequence Number:\" instead of \"seqNum:\"", "lsieventlog"));
}

TEST(ColumnsFit, NotWhereALongerLabelEndsLikeTheColumns) {
  const Recording recording =
      MakeMachine(MakeSummary("FW Version = 36.00\nPSOC FW Version = 0x6E\n"));
  EXPECT_EQ(ListNotes(recording, "RAIDINFO"),
            Note("FW Version is \"0x6E\", the report has \"36.00\""));
}

TEST(ColumnsFit, NotWhereALabelIsOfOtherCase) {
  EXPECT_EQ(
      ListNotes(MakeMachine("Bios Version = 5.48\nWebBIOS Version = 6.1\n"
                            "Function Number = 0\n"),
                "RAIDINFO")
          .front(),
      "columns do not fit this report: BIOS Version is \"6.1\", the report has \"5.48\"; it has "
      "no line \"Product Name =\", \"Serial Number =\", \"SAS Address =\", \"Mfg. Date =\", "
      "\"System Time =\", \"Controller Time =\", \"FW Package Build =\", \"FW Version =\", "
      "\"Driver Name =\", \"Driver Version =\", \"Bus Number =\", \"Device Number =\"; the report "
      "itself: LSILINK, row 1, lsishowall");
}

TEST(ColumnsFit, NotALogWithoutItsFirstLine) {
  Recording recording = MakeMachine("");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments == "/c0 show termlog")
      command.standardOutput = "11/18/26 9:41: C0: idle\n";
  }
  EXPECT_EQ(ListNotes(recording, "FWTERMLOG"),
            Note("it has no line \"Firmware Term Log Information\"", "lsifwtermlog"));
}

// Cells are dealt to columns by their count.
TEST(ColumnsFit, NotReadingsWithTalkAboutThem) {
  std::string readings = "ipmiutil sensor version 3.18\n";
  for (const char* name : {"P0 Temp", "P1 Temp", "P2 Temp", "P3 Temp", "P4 Temp", "P5 Temp"}) {
    readings += std::string("0001 | Full | Temperature | 01 | ") + name +
                " | OK | 39.00 C | Thresh 0.00:0.00:0.00:88.00:93.00:98.00\n";
  }
  EXPECT_EQ(ListNotes(MakeBmc("sensor -s -q", readings), "SENSORINFO"),
            BmcNote("row 1: Name is \"ipmiutil sensor version 3.18\", the report has \"P0 Temp\" "
                    "(and 4 more rows like that); its 6 sensors are 5 rows",
                    "sensor -s -q"));
}

TEST(ColumnsFit, NotFactsWhoseValueHasAColon) {
  EXPECT_EQ(ListNotes(MakeBmc("korvaxoem mc", "Device ID : 0x21\nBuilt : 2021-11-03 16:48:05\n"),
                      "MCINFO"),
            BmcNote("Built is \"2021-11-03 16\", the report has \"2021-11-03 16:48:05\"",
                    "korvaxoem mc"));
}

TEST(ColumnsFit, NotAddressesWithColons) {
  EXPECT_EQ(
      ListNotes(MakeBmc("lan", "Lan Param(5) MAC addr: 5e:10:7b:00:c4:19\n"), "LANINFO"),
      BmcNote("Lan Param(5) MAC addr is \"5e\", the report has \"5e:10:7b:00:c4:19\"", "lan"));
  EXPECT_EQ(ListNotes(MakeBmc("lan", "Lan Param(3) IP address: 192.0.2.7\n"), "LANINFO"), Notes{});
}

TEST(ColumnsFit, NotASelfTestOfLinesWithoutColons) {
  EXPECT_EQ(
      ListNotes(MakeBmc("korvaxoem selftest", "Result : 57h 02h\nSDR empty\nplease reload\n"),
                "SELFINFO"),
      BmcNote("SDR empty is \"please reload\", the report has no such line", "korvaxoem selftest"));
  EXPECT_EQ(
      ListNotes(MakeBmc("korvaxoem selftest", "Result : 55h 00h,\nall answered\n"), "SELFINFO"),
      Notes{});
}

// "Size:" is in both labels, and the last one stays.
TEST(ColumnsFit, NotWhereAFreeSizeFollowsTheSize) {
  EXPECT_EQ(
      ListNotes(test::LoadSamples().at("two-socket-server"), "ENDDEVICEINFO"),
      Notes{"columns do not fit this report: row 1: Size is \"0 GB\", the report has "
            "\"1863 GB\" (and 2 more rows like that); the report itself: rstcli64.txt in the log "
            "folder"});
}

TEST(ColumnsFit, OfWhatTheSecondToolLeftWhereTheFirstFailed) {
  EXPECT_EQ(
      ListNotes(test::LoadSamples().at("vroc"), "ENDDEVICEINFO"),
      Notes{"columns do not fit this report: row 1: Size is \"621 GB\", the report has "
            "\"1863 GB\" (and 2 more rows like that); the report itself: rstcli64.txt in the log "
            "folder"});
}

TEST(ColumnsFit, AreToldInShort) {
  const std::string name(100, 'x');
  const Recording recording =
      MakeMachine(MakeSummary("FW Version = " + name + "\nPSOC FW Version = 6\n"));
  EXPECT_EQ(ListNotes(recording, "RAIDINFO"),
            Note("FW Version is \"6\", the report has \"" + name.substr(0, 59) + "…\""));
}

TEST(ColumnsFit, OfReportsThatAreNotAttachedToo) {
  const Recording recording = MakeMachine(MakeSummary("FW Version = 36\nPSOC FW Version = 6\n"));
  EXPECT_EQ(ListNotes(recording, "RAIDINFO", {"RAIDINFO"}),
            Notes{"columns do not fit this report: FW Version is \"6\", the report has \"36\"; the "
                  "report itself: c0_showall.txt in the log folder"});
}

}  // namespace
