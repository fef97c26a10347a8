#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "tests/support/samples.h"

namespace {

using host::Parts;
using host::Recording;

/// Of all tables, or of those named, without parts of other vendors.
Parts ReadParts(const Recording& recording, const std::vector<std::string>& tables = {}) {
  host::Selection selection;
  selection.tables = tables;
  Parts parts = host::ReadParts(host::Collect(recording, selection));
  const auto isOther = [](const auto& part) { return part.vendor != "LSI"; };
  std::erase_if(parts.controllers, isOther);
  std::erase_if(parts.drives, isOther);
  std::erase_if(parts.volumes, isOther);
  return parts;
}

Recording LoadSample(const std::string& name) { return test::LoadSamples().at(name); }

/// "STATE: OBSERVED" of a source.
std::string Tell(const Parts& parts, std::string_view id) {
  for (const host::PartSource& source : parts.sources) {
    if (source.id == id) return source.state + ": " + source.observed;
  }
  return "not there";
}

/// Lets storcli answer `arguments` with `text`.
void Answer(Recording& recording, std::string_view arguments, const std::string& text) {
  std::erase_if(recording.commands, [&](const host::RecordedCommand& command) {
    return command.tool == "storcli.exe" && command.arguments == arguments;
  });
  host::RecordedCommand command;
  command.tool = "storcli.exe";
  command.arguments = arguments;
  command.standardOutput = text;
  recording.commands.push_back(command);
}

TEST(ReadLsi, ReadsEveryController) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"));
  ASSERT_GE(parts.controllers.size(), 2U);
  EXPECT_EQ(parts.controllers[0].id, "lsi0");
  EXPECT_EQ(parts.controllers[1].id, "lsi1");
  EXPECT_EQ(parts.controllers[1].readAt.row, 2);
  EXPECT_EQ(parts.controllers[1].readAt.tool, "storcli /c1 show");
  const auto count = [&](std::string_view controller) {
    return std::count_if(parts.drives.begin(), parts.drives.end(),
                         [&](const host::Drive& drive) { return drive.controller == controller; });
  };
  EXPECT_EQ(count("lsi0"), 24);
  EXPECT_EQ(count("lsi1"), 2);
  EXPECT_EQ(Tell(parts, "lsi"), "read: ");
  EXPECT_EQ(Tell(parts, "sas2"), "read: ");
}

TEST(ReadLsi, GivesConditionsToStates) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"));
  const auto rebuilding = std::find_if(parts.drives.begin(), parts.drives.end(),
                                       [](const host::Drive& d) { return d.id == "lsi0 69:14"; });
  ASSERT_NE(rebuilding, parts.drives.end());
  EXPECT_EQ(rebuilding->condition, "rebuilding");
  EXPECT_EQ(parts.volumes.at(3).condition, "degraded");
}

TEST(ReadLsi, GivesIdsOnce) {
  Recording recording = LoadSample("two-socket-server");
  const std::string event = "seqNum: 0x01\nCode: 0x71\nEvent Description: a\n";
  Answer(recording, "/c0 show events", event + event);
  Answer(recording, "/c0 show termlog", "");
  const Parts parts = ReadParts(recording, {"LSILINK"});
  EXPECT_EQ(parts.events.at(0).id, "lsi0 00000001");
  EXPECT_EQ(parts.events.at(1).id, "lsi0 00000001 #2");
}

TEST(ReadLsi, ReadsTheListsWhereThereIsNoReport) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"), {"RAIDINFO", "PINFO", "VINFO"});
  ASSERT_EQ(parts.controllers.size(), 1U);
  EXPECT_EQ(parts.controllers[0].serial, "KV0341P7K2");
  EXPECT_EQ(parts.controllers[0].systemTime, "2026-11-18T09:41:07");
  ASSERT_EQ(parts.drives.size(), 24U);
  EXPECT_EQ(parts.drives[14].id, "lsi0 69:14");
  EXPECT_EQ(parts.drives[14].state, "Rbld");
  EXPECT_EQ(parts.drives[14].group, "lsi0 g2");
  EXPECT_EQ(parts.drives[14].readAt.className, "PINFO");
  EXPECT_EQ(parts.drives[14].readAt.row, 15);
  // Of the four volumes the one without a name has no row.
  ASSERT_EQ(parts.volumes.size(), 3U);
  EXPECT_EQ(parts.volumes[2].id, "lsi0 v3");
  EXPECT_EQ(parts.volumes[2].state, "Dgrd");
  EXPECT_EQ(Tell(parts, "lsi"), "read: ");
}

