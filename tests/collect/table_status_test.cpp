#include <gtest/gtest.h>

#include <map>
#include <set>

#include "frame/add_modules.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/failed_tools.h"
#include "host/collect/status_explainer.h"
#include "host/collect/tool_history.h"

namespace {

using host::TableStatus;
using host::ToolHistory;

constexpr char kStorcli[] = "C:\\Halyard\\utilities\\lsi\\storcli.exe";

std::string StorcliCommand(const std::string& arguments, const std::string& file) {
  return std::string("/c \"\"") + kStorcli + "\" " + arguments + " > \"C:\\Halyard\\logs\\" + file +
         "\"\"";
}

/// A history that has seen some calls; every program is there and no file is left, unless said
/// otherwise.
class Watched {
 public:
  explicit Watched(const std::string& module) {
    history.Ask([this](const std::string&) { return programsAreThere; },
                [this](const std::string&) { return leftSize; },
                [this](const std::string& path) {
                  const auto old = oldFiles.find(path);
                  return old == oldFiles.end() ? std::nullopt : std::optional(old->second);
                });
    history.Module(module, "");
  }
  Watched& Runs(const std::string& command, std::uint32_t exitCode, bool pipe = false) {
    history.OnProcess("cmd.exe", command, pipe, pipe);
    if (!pipe) history.OnProcessEnd(exitCode);
    return *this;
  }
  Watched& Logs(const std::string& text) {
    history.Log({3, "pqmodules/x", 1, "[repo] " + text});
    return *this;
  }

  Watched& Reads(const std::string& path) {
    history.OnOpen(path, "r");
    return *this;
  }

  ToolHistory history;
  host::StatusExplainer statuses{history};
  std::map<std::string, host::OldFile> oldFiles;  ///< by the path that is read
  bool programsAreThere = true;
  std::optional<std::uint64_t> leftSize;
};

TEST(TableStatus, CountsRows) {
  Watched watched("BMC_Info");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SELINFO", 1).text, "1 row");
  const TableStatus status = watched.statuses.FindStatus("BMC_Info", "SELINFO", 12);
  EXPECT_EQ(status.outcome, "rows");
  EXPECT_EQ(status.text, "12 rows");
}

TEST(TableStatus, NamesTheMissingTool) {
  Watched watched("sampleModule2");
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "tool missing");
  EXPECT_EQ(status.text, "storcli.exe is not on this machine");
}

TEST(TableStatus, RepeatsWhyAToolCouldNotStart) {
  Watched watched("sampleModule2");
  watched.history.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.Logs("CreateProcess failed (5)");
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "could not start");
  EXPECT_EQ(status.text, "storcli.exe: CreateProcess failed (5)");
}

TEST(TableStatus, TellsAPipeThatCouldNotBeCreated) {
  Watched watched("BMC_Info");
  watched.Logs("Failed to create pipe for sensor info");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SENSORINFO", 0).outcome, "could not start");
}

TEST(TableStatus, TellsAnOutputThatCouldNotBeOpened) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0)
      .Logs("Failed to open raid log file");
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "output could not be opened");
  EXPECT_EQ(status.text, "storcli.exe: Failed to open raid log file");
}

TEST(TableStatus, TellsTheExitCodeOfAToolThatFailed) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 46);
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "tool reported an error");
  EXPECT_EQ(status.text, "storcli.exe ended with code 46");
}

TEST(TableStatus, TellsAnErrorTextThatAQueryRejected) {
  Watched watched("BMC_Info");
  watched.Runs("/c \"C:\\Halyard\\pq_tools\\ipmiutilnh.exe\" korvaxoem mc", 0, /*pipe=*/true)
      .Logs("dw:22")
      .Logs("Error: no such driver");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "MCINFO", 0).outcome, "tool reported an error");
}

TEST(TableStatus, TellsAToolThatPrintedNothing) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0);
  watched.leftSize = 0;
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome,
            "nothing printed");
}

TEST(TableStatus, TellsAnOutputWithoutRows) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 0);
  watched.leftSize = 400;
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome,
            "no rows in output");
}

TEST(TableStatus, TellsTheQueryThatAPlatformFamilyLacks) {
  Watched watched("BMC_Info");
  watched.Logs("Marl(ZM310), has BMC, return 7");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "LEDINFO", 0).outcome,
            "not this platform family");
  EXPECT_NE(watched.statuses.FindStatus("BMC_Info", "SDRINFO", 0).outcome,
            "not this platform family");
}

