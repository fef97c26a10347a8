// Term log, drive details and SAS2 log: reports that are read line by line.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

using Rows = std::vector<std::vector<std::string>>;

Collected TermLog(const std::string& text) {
  return RaidTools().Storcli("/c0 show termlog", text).Collect();
}
Collected DriveReport(const std::string& text) {
  return RaidTools().Storcli("/c0/eall/sall show all", text).Collect();
}
Collected Sas2Log(const std::string& text) {
  return RaidTools().Answer("SAS2IR_windows_x64.exe", "logir.log", text).Collect();
}

/// A drive's row as a report of one line and the line that ends the row gives it.
std::vector<std::string> DriveRow(const std::string& line) {
  const auto rows = DriveReport(line + "Needs EKM Attention = No\n").Rows("PDLIST");
  return rows.empty() ? std::vector<std::string>() : rows[0];
}

constexpr char kMarkerLine[] = "Firmware Term Log Information on controller 0:\n";

TEST(TermLog, PublishesTheHeadTheMarkerAndTheLog) {
  EXPECT_THAT(
      TermLog(std::string("Controller = 0\n\n") + kMarkerLine + "T10: C0:up\n").Rows("FWTERMLOG"),
      ElementsAre(ElementsAre("FWTERMLOG=Controller = 0\n"), ElementsAre("FWTERMLOG=\n"),
                  ElementsAre(std::string("FWTERMLOG=") + kMarkerLine),
                  ElementsAre("FWTERMLOG=T10: C0:up\n")));
}

TEST(TermLog, GivesOneRowPerLine) {
  std::string text;
  for (int line = 1; line <= 100; ++line) text += line == 8 ? kMarkerLine : "line\n";
  const auto rows = TermLog(text).Rows("FWTERMLOG");
  ASSERT_THAT(rows, SizeIs(100));
  EXPECT_THAT(rows[6], ElementsAre("FWTERMLOG=line\n"));
  EXPECT_THAT(rows[7], ElementsAre(std::string("FWTERMLOG=") + kMarkerLine));
}

TEST(TermLog, ReadsALongLineInPieces) {
  const auto rows = TermLog(kMarkerLine + std::string(600, 'x') + "\n").Rows("FWTERMLOG");
  ASSERT_THAT(rows, SizeIs(3));
  EXPECT_THAT(rows[1], ElementsAre(std::string("FWTERMLOG=") + std::string(511, 'x')));
  EXPECT_THAT(rows[2], ElementsAre(std::string("FWTERMLOG=") + std::string(89, 'x') + "\n"));
}

TEST(TermLog, DoesNotFindAMarkerThatALongLineTearsApart) {
  EXPECT_THAT(TermLog(std::string(500, 'x') + kMarkerLine).Rows("FWTERMLOG"), IsEmpty());
}

TEST(TermLog, GivesARowForAnEmptyLine) {
  const auto rows = TermLog(std::string(kMarkerLine) + "\r\n").Rows("FWTERMLOG");
  ASSERT_THAT(rows, SizeIs(2));
  EXPECT_THAT(rows[1], ElementsAre("FWTERMLOG=\n"));
}

TEST(TermLog, GivesNoRowWithoutTheMarker) {
  const Collected collected = TermLog("Status = Failure\nterm log information\n");
  EXPECT_THAT(collected.Rows("FWTERMLOG"), IsEmpty());
  EXPECT_THAT(collected.trace, HasSubstr(R"("class":"FWTERMLOG")"));
}

TEST(TermLog, GivesNoRowWithoutStorcli) {
  EXPECT_THAT(RaidTools().Collect().Rows("FWTERMLOG"), IsEmpty());
}

TEST(TermLog, EndsALineAtANul) {
  const auto rows = TermLog(kMarkerLine + std::string("a\0b\nc\n", 6)).Rows("FWTERMLOG");
  ASSERT_THAT(rows, SizeIs(3));
  EXPECT_THAT(rows[1], ElementsAre("FWTERMLOG=a"));
  EXPECT_THAT(rows[2], ElementsAre("FWTERMLOG=c\n"));
}

