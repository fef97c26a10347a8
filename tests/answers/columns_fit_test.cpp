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
  EXPECT_EQ(ListNotes(recording, "PINFO"),
            Note("row 2: SeSz is \"4\", the report has \"4 KB\" (2 rows like that)"));
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
  const Recording recording = MakeMachine(
      "Product Name = KORVA\nFW Version = 36.00\nPSOC FW Version = 0x6E\nFunction Number = 0\n");
  EXPECT_EQ(ListNotes(recording, "RAIDINFO"),
            Note("FW Version is \"0x6E\", the report has \"36.00\""));
}

// "Size:" is in both labels, and the last one stays.
TEST(ColumnsFit, NotWhereAFreeSizeFollowsTheSize) {
  EXPECT_EQ(ListNotes(test::LoadSamples().at("two-socket-server"), "ENDDEVICEINFO"),
            Notes{"columns do not fit this report: row 1: Size is \"0 GB\", the report has "
                  "\"1863 GB\" (3 rows like that); the report itself: rstcli64.txt in the log "
                  "folder"});
}

TEST(ColumnsFit, OfWhatTheSecondToolLeftWhereTheFirstFailed) {
  EXPECT_EQ(ListNotes(test::LoadSamples().at("vroc"), "ENDDEVICEINFO"),
            Notes{"columns do not fit this report: row 1: Size is \"621 GB\", the report has "
                  "\"1863 GB\" (3 rows like that); the report itself: rstcli64.txt in the log "
                  "folder"});
}

TEST(ColumnsFit, AreToldInShort) {
  const std::string name(100, 'x');
  const Recording recording =
      MakeMachine("FW Version = " + name + "\nPSOC FW Version = 6\n" + "Function Number = 0\n");
  EXPECT_EQ(ListNotes(recording, "RAIDINFO"),
            Note("FW Version is \"6\", the report has \"" + name.substr(0, 59) + "…\""));
}

TEST(ColumnsFit, OfReportsThatAreNotAttachedToo) {
  const Recording recording =
      MakeMachine("FW Version = 36\nPSOC FW Version = 6\nFunction Number = 0\n");
  EXPECT_EQ(ListNotes(recording, "RAIDINFO", {"RAIDINFO"}),
            Notes{"columns do not fit this report: FW Version is \"6\", the report has \"36\"; the "
                  "report itself: c0_showall.txt in the log folder"});
}

}  // namespace