TEST(TableStatus, TellsAMachineWithoutBmc) {
  Watched watched("BMC_Info");
  watched.Logs("has no BMC, return 4");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SELINFO", 0).text, "this machine has no BMC");
}

TEST(TableStatus, TellsThatASystemIsNotEnglish) {
  Watched watched("Windows_Related_Info");
  watched.Logs("Get OS language, lcid=1031");
  EXPECT_EQ(watched.statuses.FindStatus("Windows_Related_Info", "ARPINFO", 0).outcome,
            "not this language");
}

TEST(TableStatus, TellsTheSecondToolWhereTheFirstFailed) {
  Watched watched("sampleModule1");
  watched.Runs("/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"", 2)
      .Runs(
          "/c \"\"C:\\H\\utilities\\vroc\\IntelVROCCli.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"",
          0);
  watched.leftSize = 10;
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule1", "CONTROLLER", 0).text,
            "IntelVROCCli.exe printed nothing that belongs here");
}

TEST(TableStatus, TellsAToolThatTheHostEnded) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  watched.history.OnToolEnded(30);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe was ended after 30 s");
}

TEST(TableStatus, TellsARecordedToolThatAHostEnded) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show events", "raidevents.txt"), 1460);
  watched.history.OnToolEnded(0);
  watched.history.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.history.OnToolRefused(0);
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "EVENTLOG1", 0);
  EXPECT_EQ(status.outcome, "ended");
  EXPECT_EQ(status.text, "storcli.exe did not end by itself and was ended");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe had been ended and was not started again");
}

TEST(TableStatus, TellsAToolThatDidNotRunBecauseItsOutputHadNoFile) {
  Watched watched("BMC_Info");
  watched.Runs(R"(/c ""C:\H\pq_tools\ipmiutilnh.exe" sel>"C:\H\logs\selinfo.txt"")", 1)
      .Logs("Failed to open SEL log file");
  const TableStatus status = watched.statuses.FindStatus("BMC_Info", "SELINFO", 0);
  EXPECT_EQ(status.outcome, "output could not be opened");
  EXPECT_EQ(status.text, "ipmiutilnh.exe did not run, because selinfo.txt could not be written");
}

TEST(TableStatus, TellsAToolThatRanWhateverBecameOfItsFile) {
  const std::string command = StorcliCommand("/c0 show termlog", "fwtermlog.txt");
  Watched removed("sampleModule2");
  removed.Runs(command, 46);
  EXPECT_EQ(removed.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe ended with code 46");
  Watched written("sampleModule2");
  written.leftSize = 10;
  written.Runs(command, 1);
  written.leftSize = std::nullopt;
  EXPECT_EQ(written.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe ended with code 1");
}

TEST(TableStatus, TellsThatTheStepThatEndedAModuleDidNotRun) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 1);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "PINFO", 0).text,
            "storcli.exe did not run, because ctrlcount.txt could not be written");
}

TEST(TableStatus, TellsAToolThatIsNotStartedAgain) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show events", "raidevents.txt"), 1);
  watched.history.OnToolEnded(30);
  watched.history.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.history.OnToolRefused(30);
  watched.Logs("CreateProcess failed (1223)");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "EVENTLOG1", 0).text,
            "storcli.exe was ended after 30 s");
  const TableStatus status = watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0);
  EXPECT_EQ(status.outcome, "ended");
  EXPECT_EQ(status.text, "storcli.exe had been ended after 30 s and was not started again");
  const auto hasRows = [](const std::string& /*className*/) { return false; };
  EXPECT_TRUE(host::FindFailedTools(watched.history, hasRows).empty());  // Told already.
}

TEST(TableStatus, KnowsOfNoDeviceThatATestWasNotStartedAgainFor) {
  const std::string test = "/c \"C:\\H\\pq_tools\\check_amt_bmc.exe\" ";
  Watched watched("BMC_Info");
  watched.history.OnProcess("cmd.exe", test + "bmc", false, false);
  watched.history.OnToolRefused(30);
  watched.Logs("CreateProcess failed (1223)").Logs("check_amt_bmc bmc command meets error");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SELINFO", 0).text,
            "check_amt_bmc.exe had been ended after 30 s and was not started again, so it is not "
            "known whether this machine has a BMC");
  watched.history.Module("AMT_Info", "");
  watched.history.OnProcess("cmd.exe", test + "amt", false, false);
  watched.history.OnToolRefused(30);
  watched.Logs("CreateProcess failed (1223)");
  EXPECT_EQ(watched.statuses.FindStatus("AMT_Info", "AMTLOG", 0).text,
            "check_amt_bmc.exe had been ended after 30 s and was not started again");
}