TEST(TermLog, PassesBytesAbove127) {
  EXPECT_THAT(TermLog(std::string(kMarkerLine) + "\xE4\xFF\n").Rows("FWTERMLOG")[1],
              ElementsAre("FWTERMLOG=\xE4\xFF\n"));
}

TEST(TermLog, LogsNoCommand) {
  for (const std::string& text : TermLog(kMarkerLine).LogTexts()) {
    EXPECT_THAT(text, Not(HasSubstr("termlog")));
  }
}

TEST(TermLog, AddsNothingWhenStorcliCannotStart) {
  const Collected collected =
      RaidTools().RefuseStart("storcli.exe", "/c0 show termlog", 1450).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (1450)"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"FWTERMLOG")")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("/c0/eall/sall show all")));
}

TEST(TermLog, AddsNothingWhenTheReportCannotBeOpened) {
  const Collected collected =
      RaidTools().Storcli("/c0 show termlog", kMarkerLine).RefuseReport("fwtermlog.txt").Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open raid log file"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"FWTERMLOG")")));
}

TEST(DriveDetails, SetsEachOfItsTwentyColumns) {
  const auto rows = DriveReport(
                        "Shield Counter = 0\n"
                        "Media Error Count = 1\n"
                        "Other Error Count = 2\n"
                        "Drive Temperature =  22C (71.60 F)\n"
                        "Predictive Failure Count = 4\n"
                        "S.M.A.R.T alert flagged by drive = No\n"
                        "SN = Z4K1\n"
                        "WWN = 5A4C\n"
                        "Firmware Revision = HN07\n"
                        "Raw size = 10 GB [0x1 Sectors]\n"
                        "Coerced size = 11 GB [0x2 Sectors]\n"
                        "Non Coerced size = 12 GB [0x3 Sectors]\n"
                        "Device Speed = 12.0Gb/s\n"
                        "Link Speed = 6.0Gb/s\n"
                        "Logical Sector Size = 512B\n"
                        "Enclosure position = 1\n"
                        "Connected Port Number = 0(path0) \n"
                        "Commissioned Spare = No\n"
                        "Emergency Spare = Yes\n"
                        "Needs EKM Attention = No\n")
                        .Rows("PDLIST");
  EXPECT_EQ(rows, (Rows{{"ShieldCounter= 0\n",
                         "MediaErrorCount= 1\n",
                         "OtherErrorCount= 2\n",
                         "DriveTemperature=  22C (71.60 F)\n",
                         "PredictiveFail= 4\n",
                         "SMARTflag= No\n",
                         "SN= Z4K1\n",
                         "WWN= 5A4C\n",
                         "FirmwareRevision= HN07\n",
                         "Rawsize= 10 GB [0x1 Sectors]\n",
                         "Coercedsize= 11 GB [0x2 Sectors]\n",
                         "NonCoercedsize= 12 GB [0x3 Sectors]\n",
                         "DeviceSpeed= 12.0Gb/s\n",
                         "LinkSpeed= 6.0Gb/s\n",
                         "LogicalSectorSize= 512B\n",
                         "Enclosureposition= 1\n",
                         "ConnectedPortNumber= 0(path0) \n",
                         "CommissionedSpare= No\n",
                         "EmergencySpare= Yes\n",
                         "NeedsEKMAttention= No\n"}}));
}

TEST(DriveDetails, GivesOneRowPerDrive) {
  EXPECT_THAT(DriveReport("SN = 1\nNeeds EKM Attention = No\nSN = 2\nNeeds EKM Attention = No\n"
                          "SN = 3\nNeeds EKM Attention = Yes\n")
                  .Rows("PDLIST"),
              ElementsAre(ElementsAre("SN= 1\n", "NeedsEKMAttention= No\n"),
                          ElementsAre("SN= 2\n", "NeedsEKMAttention= No\n"),
                          ElementsAre("SN= 3\n", "NeedsEKMAttention= Yes\n")));
}

TEST(DriveDetails, CarriesADriveWithoutItsLastLineIntoTheNext) {
  EXPECT_THAT(DriveReport("SN = 1\nWWN = A\nSN = 2\nNeeds EKM Attention = No\n").Rows("PDLIST"),
              ElementsAre(ElementsAre("SN= 2\n", "WWN= A\n", "NeedsEKMAttention= No\n")));
}

