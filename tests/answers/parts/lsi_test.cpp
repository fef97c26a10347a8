#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/read_parts.h"
#include "host/answers/parts/storcli_drives.h"
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
  std::erase_if(parts.groups, isOther);
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

// The lines of one that is left out are about no other one.
TEST(ReadLsi, LeavesOutDrivesThatNoMachineHas) {
  std::string details;
  for (std::size_t i = 0; i < host::kMostParts + 1; ++i) {
    details += fmt::format("Drive /c0/e7/s{} :\r\nShield Counter = {}\r\nSN = X\r\n", i, i);
  }
  Parts parts;
  host::ReadStorcliDrives({details, {}, "lsi0"}, parts);
  ASSERT_EQ(parts.drives.size(), host::kMostParts);
  EXPECT_EQ(parts.drives.CountLeft(), 1U);
  EXPECT_EQ(parts.drives.back().shield, host::Integer(host::kMostParts - 1));
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
  EXPECT_EQ(parts.events[0].id, "lsi0 00000001");
  EXPECT_EQ(parts.events[1].id, "lsi0 00000001 #2");
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

TEST(ReadLsi, ReadsGroupsWhereThereIsNoReport) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"), {"TINFO", "PINFO"});
  const Parts whole = ReadParts(LoadSample("two-socket-server"), {"LSILINK"});
  ASSERT_EQ(parts.groups.size(), 3U);
  for (std::size_t i = 0; i < parts.groups.size(); ++i) {
    const host::Group& group = parts.groups[i];
    EXPECT_EQ(group.id, whole.groups.at(i).id);
    EXPECT_EQ(group.level, whole.groups[i].level);
    EXPECT_EQ(group.state, whole.groups[i].state);
    EXPECT_EQ(group.busy, whole.groups[i].busy);
    EXPECT_EQ(group.readAt.className, "TINFO");
  }
}

TEST(ReadLsi, MissesDrivesWithoutAPlaceWhereThereIsNoReport) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "/c0 show",
         "TOPOLOGY :\n========\n\n"
         "-----------------------------------------------------------------------------\n"
         "DG Arr Row EID:Slot DID Type  State BT       Size PDC  PI SED DS3  FSpace TR\n"
         "-----------------------------------------------------------------------------\n"
         " 0 -   -   -        -   RAID1 Optl  N  446.625 GB dflt N  N   dflt N      N\n"
         " 0 0   0   69:0     12  DRIVE Onln  N  446.625 GB dflt N  N   dflt -      N\n"
         " 0 0   1   -        -   DRIVE Offln -  446.625 GB dflt N  N   dflt -      N\n"
         "-----------------------------------------------------------------------------\n");
  const Parts parts = ReadParts(recording, {"TINFO"});
  ASSERT_EQ(parts.missingDrives.size(), 1U);
  EXPECT_EQ(parts.missingDrives[0].id, "lsi0 g0 row 1");
  EXPECT_EQ(parts.missingDrives[0].readAt.className, "TINFO");
}

TEST(ReadLsi, ReadsEventsWhereThereIsNoReport) {
  const Parts parts = ReadParts(LoadSample("two-socket-server"), {"EVENTLOG1", "PINFO"});
  const Parts whole = ReadParts(LoadSample("two-socket-server"), {"LSILINK"});
  ASSERT_EQ(parts.events.size(), 278U);
  for (std::size_t i = 0; i < parts.events.size(); ++i) {
    const host::Event& event = parts.events[i];
    const host::Event& same = whole.events[i];
    EXPECT_EQ(event.id, same.id);
    EXPECT_EQ(event.time, same.time) << event.id;
    EXPECT_EQ(event.code, same.code);
    EXPECT_EQ(event.level, same.level);
    EXPECT_EQ(event.text, same.text);
    EXPECT_EQ(event.sense, same.sense);
    // Nothing but the report tells of a cache backup.
    if (same.part != "cache_backups") {
      EXPECT_EQ(event.part + event.partId, same.part + same.partId) << event.id;
    }
    EXPECT_EQ(event.readAt.className, "EVENTLOG1");
    EXPECT_EQ(event.readAt.row, static_cast<std::int64_t>(i) + 1);
  }
}