TEST(TableStatus, TellsAToolThatWantedMoreMemory) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  watched.history.OnToolOutOfMemory(64);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe wanted more than its 64 MiB of memory");
}

TEST(TableStatus, TellsAToolThatWasRefusedByAnInterruption) {
  Watched watched("sampleModule2");
  watched.history.OnProcess("cmd.exe", StorcliCommand("/c0 show termlog", "fwtermlog.txt"), false,
                            false);
  watched.history.OnRefused();
  watched.Logs("CreateProcess failed (1223)");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).outcome, "interrupted");
}

TEST(TableStatus, TellsATableThatAnInterruptionLeftNoPipe) {
  Watched watched("Windows_Related_Info");
  watched.Runs("/c route print >\"C:\\H\\logs\\route.txt\"", 0);
  watched.history.OnRefused();
  watched.Logs("Failed to create pipe for arp info");
  EXPECT_EQ(watched.statuses.FindStatus("Windows_Related_Info", "ARPINFO", 0).outcome,
            "interrupted");
}

TEST(TableStatus, KeepsWhatAToolAnsweredBeforeTheInterruption) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 9);
  watched.history.OnRefused();
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text,
            "storcli.exe ended with code 9");
}

TEST(TableStatus, TellsTheStepThatEndedAModule) {
  Watched watched("sampleModule1");
  watched.history.OnProcess("cmd.exe", StorcliCommand("show ctrlcount", "ctrlcount.txt"), false,
                            false);
  watched.Logs("CreateProcess failed (206)");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "storcli.exe: CreateProcess failed (206)");
}

/// What stands in the folder of a host where a blank makes the interpreter's quotes matter.
constexpr char kArcconf[] =
    "/c \"C:\\Halyard Host\\utilities\\arcconf\\arcconf.exe savesupportarchive c:\\\"";

TEST(TableStatus, NamesTheTableOwnToolWhenAnotherIsMissingToo) {
  Watched watched("sampleModule1");
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 1).Runs(kArcconf, 1);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "arcconf.exe is not on this machine");
}

TEST(TableStatus, BlamesNoToolThatServesOtherTables) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 0);
  watched.programsAreThere = false;
  watched.Runs("/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"", 1);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "LSILINK", 0).outcome, "not reached");
}

TEST(TableStatus, TellsRunsApartByTheirFiles) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show events", "c0_raidevents.txt"), 0)
      .Runs(StorcliCommand("/c0 show events", "raidevents.txt"), 1);
  watched.history.OnToolEnded(30);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "EVENTLOG1", 0).text,
            "storcli.exe was ended after 30 s");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "LSILINK", 1).text, "1 row");
}

TEST(TableStatus, TellsThatASystemIsNotEnglishAlthoughTheToolsRan) {
  Watched watched("Windows_Related_Info");
  watched.Logs("Get OS language, lcid=1031")
      .Runs("/c arp.exe -a >\"C:\\H\\logs\\arp.txt\"", 0)
      .Runs("/c netstat.exe >\"C:\\H\\logs\\netstat.txt\"", 0);
  for (const char* table : {"ARPINFO", "NETSTATINFO"}) {
    EXPECT_EQ(watched.statuses.FindStatus("Windows_Related_Info", table, 0).outcome,
              "not this language");
  }
}

TEST(TableStatus, TellsHowFewEventsLeaveAPageEmpty) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show events", "raidevents.txt"), 0);
  watched.leftSize = 400;
  const auto text = [&](const std::string& table) {
    return watched.statuses.FindStatus("sampleModule2", table, 0).text;
  };
  EXPECT_EQ(text("EVENTLOG1"), "storcli.exe printed nothing that belongs here");
  EXPECT_EQ(text("EVENTLOG2"), "fewer than 3,000 events were read");
  EXPECT_EQ(text("EVENTLOG5"), "fewer than 12,000 events were read");
}

TEST(TableStatus, TellsTheLineThatEndsARow) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0/eall/sall show all", "pdlist.txt"), 0);
  watched.leftSize = 400;
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "PDLIST", 0).text,
            "the output has no line with \"Needs EKM Attention =\", which ends a row");
}