TEST(DriveDetails, LosesWhatFollowsTheLastRow) {
  const Collected collected = DriveReport("Needs EKM Attention = No\nSN = 1\n");
  EXPECT_THAT(collected.Rows("PDLIST"), ElementsAre(ElementsAre("NeedsEKMAttention= No\n")));
}

TEST(DriveDetails, IgnoresLinesWithoutALabel) {
  EXPECT_THAT(DriveRow("Manufacturer Id = KORVA\nDrive /c0/e69/s0 State :\n\nSN : 5\n"),
              ElementsAre("NeedsEKMAttention= No\n"));
}

TEST(DriveDetails, TakesTheFirstLabelOfTheTable) {
  EXPECT_THAT(DriveRow("WWN = 5 SN = 7\n"), Contains("SN= 7\n"));
}

TEST(DriveDetails, TakesALabelInsideALongerOne) {
  EXPECT_THAT(DriveRow("Chassis SN = 7\n"), Contains("SN= 7\n"));
}

TEST(DriveDetails, TellsNonCoercedFromCoercedSizes) {
  EXPECT_THAT(DriveRow("Coerced size = 1 GB\n"), Contains("Coercedsize= 1 GB\n"));
  EXPECT_THAT(DriveRow("Non Coerced size = 2 GB\n"), Contains("NonCoercedsize= 2 GB\n"));
}

TEST(DriveDetails, ReadsTheFirstCoercedSizeOfALine) {
  EXPECT_THAT(DriveRow("Coerced size = 1 Non Coerced size = 2\n"),
              Contains("NonCoercedsize= 1 Non Coerced size = 2\n"));
}

TEST(DriveDetails, TakesTheRawSizeBeforeACoercedOne) {
  EXPECT_THAT(DriveRow("Coerced size = 1 Raw size = 2\n"), Contains("Rawsize= 2\n"));
}

TEST(DriveDetails, GivesAnEmptyValueWhereTheFileEndsBehindALabel) {
  EXPECT_THAT(DriveReport("Needs EKM Attention =").Rows("PDLIST"),
              ElementsAre(ElementsAre("NeedsEKMAttention=")));
}

TEST(DriveDetails, LogsItsCommandAsTheTermLogsPath) {
  EXPECT_THAT(
      DriveReport("").LogTexts(),
      Contains(
          R"(3 fwterm raw path:/c ""C:\Halyard\utilities\lsi\storcli.exe" /c0/eall/sall show all > "C:\Halyard\logs\pdlist.txt"")"));
}

TEST(DriveDetails, AddsNothingWhenStorcliCannotStart) {
  const Collected collected =
      RaidTools().RefuseStart("storcli.exe", "/c0/eall/sall show all", 5).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"PDLIST")")));
  EXPECT_THAT(collected.LogTexts(), Contains(HasSubstr("raid raw path:")));
}

TEST(DriveDetails, AddsNothingWhenTheReportCannotBeOpened) {
  const Collected collected = RaidTools()
                                  .Storcli("/c0/eall/sall show all", "Needs EKM Attention = No\n")
                                  .RefuseReport("pdlist.txt")
                                  .Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open raid log file"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"PDLIST")")));
}

TEST(Sas2IrLog, SkipsABlankBehindTheTimeOnly) {
  const auto rows = Sas2Log(
                        "Time: 0d 00:07:13\n"
                        "LogSequence: 1\n"
                        "LogEntryQualifier: 2\n"
                        "LogEntryDescription: Volume is optimal\n"
                        "LogEntryValue: 3\n"
                        "vf_id: 4\n"
                        "vp_id: 5\n"
                        "LogCode: 6\n"
                        "LogDataDescription: Device handle\n"
                        "LogDataValue: 7\n"
                        "LogClass: 8\n"
                        "ArgumentType: 9\n"
                        "Locale: 10\n")
                        .Rows("SAS2IRLOG");
  EXPECT_EQ(rows,
            (Rows{{"Time=0d 00:07:13\n", "LogSequence= 1\n", "LogEntryQualifier= 2\n",
                   "LogEntryDescription= Volume is optimal\n", "LogEntryValue= 3\n", "vfid= 4\n",
                   "vpid= 5\n", "LogCode= 6\n", "LogDataDescription= Device handle\n",
                   "LogDataValue= 7\n", "LogClass= 8\n", "ArgumentType= 9\n", "Locale= 10\n"}}));
}