// The report of events has them all; its table lacks some.
TEST(ReadLsi, ReadsEventsOnce) {
  Recording recording = LoadSample("two-socket-server");
  for (const char* report : {"/c0 show", "/c0/eall/sall show all", "/c0 show termlog"}) {
    Answer(recording, report, "");
  }
  std::string events;
  for (const char* number : {"1", "2", "3"}) {
    events += std::string("seqNum: 0x0000000") + number +
              "\nTime: Tue Jun  2 18:02:08 2015\n\nCode: 0x000000fb\nClass: 2\nLocale: 0x01\n"
              "Event Description: VD 00/0 is now DEGRADED\nEvent Data:\n===========\nNone\n\n";
  }
  Answer(recording, "/c0 show events", events);
  Answer(recording, "show ctrlcount", "Controller Count = 1\n");
  ASSERT_FALSE(ReadParts(recording, {"EVENTLOG1"}).events.empty());
  EXPECT_EQ(ReadParts(recording, {"LSILINK", "EVENTLOG1"}).events.size(), 3U);
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

/// The first lines of a text, up to the one that begins with `end`.
std::string CutBefore(const std::string& text, const std::string& end) {
  const std::size_t at = text.find("\n" + end);
  if (at == std::string::npos) throw std::runtime_error("there is no line " + end);
  return text.substr(0, at + 1);
}

std::string GetAnswer(const Recording& recording, std::string_view arguments) {
  for (const host::RecordedCommand& command : recording.commands) {
    if (command.tool == "storcli.exe" && command.arguments == arguments) {
      return std::string(command.standardOutput.Text());
    }
  }
  throw std::runtime_error("storcli is not asked " + std::string(arguments));
}

/// What is told of the MegaRAID controllers of the sample when the answer to `arguments` ends
/// before a line.
std::string TellCut(const std::string& arguments, const std::string& end) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, arguments, CutBefore(GetAnswer(recording, arguments), end));
  return Tell(ReadParts(recording, {"LSILINK"}), "lsi");
}

TEST(ReadLsi, FailsWhereAReportBreaksOff) {
  EXPECT_EQ(TellCut("/c0 show", "69:7 "),
            "failed: storcli /c0 show breaks off in the table PD LIST");
  EXPECT_EQ(TellCut("/c0 show", "1/2 "),
            "failed: storcli /c0 show breaks off in the table VD LIST");
  EXPECT_EQ(TellCut("/c1 show", "TOPOLOGY"),
            "failed: storcli /c1 show breaks off before its drives");
  EXPECT_EQ(TellCut("/c0/eall/sall show all", "Drive /c0/e69/s7 :"),
            "failed: storcli /c0/eall/sall show all tells of 7 of 24 drives");
  EXPECT_EQ(TellCut("/c0/eall/sall show all", "Drive /c0/e69/s7 Device attributes"),
            "failed: storcli /c0/eall/sall show all breaks off at drive 69:7");
}

TEST(ReadLsi, TellsAllThatFailed) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "/c0 show events", "");
  Answer(recording, "/c1/eall/sall show all", "");
  recording.commands.back().exitCode = 5;
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: storcli /c0 show events printed nothing; storcli /c1/eall/sall show all ended "
            "with code 5");
}

/// What is told of them when the tool cannot be started for `arguments`.
std::string TellUnstarted(const std::string& arguments) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, arguments, "");
  recording.commands.back().startError = 5;
  return Tell(ReadParts(recording, {"RAIDINFO", "PINFO", "VINFO", "TINFO", "LSILINK"}), "lsi");
}