TEST(TableStatus, TellsThatStorcliCountsNoController) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 0);
  watched.history.OnAnswer({{}, "C:\\H\\logs\\ctrlcount.txt", "\nController Count = 0\n"});
  watched.Runs(StorcliCommand("/c0 show events", "raidevents.txt"), 1);
  for (const char* table : {"LSILINK", "EVENTLOG1", "EVENTLOG5"}) {
    const TableStatus status = watched.statuses.FindStatus("sampleModule2", table, 0);
    EXPECT_EQ(status.outcome, "no such device");
    EXPECT_EQ(status.text, "storcli counts no controller");
  }
}

TEST(TableStatus, KeepsTheReasonThatTheMicrochipStepLogged) {
  Watched watched("sampleModule1");
  watched.Runs(kArcconf, 0)
      .Runs("/c \"md \"C:\\H\\logs\\Firmware\"\"", 1)
      .Logs("Failed to open PMC Controller file");
  for (const char* table : {"PMCINFO", "PMCVER", "PMCLINK"}) {
    const TableStatus status = watched.statuses.FindStatus("sampleModule1", table, 0);
    EXPECT_EQ(status.outcome, "output could not be opened");
    EXPECT_EQ(status.text, "arcconf.exe: Failed to open PMC Controller file");
  }
}

TEST(TableStatus, TellsTheExitCodeOfAToolThatHadNothingToReport) {
  Watched watched("sampleModule1");
  watched.Runs(kArcconf, 5).Logs("Failed to open PMC Controller file");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "arcconf.exe ended with code 5: Failed to open PMC Controller file");
}

TEST(TableStatus, NamesTheCommandThatEndedTheMicrochipStep) {
  Watched watched("sampleModule1");
  watched.Runs(kArcconf, 0);
  watched.history.OnProcess("cmd.exe", "/c \"md \"C:\\H\\logs\\Firmware\"\"", false, false);
  watched.Logs("CreateProcess failed (5)");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule1", "PMCINFO", 0).text,
            "md: CreateProcess failed (5)");
}

TEST(TableStatus, TellsTheReportThatEndedAModuleWithoutAWord) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 0);
  for (const char* table : {"LSILINK", "EVENTLOG1", "ARRAY"}) {
    const TableStatus status = watched.statuses.FindStatus("sampleModule2", table, 0);
    EXPECT_EQ(status.outcome, "output could not be opened");
    EXPECT_EQ(status.text, "storcli.exe: ctrlcount.txt is not there");
  }
}

TEST(TableStatus, TellsTheReportThatStoppedTheFourLinks) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show", "c0_showall.txt"), 0)
      .Runs(StorcliCommand("/c0 show events", "c0_raidevents.txt"), 0)
      .Logs("Failed to open event log file!");
  watched.leftSize = 10;
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "LSILINK", 0).text,
            "storcli.exe: Failed to open event log file!");
}

TEST(TableStatus, DoesNotKnowADeviceThatNobodyLookedFor) {
  Watched watched("BMC_Info");
  watched.programsAreThere = false;
  watched.Runs("/c \"C:\\H\\pq_tools\\check_amt_bmc.exe\" bmc", 1).Logs("has no BMC, return 4");
  const TableStatus status = watched.statuses.FindStatus("BMC_Info", "SELINFO", 0);
  EXPECT_EQ(status.outcome, "tool missing");
  EXPECT_EQ(status.text,
            "check_amt_bmc.exe is not on this machine, so it is not known whether this machine has "
            "a BMC");
}

TEST(TableStatus, DoesNotKnowADeviceWhenTheTestWasEnded) {
  Watched watched("BMC_Info");
  watched.Runs("/c \"C:\\H\\pq_tools\\check_amt_bmc.exe\" bmc", 1);
  watched.history.OnToolEnded(30);
  watched.Logs("has no BMC, return 4");
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SELINFO", 0).outcome, "ended");
}

TEST(TableStatus, BlamesNoToolForTheExitCodeOfAFilter) {
  Watched watched("BMC_Info");
  watched.Runs("/c \"C:\\H\\pq_tools\\ipmiutilnh.exe\" lan | findstr Param", 0, /*pipe=*/true);
  watched.history.OnProcessEnd(1);
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "LANINFO", 0).text,
            "ipmiutilnh.exe printed nothing that belongs here");
}

TEST(TableStatus, SaysOfRowsThatTheirToolFailed) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 46);
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 3).text,
            "3 rows, but storcli.exe ended with code 46");
}

constexpr char kRecordsQuery[] = R"(/c "C:\H\pq_tools\ipmiutilnh.exe" sensor)";

