// The largest recording's tables, foretold by a plainer reading of what its tools print.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"
#include "tests/support/raid_reference.h"

namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::SizeIs;

/// The two-socket server, and what its tools answer.
class TwoSocketServer : public ::testing::Test {
 protected:
  std::vector<std::string> LinesOf(const std::string& tool, const std::string& arguments) const {
    for (const host::RecordedCommand& command : recording.commands) {
      if (command.tool == tool && command.arguments == arguments) {
        return test::ReadLinesPlainly(std::string(command.standardOutput.Text()));
      }
    }
    throw std::invalid_argument(tool + " " + arguments + " is not recorded");
  }

  host::Recording recording = host::LoadRecording(test::SamplesFolder() + "/two-socket-server");
  test::Collected collected = test::Collect(recording, "sampleModule2");
};

TEST_F(TwoSocketServer, HasTheEventsOfItsFirstController) {
  std::string data;
  const auto pages = test::ApplyEventSteps(
      test::ReadEventsPlainly(LinesOf("storcli.exe", "/c0 show events"), data));
  EXPECT_THAT(pages[0], SizeIs(278));
  EXPECT_EQ(collected.Rows("EVENTLOG1"), pages[0]);
}

TEST_F(TwoSocketServer, HasTheTermLog) {
  const auto rows = test::ReadTermLogPlainly(LinesOf("storcli.exe", "/c0 show termlog"));
  EXPECT_THAT(rows, SizeIs(166));
  EXPECT_EQ(collected.Rows("FWTERMLOG"), rows);
}

TEST_F(TwoSocketServer, Has24DrivesOneOfWhichIsAboutToFail) {
  const auto rows = test::ReadDriveDetailsPlainly(LinesOf("storcli.exe", "/c0/eall/sall show all"));
  EXPECT_THAT(rows, SizeIs(24));
  EXPECT_THAT(rows, Contains(AllOf(SizeIs(20), Contains("SMARTflag= Yes\n"))).Times(1));
  EXPECT_EQ(collected.Rows("PDLIST"), rows);
}

TEST_F(TwoSocketServer, HasItsListsWithADriveThatIsBeingRebuilt) {
  const auto lists = test::ReadDriveListsPlainly(LinesOf("storcli.exe", "/c0 show"));
  EXPECT_THAT(lists[2], SizeIs(24));
  EXPECT_THAT(lists[2], Contains(Contains("State=Rbld")).Times(1));
  EXPECT_EQ(collected.Rows("TINFO"), lists[0]);
  EXPECT_EQ(collected.Rows("VINFO"), lists[1]);
  EXPECT_EQ(collected.Rows("PINFO"), lists[2]);
}

TEST_F(TwoSocketServer, HasTheLogOfItsSas2Adapter) {
  const auto rows = test::ReadSas2LogPlainly(LinesOf("SAS2IR_windows_x64.exe", "logir.log"));
  EXPECT_THAT(rows, SizeIs(8));
  EXPECT_EQ(collected.Rows("SAS2IRLOG"), rows);
}

TEST_F(TwoSocketServer, HasTheDevicesOfItsIntelController) {
  const auto lines = LinesOf("rstcli64_5.exe", "-I");
  const auto devices = test::ReadEndDevicesPlainly(lines);
  EXPECT_THAT(devices, SizeIs(4));
  EXPECT_EQ(collected.Rows("ENDDEVICEINFO"), devices);
  EXPECT_EQ(collected.Rows("ARRAY"), test::ReadArraysPlainly(lines));
  EXPECT_EQ(collected.Rows("VOLUME"), test::ReadVolumesPlainly(lines));
}

TEST_F(TwoSocketServer, LinksTheReportsOfBothControllers) {
  const auto rows = collected.Rows("LSILINK");
  ASSERT_THAT(rows, SizeIs(2));
  std::string summary;
  for (const std::string& line : LinesOf("storcli.exe", "/c1 show")) summary += line;
  EXPECT_THAT(rows[1], Contains(std::string("lsishowall=") + summary));
}

}  // namespace