TEST(ReadLsi, KeepsRowsOfListsThatDoNotFit) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "/c0 show",
         "PD LIST :\n=======\n\n------------------------------\nEID:Slt PID State Status DG Size\n"
         "------------------------------\n52:0 27 Conf Online 0 7.277 TiB SATA HDD - 512B KO - 1\n"
         "------------------------------\n");
  const Parts parts = ReadParts(recording, {"PINFO"});
  EXPECT_TRUE(parts.drives.empty());
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].id, "1");
  EXPECT_EQ(parts.unread[0].text, "52:0");
}

TEST(ReadLsi, ToleratesReportsThatAnAdapterDoesNotHave) {
  const Parts parts = ReadParts(LoadSample("hba-only"));
  EXPECT_EQ(Tell(parts, "lsi"), "read: ");
  EXPECT_EQ(parts.drives.size(), 3U);
}

TEST(ReadLsi, FailsWhenAReportDoes) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "/c0/eall/sall show all",
         "Controller = 0\nStatus = Failure\nDescription = Show Drive Information Failed.\n");
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: storcli /c0/eall/sall show all: Status = Failure, Show Drive Information "
            "Failed.");
}

TEST(ReadLsi, FailsWhereOneOfSeveralControllersPrintsNothing) {
  Recording recording = LoadSample("two-socket-server");
  for (const char* report :
       {"/c1 show", "/c1/eall/sall show all", "/c1 show events", "/c1 show termlog"}) {
    Answer(recording, report, "");
  }
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: storcli /c1 show printed nothing");
}

TEST(ReadLsi, FailsWhereAReportIsOfNoControllerAlthoughDrivesAreRead) {
  Recording recording = LoadSample("hba-only");
  Answer(recording, "/c0 show", "Segmentation fault\n");
  const Parts parts = ReadParts(recording, {"LSILINK"});
  EXPECT_FALSE(parts.drives.empty());
  EXPECT_EQ(Tell(parts, "lsi"), "failed: storcli /c0 show: no controller in what it printed");
}

TEST(ReadLsi, FailsWithoutAControllerInTheReports) {
  Recording recording = LoadSample("hba-only");
  Answer(recording, "/c0 show", "Segmentation fault\n");
  Answer(recording, "/c0/eall/sall show all", "Segmentation fault\n");
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: no controller and no drive in the reports of storcli");
}

TEST(ReadLsi, IsNotThereWithoutAToolOrAController) {
  EXPECT_EQ(Tell(ReadParts(LoadSample("no-controller")), "lsi").substr(0, 6), "none: ");
  EXPECT_EQ(Tell(ReadParts(LoadSample("bare-machine")), "lsi").substr(0, 6), "none: ");
  EXPECT_EQ(Tell(ReadParts(LoadSample("two-socket-server"), {"ARPINFO"}), "lsi"),
            "none: not collected");
}

TEST(ReadSas2, ReadsTheLog) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"), {"SAS2IRLOG"});
  ASSERT_EQ(parts.events.size(), 8U);
  EXPECT_EQ(parts.events[4].id, "sas2 5");
  EXPECT_EQ(parts.events[4].source, "SAS2");
  EXPECT_EQ(parts.events[4].level, host::Integer(1));
  EXPECT_EQ(parts.events[4].code, host::Integer(0x31110004));
  EXPECT_EQ(parts.events[4].text, "Physical disk reported a predictive failure");
  EXPECT_EQ(parts.events[4].readAt.row, 5);
}

}  // namespace