/// A tool that printed `text`, from which rows came.
Watched& Prints(Watched& watched, const std::string& command, const std::string& text) {
  watched.Runs(command, 0, /*pipe=*/true);
  watched.history.OnAnswer({text, {}, {}});
  return watched;
}

TEST(TableStatus, SaysOfRowsThatTheyAreAnErrorText) {
  for (const char* text :
       {"Error: no session with the controller\n", "x\r\nipmiutil fru, error -1\r\n",
        "ipmiutil sensor, cannot open IPMI driver\n", "Cannot open an IPMI driver: /dev/x\n"}) {
    Watched watched("BMC_Info");
    Prints(watched, kRecordsQuery, text);
    EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SDRINFO", 2).text,
              "2 rows, but ipmiutilnh.exe printed an error text")
        << text;
    EXPECT_EQ(host::FindFailedTools(watched.history, [](const auto&) { return true; }).size(), 1U)
        << text;
  }
}

TEST(TableStatus, TakesNoRecordForAnErrorText) {
  for (const char* text :
       {"PCIe Error: none\n", "ipmiutil fru, completed successfully\n", "Memory  error -1\n", ""}) {
    Watched watched("BMC_Info");
    Prints(watched, kRecordsQuery, text);
    EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SDRINFO", 2).text, "2 rows") << text;
  }
}

TEST(TableStatus, FindsAnErrorTextThatAFilterDropped) {
  Watched watched("BMC_Info");
  watched.Runs(R"(/c "C:\H\pq_tools\ipmiutilnh.exe" lan | findstr Param)", 0, /*pipe=*/true);
  watched.history.OnAnswer({{}, {}, {}, "ipmiutil lan, error -1\n"});
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "LANINFO", 0).text,
            "ipmiutilnh.exe printed an error text");
}

TEST(TableStatus, SaysOfRowsThatTheyAreNoAnswer) {
  Watched watched("BMC_Info");
  watched.programsAreThere = false;
  watched.Runs(kRecordsQuery, 1, /*pipe=*/true);
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SDRINFO", 2).text,
            "2 rows, but ipmiutilnh.exe is not on this machine");
  watched.programsAreThere = true;
  watched.Runs(R"(/c "C:\H\pq_tools\ipmiutilnh.exe" sel)", 0, /*pipe=*/true);
  EXPECT_EQ(watched.statuses.FindStatus("BMC_Info", "SDRINFO", 2).text,
            "2 rows, but the recording has no such answer of ipmiutilnh.exe");
}

TEST(TableStatus, KnowsATestWithOtherAnswers) {
  const std::string test = R"(/c "C:\H\pq_tools\check_amt_bmc.exe" )";
  Watched watched("BMC_Info");
  watched.Runs(test + "bmc", 5);
  watched.programsAreThere = false;
  watched.history.Module("AMT_Info", "");
  watched.Runs(test + "amt", 1).Logs("AMT module, no parameter inputed!");
  EXPECT_EQ(
      watched.statuses.FindStatus("AMT_Info", "AMTLOG", 0).text,
      "the recording has no such answer of check_amt_bmc.exe, so it is not known whether this "
      "machine has AMT");
}

TEST(TableStatus, GivesTheReasonOfATool) {
  const auto tell = [](const std::string& text) {
    Watched watched("sampleModule2");
    watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 46);
    watched.history.OnAnswer({{}, "fwtermlog.txt", text});
    return watched.statuses.FindStatus("sampleModule2", "FWTERMLOG", 0).text;
  };
  EXPECT_EQ(tell("Status = Failure\r\nDescription = No such page\r\n"),
            "storcli.exe ended with code 46 (No such page)");
  for (const char* text :
       {"Description = None\n", "Description = \n", "Description = \x80\n", ""}) {
    EXPECT_EQ(tell(text), "storcli.exe ended with code 46") << text;
  }
}

TEST(TableStatus, TellsWhyAttachedFilesAreEmpty) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show", "c0_showall.txt"), 0)
      .Runs(StorcliCommand("/c0 show termlog", "c0_fwtermlog.txt"), 46);
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("/c0 show events", "c0_raidevents.txt"), 1)
      .Runs(StorcliCommand("/c0/eall/sall show all", "c0_pdlist.txt"), 1);
  EXPECT_EQ(watched.statuses.DescribeEmptyFiles(
                "sampleModule2", {"c0_showall", "c0_raidevents", "c0_fwtermlog", "c0_pdlist"}),
            (std::vector<std::string>{
                "c0_showall.txt is empty: storcli.exe printed nothing",
                "c0_raidevents.txt, c0_pdlist.txt are empty: the recording has no such answer of "
                "storcli.exe",
                "c0_fwtermlog.txt is empty: storcli.exe ended with code 46"}));
  EXPECT_TRUE(watched.statuses.DescribeEmptyFiles("sampleModule2", {}).empty());
}