// The rows of the other classes have neither the drives' details nor other controllers.
TEST(ReadLsi, FailsWhereThereAreRowsAndNoReports) {
  EXPECT_EQ(TellUnstarted("show ctrlcount"), "failed: storcli.exe: CreateProcess failed (5)");
  EXPECT_EQ(TellUnstarted("/c0/eall/sall show all"),
            "failed: storcli counts 2 controllers, of which 1 was read");
  EXPECT_EQ(TellUnstarted("/c1 show events"),
            "failed: storcli counts 2 controllers, of which 1 was read");
}

TEST(ReadLsi, FailsWithALogThatBreaksOffInAnEntry) {
  EXPECT_EQ(TellCut("/c0 show events", "Event Description"),
            "failed: storcli /c0 show events breaks off in an entry");
  EXPECT_EQ(TellCut("/c0 show events", "==========="), "read: ");
}

TEST(ReadLsi, FailsWhereNobodyKnowsHowManyControllersThereAre) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "show ctrlcount", "Status = Failure\nDescription = busy\n");
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: storcli show ctrlcount told no number, so there may be more controllers than "
            "one");
}

TEST(ReadLsi, DoesNotMissReportsThatNobodyAskedFor) {
  Recording recording = LoadSample("hba-only");
  std::erase_if(recording.commands, [](const host::RecordedCommand& command) {
    return command.arguments == "/c0 show events";
  });
  EXPECT_EQ(Tell(ReadParts(recording), "lsi"), "read: ");
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
            "failed: what storcli printed tells of no controller by itself and of no drive");
}

TEST(ReadLsi, FailsWithNothingButALog) {
  Recording recording = LoadSample("two-socket-server");
  Answer(recording, "show ctrlcount", "Controller Count = 1\n");
  std::erase_if(recording.commands, [](const auto& command) {
    return command.arguments == "/c0 show" || command.arguments == "/c0/eall/sall show all";
  });
  EXPECT_EQ(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
            "failed: of the controllers there is nothing but a log");
}

TEST(ReadLsi, DoesNotTakeAnUnknownCommandForAFailedOne) {
  Recording recording = LoadSample("two-socket-server");
  std::erase_if(recording.commands,
                [](const auto& command) { return command.arguments == "show ctrlcount"; });
  EXPECT_THAT(Tell(ReadParts(recording, {"LSILINK"}), "lsi"),
              testing::HasSubstr("storcli show ctrlcount has no answer, so"));
}

TEST(ReadLsi, IsNotThereWithoutAToolOrAController) {
  EXPECT_EQ(Tell(ReadParts(LoadSample("no-controller")), "lsi").substr(0, 6), "none: ");
  EXPECT_EQ(Tell(ReadParts(LoadSample("bare-machine")), "lsi").substr(0, 6), "none: ");
  EXPECT_EQ(Tell(ReadParts(LoadSample("two-socket-server"), {"ARPINFO"}), "lsi"),
            "none: not collected");
}

TEST(ReadSas2, FailsWhereTheLogBreaksOff) {
  Recording recording = LoadSample("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments != "logir.log") continue;
    command.standardOutput =
        CutBefore(std::string(command.standardOutput.Text()), "LogSequence: 6");
  }
  EXPECT_EQ(Tell(ReadParts(recording, {"SAS2IRLOG"}), "sas2"),
            "failed: the log breaks off: 5 of 8 entries");
}

TEST(ReadSas2, FailsWithoutTheNumberOfItsEntries) {
  Recording recording = LoadSample("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments != "logir.log") continue;
    std::string text(command.standardOutput.Text());
    text.replace(text.find("Entries: 8"), 10, "Entries: ?");
    command.standardOutput = text;
  }
  EXPECT_EQ(Tell(ReadParts(recording, {"SAS2IRLOG"}), "sas2"),
            "failed: the log tells no number of its entries: ?");
}

TEST(ReadSas2, FailsWithTheTool) {
  Recording recording = LoadSample("two-socket-server");
  for (host::RecordedCommand& command : recording.commands) {
    if (command.arguments == "logir.log") command.exitCode = 1;
  }
  EXPECT_EQ(Tell(ReadParts(recording, {"SAS2IRLOG"}), "sas2"),
            "failed: SAS2IR_windows_x64 ended with code 1");
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