TEST(Sas2IrLog, CommitsARowAtEachLocale) {
  EXPECT_THAT(Sas2Log("LogCode:1\nLocale:2\nLogCode:3\nLocale:4\nLogCode:5\n").Rows("SAS2IRLOG"),
              ElementsAre(ElementsAre("LogCode=1\n", "Locale=2\n"),
                          ElementsAre("LogCode=3\n", "Locale=4\n")));
}

TEST(Sas2IrLog, TakesAnyLineWithATimeAsTheTime) {
  EXPECT_THAT(Sas2Log("Locale: Boot Time: 9\nLocale: 1\n").Rows("SAS2IRLOG"),
              ElementsAre(ElementsAre("Time=9\n", "Locale= 1\n")));
}

TEST(Sas2IrLog, GivesNoRowWithoutALocale) {
  EXPECT_THAT(Sas2Log("Time: 1\nLogCode: 2\n").Rows("SAS2IRLOG"), IsEmpty());
}

TEST(Sas2IrLog, GivesNoRowWithoutTheTools) {
  EXPECT_THAT(RaidTools().Collect().Rows("SAS2IRLOG"), IsEmpty());
}

TEST(Sas2IrLog, GivesEmptyValuesWhereLinesEndEarly) {
  EXPECT_THAT(Sas2Log("Time:\nvf_id:\nLocale:").Rows("SAS2IRLOG"),
              ElementsAre(ElementsAre("Time=", "vfid=\n", "Locale=")));
}

TEST(Sas2IrLog, UploadsIntoTheWorkingFolder) {
  RaidTools tools;
  tools.Answer("sas2ircu.exe", "0 logir upload", "uploaded\n");
  const Collected collected = tools.Collect();
  EXPECT_THAT(
      collected.trace,
      HasSubstr(
          R"({"event":"system","command":"\"C:\\Halyard\\utilities\\lsi\\sas2ircu.exe\" 0 logir upload > logir.log"})"));
  EXPECT_EQ(collected.files.at(tools.recording.workingFolder + "logir.log"), "uploaded\n");
}

TEST(Sas2IrLog, GoesOnWhenTheWorkingFolderIsReadOnly) {
  RaidTools tools;
  tools.Answer("sas2ircu.exe", "0 logir upload", "uploaded\n");
  tools.recording.readOnly.push_back(tools.recording.workingFolder + "logir.log");
  const Collected collected = tools.Collect();
  EXPECT_EQ(collected.files.count(tools.recording.workingFolder + "logir.log"), 0U);
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("SAS2IR_windows_x64.exe")));
  EXPECT_THAT(collected.Rows("SAS2IRLOG"), IsEmpty());
}

TEST(Sas2IrLog, LogsBothCommandsAndTheDoubledPath) {
  EXPECT_THAT(
      Sas2Log("").LogTexts(),
      AllOf(
          Contains(
              R"(3 cmdline_sas raw path:"C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)"),
          Contains(
              R"(3 irlog2 raw path:/c ""C:\Halyard\pq_tools\SAS2IR_windows_x64.exe" logir.log > "C:\Halyard\logs\ir.txt"")"),
          Contains(R"(3 3irlog raw path:C:\\Halyard\\logs\\ir.txt)")));
}

TEST(Sas2IrLog, AddsNothingWhenTheConverterCannotStart) {
  const Collected collected =
      RaidTools().RefuseStart("SAS2IR_windows_x64.exe", "logir.log", 5).Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.LogTexts(), Not(Contains(HasSubstr("3irlog raw path:"))));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"SAS2IRLOG")")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("rstcli64_5.exe")));
}

TEST(Sas2IrLog, AddsNothingWhenItsReportCannotBeOpened) {
  const Collected collected = RaidTools()
                                  .Answer("SAS2IR_windows_x64.exe", "logir.log", "Locale: 1\n")
                                  .RefuseReport("ir.txt")
                                  .Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open ir log file"));
  EXPECT_THAT(collected.trace, Not(HasSubstr(R"("class":"SAS2IRLOG")")));
}

}  // namespace