/// "tool: text (tables)" of the failed tools; the tables in `filled` have rows.
std::vector<std::string> FailedTools(const ToolHistory& history,
                                     const std::set<std::string>& filled = {}) {
  std::vector<std::string> lines;
  for (const host::Failure& failure : host::FindFailedTools(
           history, [&](const std::string& name) { return filled.contains(name); })) {
    std::string line = failure.tool + ": " + failure.text;
    for (const std::string& table : failure.tables) line += ' ' + table;
    lines.push_back(line);
  }
  return lines;
}

using Lines = std::vector<std::string>;

constexpr char kDrives[] = R"(C:\\Halyard\\logs\\c0_showall.txt)";
constexpr char kArchive[] =
    R"(/c "C:\Halyard\utilities\arcconf\arcconf.exe savesupportarchive c:\")";
constexpr char kConfig[] = R"(c:\\Support\\Firmware\\Controller_1_Config.txt)";
constexpr char kMicrochipLog[] = R"(c:\\Support\\Firmware\\Controller_1_Log.txt)";

host::OldFile WrittenAt(const char* time) { return {host::ParseIsoTime(time)}; }

/// The only note of a table.
std::string NoteOf(const Watched& watched, const std::string& module, const std::string& table) {
  const std::vector<std::string> notes = watched.statuses.FindNotes(module, table);
  EXPECT_LE(notes.size(), 1u);
  return notes.empty() ? "" : notes.front();
}

/// The only failed tool, as "tool text tables".
std::string FailureOf(const Watched& watched) {
  const auto failures =
      host::FindFailedTools(watched.history, [](const std::string&) { return true; });
  EXPECT_LE(failures.size(), 1u);
  if (failures.empty()) return {};
  std::string text = failures.front().tool + " " + failures.front().text;
  for (const std::string& table : failures.front().tables) text += " " + table;
  return text;
}

TEST(OldFiles, AreToldOfAReportThatCouldNotBeWritten) {
  Watched watched("sampleModule2");
  watched.oldFiles[kDrives] = WrittenAt("2026-11-21T17:03:12+01:00");
  watched.Runs(StorcliCommand("/c0 show", "c0_showall.txt"), 1).Reads(kDrives);
  EXPECT_EQ(NoteOf(watched, "sampleModule2", "PINFO"),
            "from files of 2026-11-21 17:03:12 UTC+01:00; storcli.exe did not run, because "
            "c0_showall.txt could not be written");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "PINFO", 8).text, "8 rows");
  EXPECT_EQ(FailureOf(watched),
            "storcli.exe did not run, because c0_showall.txt could not be written; files of "
            "2026-11-21 17:03:12 UTC+01:00 are used instead TINFO VINFO PINFO LSILINK");
}

TEST(OldFiles, AreToldOfAToolThatIsNotStartedAgain) {
  Watched watched("sampleModule2");
  watched.oldFiles[kDrives] = WrittenAt("2026-11-21T17:03:12+01:00");
  watched.history.OnProcess("cmd.exe", StorcliCommand("/c0 show", "c0_showall.txt"), false, false);
  watched.history.OnToolRefused(30);
  watched.Reads(kDrives);
  EXPECT_EQ(
      NoteOf(watched, "sampleModule2", "PINFO"),
      "from files of 2026-11-21 17:03:12 UTC+01:00; storcli.exe had been ended after 30 s and "
      "was not started again");
}

TEST(OldFiles, AreToldOfAnArchiveWhoseToolIsMissing) {
  Watched watched("sampleModule1");
  watched.programsAreThere = false;
  watched.oldFiles[kConfig] = WrittenAt("2026-11-21T17:03:12+01:00");
  watched.oldFiles[kMicrochipLog] = WrittenAt("2026-11-20T08:00:00+01:00");
  watched.Runs(kArchive, 1).Reads(kConfig).Reads(kMicrochipLog);
  for (const char* table : {"PMCINFO", "PMCVER", "PMCLINK"}) {
    EXPECT_EQ(NoteOf(watched, "sampleModule1", table),
              "from files of 2026-11-20 08:00:00 UTC+01:00; arcconf.exe is not on this machine");
  }
  EXPECT_EQ(FailureOf(watched),
            "arcconf.exe is not on this machine; files of 2026-11-20 08:00:00 UTC+01:00 are used "
            "instead PMCINFO PMCVER PMCLINK");
}

