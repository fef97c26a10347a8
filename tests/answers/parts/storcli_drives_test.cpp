#include "host/answers/parts/storcli_drives.h"

#include <gtest/gtest.h>

#include "host/answers/parts/storcli_show.h"
#include "tests/answers/parts/lsi_report.h"

namespace {

using host::Integer;
using host::Parts;
using host::Real;

Parts ReadDrives(std::string_view text, Parts parts = {}) {
  host::ReadStorcliDrives(test::LsiReport(text, "pdlist"), parts);
  return parts;
}

constexpr char kDetails[] =
    "Drive /c0/e69/s0 :\n"
    "=================\n"
    "\n"
    "------------------------------------------------------------\n"
    "EID:Slt DID State DG       Size Intf Med SeSz Model Sp Type\n"
    "------------------------------------------------------------\n"
    "69:0     12 Onln   0 446.625 GB SATA SSD 512B KORVA U  -\n"
    "------------------------------------------------------------\n"
    "\n"
    "Drive /c0/e69/s0 State :\n"
    "=======================\n"
    "Shield Counter = 1\n"
    "Media Error Count = 37\n"
    "Other Error Count = N/A\n"
    "Drive Temperature =  24C (75.20 F)\n"
    "Predictive Failure Count = 3\n"
    "S.M.A.R.T alert flagged by drive = Yes\n"
    "SN = S4K002\n"
    "Model Number = KORVA NS480M2 LONG\n"
    "Firmware Revision = A3F2\n"
    "Device Speed = 12.0Gb/s\n"
    "Link Speed = 6.0Gb/s\n"
    "Drive /c0/e69/s1 State :\n"
    "Drive Temperature =  0C (32.00 F)\n"
    "SN = N/A\n";

TEST(StorcliDrives, ReadsWhatIsToldOfEachDrive) {
  const Parts parts = ReadDrives(kDetails);
  ASSERT_EQ(parts.drives.size(), 2U);
  const host::Drive& drive = parts.drives[0];
  EXPECT_EQ(drive.id, "lsi0 69:0");
  EXPECT_EQ(drive.vendor, "LSI");
  EXPECT_EQ(drive.controller, "lsi0");
  EXPECT_EQ(drive.state, "Onln");
  EXPECT_EQ(drive.shield, Integer(1));
  EXPECT_EQ(drive.mediaErrors, Integer(37));
  EXPECT_EQ(drive.otherErrors, Integer());
  EXPECT_EQ(drive.temperature, Real(24));
  EXPECT_EQ(drive.predictiveFailures, Integer(3));
  EXPECT_EQ(drive.smartAlert, "Yes");
  EXPECT_EQ(drive.serial, "S4K002");
  EXPECT_EQ(drive.model, "KORVA NS480M2 LONG");
  EXPECT_EQ(drive.firmware, "A3F2");
  EXPECT_EQ(drive.deviceSpeed, Real(12));
  EXPECT_EQ(drive.linkSpeed, Real(6));
  EXPECT_EQ(host::FindPlace(drive, "state").line, 7);
  EXPECT_EQ(host::FindPlace(drive, "media_errors").line, 13);
  EXPECT_EQ(host::FindPlace(drive, "model").line, 19);
}

// No drive is frozen: that one has no sensor.
TEST(StorcliDrives, HaveNoTemperatureOfZero) {
  const Parts parts = ReadDrives(kDetails);
  EXPECT_EQ(parts.drives.at(1).temperature, Real());
  EXPECT_EQ(parts.drives.at(1).serial, "");
}

TEST(StorcliDrives, AddToTheDriveOfTheControllersList) {
  Parts parts;
  host::ReadStorcliShow(test::LsiReport("PD LIST :\n"
                                        "-------------------------------\n"
                                        "EID:Slt DID State DG Size Model\n"
                                        "-------------------------------\n"
                                        "69:0 12 Rbld 0 446.625 GB KORVA\n"),
                        parts);
  parts = ReadDrives(kDetails, parts);
  ASSERT_EQ(parts.drives.size(), 2U);
  EXPECT_EQ(parts.drives[0].state, "Rbld");
  EXPECT_EQ(parts.drives[0].readAt.key, "lsishowall");
  EXPECT_EQ(parts.drives[0].mediaErrors, Integer(37));
  EXPECT_EQ(host::FindPlace(parts.drives[0], "media_errors").key, "pdlist");
}

TEST(StorcliDrives, ReadTheSecondGenerationOfTheTool) {
  const Parts parts = ReadDrives(
      "Drive /c0/e52/s4 - Detailed Information :\n"
      "Temperature(C) = 41\n"
      "Serial Number = SN3\n"
      "Model = KORVA 22\n"
      "Firmware Revision Level = LNG\n"
      "Capable Speed = 6.0Gb/s\n"
      "Path Information :\n"
      "================\n"
      "----------------------------------------------------------\n"
      "SASAddress DevicePID Path    ConnectorIndex NegotiatedSpeed\n"
      "----------------------------------------------------------\n"
      "0x30000002        31 Primary              1 3.0Gb/s\n"
      "----------------------------------------------------------\n"
      "LU/NS 0/- Properties for Drive /c0/e52/s4  :\n"
      "Other Error Count = 2\n");
  ASSERT_EQ(parts.drives.size(), 1U);
  EXPECT_EQ(parts.drives[0].id, "lsi0 52:4");
  EXPECT_EQ(parts.drives[0].temperature, Real(41));
  EXPECT_EQ(parts.drives[0].serial, "SN3");
  EXPECT_EQ(parts.drives[0].model, "KORVA 22");
  EXPECT_EQ(parts.drives[0].firmware, "LNG");
  EXPECT_EQ(parts.drives[0].deviceSpeed, Real(6));
  EXPECT_EQ(parts.drives[0].linkSpeed, Real(3));
  EXPECT_EQ(parts.drives[0].otherErrors, Integer(2));
}

TEST(StorcliDrives, KeepWhatADriveAnswered) {
  const Parts parts = ReadDrives(
      "Status = Failure\n"
      "Detailed Status :\n"
      "-----------------------------\n"
      "Drive      Status  ErrCd ErrMsg\n"
      "-----------------------------\n"
      "/c0/e8/s0  Success 0     -\n"
      "/c0/e8/s1  Failure 46    Device gone\n"
      "/c0/s2     Failed  46    -\n"
      "-----------------------------\n");
  ASSERT_EQ(parts.drives.size(), 2U);
  EXPECT_EQ(parts.drives[0].id, "lsi0 8:1");
  EXPECT_EQ(parts.drives[0].answer, "Failure 46    Device gone");
  EXPECT_EQ(parts.drives[1].id, "lsi0 :2");
}

}  // namespace
