#include "host/collect/table_status.h"

#include <gtest/gtest.h>

#include <set>

#include "frame/add_modules.h"
#include "host/catalogue/table_sources.h"

namespace {

using host::StatusTracker;
using host::TableStatus;

constexpr char kStorcli[] = "C:\\Halyard\\utilities\\lsi\\storcli.exe";

std::string StorcliCommand(const std::string& arguments, const std::string& file) {
  return std::string("/c \"\"") + kStorcli + "\" " + arguments + " > \"C:\\Halyard\\logs\\" + file +
         "\"\"";
}

/// A tracker that has seen some calls; every program is there and no file is left, unless said
/// otherwise.
class Watched {
 public:
  explicit Watched(const std::string& module) {
    tracker.Ask([this](const std::string&) { return programsAreThere; },
                [this](const std::string&) { return leftSize; });
    tracker.Module(module, "");
  }
  Watched& Runs(const std::string& command, std::uint32_t exitCode, bool pipe = false) {
    tracker.OnProcess("cmd.exe", command, pipe, pipe);
    if (!pipe) tracker.OnProcessEnd(exitCode);
    return *this;
  }
  Watched& Logs(const std::string& text) {
    tracker.Log({3, "pqmodules/x", 1, "[repo] " + text});
    return *this;
  }

  StatusTracker tracker;
  bool programsAreThere = true;
  std::optional<std::uint64_t> leftSize;
};

TEST(TableStatus, CountsRows) {
  Watched watched("BMC_Info");
  EXPECT_EQ(watched.tracker.FindStatus("BMC_Info", "SELINFO", 1).text, "1 row");
  const TableStatus status = watched.tracker.FindStatus("BMC_Info", "SELINFO", 12);
  EXPECT_EQ(status.outcome, "rows");
  EXPECT_EQ(status.text, "12 rows");
}

TEST(TableStatus, NamesTheMissingTool) {
  Watched watched("sampleModule2");
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  const TableStatus status = watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "tool missing");
  EXPECT_EQ(status.text, "storcli.exe is not on this machine");
}

TEST(TableStatus, RepeatsWhyAToolCouldNotStart) {
  Watched watched("sampleModule2");
  watched.tracker.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.Logs("CreateProcess failed (5)");
  const TableStatus status = watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "could not start");
  EXPECT_EQ(status.text, "storcli.exe: CreateProcess failed (5)");
}

TEST(TableStatus, TellsAPipeThatCouldNotBeCreated) {
  Watched watched("BMC_Info");
  watched.Logs("Failed to create pipe for sensor info");
  EXPECT_EQ(watched.tracker.FindStatus("BMC_Info", "SENSORINFO", 0).outcome, "could not start");
}

TEST(TableStatus, TellsAnOutputThatCouldNotBeOpened) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0)
      .Logs("Failed to open raid log file");
  const TableStatus status = watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "output could not be opened");
  EXPECT_EQ(status.text, "storcli.exe: Failed to open raid log file");
}

TEST(TableStatus, TellsTheExitCodeOfAToolThatFailed) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 46);
  const TableStatus status = watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "tool reported an error");
  EXPECT_EQ(status.text, "storcli.exe ended with code 46");
}

TEST(TableStatus, TellsAnErrorTextThatAQueryRejected) {
  Watched watched("BMC_Info");
  watched.Runs("/c \"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" korvaxoem mc", 0, /*pipe=*/true)
      .Logs("dw:22")
      .Logs("Error: no such driver");
  EXPECT_EQ(watched.tracker.FindStatus("BMC_Info", "MCINFO", 0).outcome, "tool reported an error");
}

TEST(TableStatus, TellsAToolThatPrintedNothing) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0);
  watched.leftSize = 0;
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome, "nothing printed");
}

TEST(TableStatus, TellsAnOutputWithoutRows) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0);
  watched.leftSize = 400;
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome,
            "no rows in output");
}

TEST(TableStatus, TellsTheQueryThatAPlatformFamilyLacks) {
  Watched watched("BMC_Info");
  watched.Logs("Marl(ZM310), has BMC, return 7");
  EXPECT_EQ(watched.tracker.FindStatus("BMC_Info", "LEDINFO", 0).outcome,
            "not this platform family");
  EXPECT_NE(watched.tracker.FindStatus("BMC_Info", "SDRINFO", 0).outcome,
            "not this platform family");
}