TEST(OldFiles, AreToldOfAnArchiveWhoseToolFailedOrLeftNothing) {
  Watched failed("sampleModule1");
  failed.oldFiles[kConfig] = {};
  failed.Runs(kArchive, 5).Reads(kConfig);
  EXPECT_EQ(NoteOf(failed, "sampleModule1", "PMCINFO"),
            "from files of an unknown time; arcconf.exe ended with code 5");
  Watched idle("sampleModule1");
  idle.oldFiles[kConfig] = WrittenAt("2026-11-21T17:03:12+01:00");
  idle.Runs(kArchive, 0).Reads(kConfig);
  EXPECT_EQ(NoteOf(idle, "sampleModule1", "PMCINFO"),
            "from files of 2026-11-21 17:03:12 UTC+01:00; arcconf.exe left no newer ones");
}

TEST(OldFiles, AreNotWhatARecordingHasOfAToolThatEndedWell) {
  Watched watched("sampleModule1");
  watched.oldFiles[kConfig] = {};
  watched.Runs(kArchive, 0).Reads(kConfig);
  EXPECT_EQ(NoteOf(watched, "sampleModule1", "PMCINFO"), "");
  EXPECT_EQ(FailureOf(watched), "");
}

TEST(OldFiles, AreNotWhatAToolWrote) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show", "c0_showall.txt"), 0).Reads(kDrives);
  EXPECT_EQ(NoteOf(watched, "sampleModule2", "PINFO"), "");
  EXPECT_EQ(FailureOf(watched), "");
}

TEST(OldFiles, AreToldOfALogThatAnotherToolDecodes) {
  Watched watched("sampleModule2");
  watched.oldFiles["logir.log"] = WrittenAt("2026-11-21T17:03:12+01:00");
  watched.history.OnSystem(R"("C:\Halyard\utilities\lsi\sas2ircu.exe" 0 logir upload > logir.log)");
  watched.Runs(
      R"(/c ""C:\Halyard\pq_tools\SAS2IR_windows_x64.exe" logir.log > "C:\Halyard\logs\ir.txt"")",
      0);
  EXPECT_EQ(NoteOf(watched, "sampleModule2", "SAS2IRLOG"),
            "from files of 2026-11-21 17:03:12 UTC+01:00; sas2ircu.exe did not run, because "
            "logir.log could not be written");
}

TEST(FailedTools, AreToldOnceForAllTheirTables) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 46)
      .Runs(StorcliCommand("/c0/eall/sall show all", "pdlist.txt"), 46)
      .Runs(StorcliCommand("/c0 show", "c0_showall.txt"), 3);
  EXPECT_EQ(FailedTools(watched.history),
            (Lines{"storcli.exe: ended with code 46 FWTERMLOG PDLIST",
                   "storcli.exe: ended with code 3 TINFO VINFO PINFO LSILINK"}));
}

TEST(FailedTools, AreThoseThatDidNotRun) {
  Watched watched("Windows_Related_Info");
  watched.Runs("/c route print >\"C:\\H\\logs\\route.txt\"", 1);
  EXPECT_EQ(FailedTools(watched.history),
            Lines{"route: did not run, because route.txt could not be written"});
  Watched another("Windows_Related_Info");
  another.leftSize = 10;
  another.oldFiles["C:\\H\\logs\\route.txt"] = {};
  another.Runs("/c route print >\"C:\\H\\logs\\route.txt\"", 1);
  EXPECT_EQ(FailedTools(another.history),
            Lines{"route: did not run, because route.txt could not be written"});
}

TEST(FailedTools, AreThoseOfNoTableToo) {
  Watched watched("Windows_Related_Info");
  watched.Runs("/c route print >\"C:\\H\\logs\\route.txt\"", 2);
  EXPECT_EQ(FailedTools(watched.history), Lines{"route: ended with code 2"});
}

TEST(FailedTools, ArePrintersOfErrorTextsUnlessRowsCameOfThem) {
  Watched watched("BMC_Info");
  watched.Runs("/c \"C:\\H\\pq_tools\\ipmiutilnh.exe\" sensor", 0, /*pipe=*/true)
      .Logs("dw:20")
      .Logs("se:PCIe Error = 0");
  EXPECT_EQ(FailedTools(watched.history), Lines{"ipmiutilnh.exe: printed an error text SDRINFO"});
  EXPECT_EQ(FailedTools(watched.history, {"SDRINFO"}), Lines{});
}

TEST(FailedTools, AreNotThoseThatTheLogTellsOf) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1)
      .Logs("Failed to open raid log file")
      .Runs(StorcliCommand("/c0/eall/sall show all", "pdlist.txt"), 1);
  watched.history.OnToolEnded(30);
  EXPECT_EQ(FailedTools(watched.history), Lines{});
}

TEST(FailedTools, AreNotThoseThatAreMissing) {
  Watched watched("sampleModule2");
  watched.programsAreThere = false;
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  EXPECT_EQ(FailedTools(watched.history), Lines{});
}

TEST(FailedTools, AreNotThoseThatAnswerByTheirExitCode) {
  Watched bmc("BMC_Info");
  bmc.Runs("/c \"C:\\H\\pq_tools\\check_amt_bmc.exe\" bmc", 7);
  EXPECT_EQ(FailedTools(bmc.history), Lines{});
  Watched raid("sampleModule1");
  raid.Runs("/c \"md \"C:\\H\\logs\\Firmware\"\"", 1);
  EXPECT_EQ(FailedTools(raid.history), Lines{});
}

TEST(FailedTools, AreNotThoseThatHadNothingToReport) {
  for (const std::uint32_t exitCode : {0, 1}) {
    Watched watched("sampleModule1");
    watched.Runs(kArcconf, exitCode);
    watched.history.OnAnswer({"Controllers found: 0\r\n", {}, {}});
    watched.Logs("Failed to open PMC Controller file");
    EXPECT_EQ(FailedTools(watched.history), Lines{});
  }
}

// On a live machine what it prints to the console is not heard: there may be no controller.
TEST(FailedTools, AreNotThoseThatEndedWellWithoutAReport) {
  Watched watched("sampleModule1");
  watched.Runs(kArcconf, 0).Logs("Failed to open PMC Controller file");
  EXPECT_EQ(FailedTools(watched.history), Lines{});
}

TEST(FailedTools, AreThoseThatEndedWithACodeAndLeftNoReport) {
  Watched watched("sampleModule1");
  watched.Runs(kArcconf, 1).Logs("Failed to open PMC Controller file");
  EXPECT_EQ(FailedTools(watched.history),
            Lines{"arcconf.exe: ended with code 1 PMCINFO PMCVER PMCLINK"});
}

TEST(FailedTools, AreNotThoseAskedForAControllerThatIsNotThere) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 9);
  watched.history.OnAnswer({{}, "C:\\H\\logs\\ctrlcount.txt", "Controller Count = 0\n"});
  watched.Runs(StorcliCommand("/c0 show termlog", "fwtermlog.txt"), 1);
  EXPECT_EQ(FailedTools(watched.history), Lines{});
}

TEST(FailedTools, AreNotThoseThatAnotherMadeUpFor) {
  const std::string rst =
      "/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"";
  const std::string vroc =
      "/c \"\"C:\\H\\utilities\\vroc\\IntelVROCCli.exe\" -I > \"C:\\H\\logs\\rstcli64.txt\"\"";
  Watched watched("sampleModule1");
  watched.Runs(rst, 2).Runs(vroc, 0);
  EXPECT_EQ(FailedTools(watched.history), Lines{});
  Watched failing("sampleModule1");
  failing.Runs(rst, 2).Runs(vroc, 3);
  EXPECT_EQ(FailedTools(failing.history),
            (Lines{"rstcli64_5.exe: ended with code 2 CONTROLLER",
                   "IntelVROCCli.exe: ended with code 3 CONTROLLER"}));
}

TEST(TableStatus, NamesTheToolWhoseCommandLineWasTooLong) {
  Watched watched("sampleModule2");
  watched.Runs(StorcliCommand("show ctrlcount", "ctrlcount.txt"), 0)
      .Logs("rstcli raw path:/c \"\"C:\\H\\pq_tools\\rstcli64_5.exe\" -I > \"C:\\rstcli64.txt\"\"")
      .Logs("CreateProcess failed (206)");
  EXPECT_EQ(watched.statuses.FindStatus("sampleModule2", "ARRAY", 0).text,
            "rstcli64_5.exe: CreateProcess failed (206)");
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