TEST(TableStatus, TellsAMachineWithoutBmc) {
  Watched watched("BMC_Info");
  watched.Logs("has no BMC, return 4");
  EXPECT_EQ(watched.tracker.FindStatus("BMC_Info", "SELINFO", 0).text, "this machine has no BMC");
}

TEST(TableStatus, TellsThatASystemIsNotEnglish) {
  Watched watched("Windows_Related_Info");
  watched.Logs("Get OS language, lcid=1031");
  EXPECT_EQ(watched.tracker.FindStatus("Windows_Related_Info", "ARPINFO", 0).outcome,
            "not this language");
}

TEST(TableStatus, TellsTheSecondToolWhereTheFirstFailed) {
  Watched watched("sampleModule1");
  watched.Runs("/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"", 2)
      .Runs(
          "/c \"\"C:\\H\\utilities\\vroc\\IntelVROCCli.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"",
          0);
  watched.leftSize = 10;
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule1", "CONTROLLER", 0).text,
            "IntelVROCCli.exe printed nothing that belongs here");
}

TEST(TableStatus, TellsAToolThatTheHostEnded) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  watched.tracker.OnToolEnded(30);
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe was ended after 30 s");
}

TEST(TableStatus, TellsAToolThatWantedMoreMemory) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  watched.tracker.OnToolOutOfMemory(64);
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe wanted more than its 64 MiB of memory");
}

TEST(TableStatus, TellsAToolThatWasRefusedByAnInterruption) {
  Watched watched("sampleModule2");
  watched.tracker.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.tracker.OnRefused();
  watched.Logs("CreateProcess failed (1223)");
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome, "interrupted");
}

TEST(TableStatus, TellsATableThatAnInterruptionLeftNoPipe) {
  Watched watched("Windows_Related_Info");
  watched.Runs("/c route print >\"C:\\H\\logs\\route.txt\"", 0);
  watched.tracker.OnRefused();
  watched.Logs("Failed to create pipe for arp info");
  EXPECT_EQ(watched.tracker.FindStatus("Windows_Related_Info", "ARPINFO", 0).outcome,
            "interrupted");
}

TEST(TableStatus, KeepsWhatAToolAnsweredBeforeTheInterruption) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 9);
  watched.tracker.OnRefused();
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe ended with code 9");
}

TEST(TableStatus, TellsTheStepThatEndedAModule) {
  Watched watched("sampleModule1");
  watched.tracker.OnProcess("cmd.exe", StorcliCommand("show ctrlcount", "ctrlcount.txt"), false,
                            false);
  watched.Logs("CreateProcess failed (206)");
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "storcli.exe: CreateProcess failed (206)");
}

/// What stands in the folder of a host where a blank makes the interpreter's quotes matter.
constexpr char kArcconf[] =
    "/c \"C:\\Halyard Host\\utilities\\arcconf\\arcconf.exe savesupportarchive c:\\\"";

TEST(TableStatus, NamesTheTableOwnToolWhenAnotherIsMissingToo) {
  Watched watched("sampleModule1");
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 1).Runs(kArcconf, 1);
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "arcconf.exe is not on this machine");
}

TEST(TableStatus, BlamesNoToolThatServesOtherTables) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 0);
  watched.programsAreThere = false;
  watched.Runs("/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"", 1);
  EXPECT_EQ(watched.tracker.FindStatus("sampleModule2", "LSILINK", 0).outcome, "not reached");
}

TEST(ModuleDescriptions, DescribeEveryRegisteredTable) {
  std::vector<boost::shared_ptr<halyard::repository::RModule>> modules;
  AddModules(modules);
  std::set<std::string> registered;
  for (const auto& module : modules) {
    module->RegisterTables();
    for (const auto& [name, handlers] : module->Tables()) registered.insert(name);
  }
  std::set<std::string> described;
  for (const pq::ModuleDescription& module : host::GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) described.insert(table.className);
  }
  EXPECT_EQ(described, registered);
}

}  // namespace
