#include "host/check/machine_check.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "host/check/dry_machine.h"
#include "host/collect/command_text.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/text/usage_error.h"
#include "tests/support/program/host_run.h"

namespace {

using host::CheckedArea;
using host::CheckedMachine;
using host::CheckedTool;
using host::CheckMachine;
using host::Finding;
using host::MachineCheck;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Kind = host::Finding::Kind;
using Rating = host::CheckedArea::Rating;
using State = host::CheckedTool::State;

/// A machine that has everything.
CheckedMachine WholeMachine() {
  CheckedMachine machine;
  machine.facts.hostExecutable = "C:\\Halyard\\halyard.exe";
  machine.facts.logFolder = "C:\\Halyard\\logs\\";
  machine.locate = [](const std::string& program) {
    return program.find('\\') == std::string::npos ? "C:\\Windows\\System32\\" + program : program;
  };
  machine.surroundings = host::Surroundings{true, true, true, std::uint64_t{5} << 30, ""};
  return machine;
}

/// The same without some programs.
CheckedMachine MachineWithout(std::vector<std::string> programs) {
  CheckedMachine machine = WholeMachine();
  machine.locate = [programs = std::move(programs), locate = machine.locate](
                       const std::string& path) -> std::optional<std::string> {
    const bool isMissing = std::any_of(programs.begin(), programs.end(), [&](const auto& program) {
      return path.ends_with(program);
    });
    return isMissing ? std::nullopt : locate(path);
  };
  return machine;
}

CheckedArea FindArea(const MachineCheck& check, const std::string& name) {
  for (const CheckedArea& area : check.areas) {
    if (area.area == name) return area;
  }
  ADD_FAILURE() << "no area " << name;
  return {};
}

CheckedTool FindTool(const CheckedArea& area, const std::string& program) {
  for (const CheckedTool& tool : area.tools) {
    if (tool.program == program) return tool;
  }
  ADD_FAILURE() << "no tool " << program;
  return {};
}

std::vector<Finding> FindAbout(const CheckedMachine& machine, const std::string& subject,
                               const std::vector<std::string>& modules = {}) {
  std::vector<Finding> found = CheckMachine(machine, modules).findings;
  std::erase_if(found, [&](const Finding& finding) { return finding.subject != subject; });
  return found;
}

Finding FindOne(const CheckedMachine& machine, const std::string& subject) {
  const std::vector<Finding> found = FindAbout(machine, subject, {"AMT_Info"});
  return found.size() == 1 ? found.front() : Finding{Kind::kGood, "", "not one finding"};
}

TEST(MachineCheck, FindsAllOfAWholeMachineGood) {
  const MachineCheck check = CheckMachine(WholeMachine(), {});
  EXPECT_TRUE(check.isComplete);
  for (const Finding& finding : check.findings) {
    EXPECT_EQ(finding.kind, Kind::kGood) << finding.subject << ": " << finding.text;
  }
  std::vector<std::string> areas;
  for (const CheckedArea& area : check.areas) {
    areas.push_back(area.area);
    EXPECT_EQ(area.rating, Rating::kFull) << area.area;
    EXPECT_EQ(area.text, "");
    for (const CheckedTool& tool : area.tools) EXPECT_EQ(tool.state, State::kFound) << tool.text;
  }
  EXPECT_THAT(areas, ElementsAre("LSI RAID", "Intel RAID", "Microchip RAID", "LSI SAS2", "BMC",
                                 "Intel AMT", "Network", "SMBIOS"));
}

TEST(MachineCheck, CallsNoTableEmptyThatHasRowsWithoutItsTool) {
  const CheckedArea area = FindArea(CheckMachine(MachineWithout({"storcli.exe"}), {}), "LSI RAID");
  EXPECT_EQ(area.rating, Rating::kNothing);
  EXPECT_THAT(area.tables, Contains("LSILINK"));
  EXPECT_THAT(area.emptyTables, Not(Contains("LSILINK")));
  EXPECT_THAT(FindTool(area, "storcli.exe").text,
              AllOf(HasSubstr("these stay empty: RAIDINFO, "), Not(HasSubstr("LSILINK"))));
}

TEST(MachineCheck, TellsTablesThatAPlatformFamilyIsNeverAskedFor) {
  CheckedMachine machine = WholeMachine();
  machine.neverAsked = {"LEDINFO", "VERINFO"};
  machine.devices["BMC"] = true;
  const CheckedArea area = FindArea(CheckMachine(machine, {}), "BMC");
  EXPECT_EQ(area.rating, Rating::kPartly);
  EXPECT_EQ(area.text, "VERINFO, LEDINFO stay empty: this platform family is not asked for them");
}

TEST(MachineCheck, NamesSeveralMissingToolsInOneList) {
  const MachineCheck check = CheckMachine(MachineWithout({"arp.exe", "netstat.exe", "route"}), {});
  EXPECT_THAT(FindArea(check, "Network").text,
              HasSubstr("arp.exe, netstat.exe and route are not there"));
}

TEST(MachineCheck, NamesEachToolOfAnAreaOnceWithItsFullPath) {
  std::vector<std::string> paths;
  for (const CheckedTool& tool : FindArea(CheckMachine(WholeMachine(), {}), "Network").tools) {
    paths.push_back(tool.path);
  }
  EXPECT_THAT(paths,
              ElementsAre("C:\\Windows\\System32\\route", "C:\\Windows\\System32\\arp.exe",
                          "C:\\Windows\\System32\\netstat.exe", "C:\\Windows\\System32\\net"));
}

TEST(MachineCheck, SaysWhereAToolComesFrom) {
  const CheckedArea lsi = FindArea(CheckMachine(WholeMachine(), {}), "LSI RAID");
  EXPECT_THAT(lsi.modules, ElementsAre("sampleModule1", "sampleModule2"));
  const CheckedTool storcli = FindTool(lsi, "storcli.exe");
  EXPECT_EQ(storcli.vendor, "Broadcom, formerly LSI");
  EXPECT_EQ(storcli.product, "StorCLI");
  EXPECT_EQ(FindTool(lsi, "eventslog_convert.exe").vendor, "");
}

TEST(MachineCheck, KnowsEveryProgramThatModulesRun) {
  std::set<std::string> known;
  for (const CheckedArea& area : CheckMachine(WholeMachine(), {}).areas) {
    for (const CheckedTool& tool : area.tools) known.insert(host::ToolName(tool.program));
  }
  const host::DryFacts facts{"C:\\H\\h.exe", "C:\\l\\", pq::kUsEnglish};
  for (const host::DryCommand& command : host::ListCommands(facts, {}, {})) {
    const std::string program = host::FindProgram(command.commandLine);
    if (host::IsOwnCommand(program)) continue;
    EXPECT_EQ(known.count(host::ToolName(program)), 1U) << program;
  }
}

TEST(MachineCheck, LooksAtNamedModulesAlone) {
  const MachineCheck check = CheckMachine(WholeMachine(), {"amt_info"});
  ASSERT_EQ(check.areas.size(), 1U);
  EXPECT_EQ(check.areas[0].area, "Intel AMT");
}

TEST(MachineCheck, RefusesAModuleThatIsNotThere) {
  EXPECT_THROW(CheckMachine(WholeMachine(), {"BMC"}), host::UsageError);
}

TEST(MachineCheck, TellsWhichTablesAMissingToolLeavesEmpty) {
  CheckedMachine machine = MachineWithout({"amt_log.exe"});
  machine.devices["Intel AMT"] = true;
  const MachineCheck check = CheckMachine(machine, {});
  const CheckedArea area = FindArea(check, "Intel AMT");
  EXPECT_FALSE(check.isComplete);
  EXPECT_EQ(area.rating, Rating::kNothing);
  EXPECT_EQ(area.text, "amt_log.exe is not there");
  EXPECT_THAT(area.emptyTables, ElementsAre("AMTLOG"));
  EXPECT_EQ(FindTool(area, "check_amt_bmc.exe").state, State::kFound);
  const CheckedTool tool = FindTool(area, "amt_log.exe");
  EXPECT_EQ(tool.state, State::kMissing);
  EXPECT_EQ(tool.text,
            "C:\\Halyard\\pq_tools\\amt_log.exe is not there; put it in its place (from the "
            "production host), or AMTLOG stays empty");
}

TEST(MachineCheck, NeedsNoToolForADeviceThatIsNotThere) {
  CheckedMachine machine = MachineWithout({"amt_log.exe"});
  machine.devices["Intel AMT"] = false;
  const MachineCheck check = CheckMachine(machine, {});
  const CheckedArea area = FindArea(check, "Intel AMT");
  EXPECT_TRUE(check.isComplete);
  EXPECT_EQ(area.rating, Rating::kNotNeeded);
  EXPECT_EQ(area.text, "this machine does not have AMT");
  EXPECT_EQ(FindTool(area, "amt_log.exe").state, State::kNotNeeded);
}

TEST(MachineCheck, MissesAToolForADeviceThatNobodyKnowsOf) {
  const MachineCheck check = CheckMachine(MachineWithout({"arcconf.exe"}), {});
  const CheckedArea area = FindArea(check, "Microchip RAID");
  EXPECT_FALSE(check.isComplete);
  EXPECT_EQ(area.text,
            "arcconf.exe is not there; it is not known whether this machine has a Microchip "
            "controller");
  EXPECT_THAT(FindTool(area, "arcconf.exe").text,
              HasSubstr("; if this machine has a Microchip controller, put it in its place "
                        "(ARCCONF, from Microchip, formerly Adaptec), or these stay empty: "));
}

TEST(MachineCheck, NeedsOneOfTwoToolsThatDoTheSame) {
  for (const auto& [missing, other] : {std::pair("rstcli64_5.exe", "IntelVROCCli.exe"),
                                       std::pair("IntelVROCCli.exe", "rstcli64_5.exe")}) {
    const MachineCheck check = CheckMachine(MachineWithout({missing}), {});
    const CheckedArea area = FindArea(check, "Intel RAID");
    EXPECT_TRUE(check.isComplete);
    EXPECT_EQ(area.rating, Rating::kFull);
    const CheckedTool tool = FindTool(area, missing);
    EXPECT_EQ(tool.state, State::kNotNeeded);
    EXPECT_THAT(tool.text, HasSubstr(std::string("not needed: ") + other));
  }
  const MachineCheck check =
      CheckMachine(MachineWithout({"IntelVROCCli.exe", "rstcli64_5.exe"}), {});
  EXPECT_FALSE(check.isComplete);
  EXPECT_EQ(FindArea(check, "Intel RAID").rating, Rating::kNothing);
}

TEST(MachineCheck, RatesAnAreaOfWhichSomeCanBeFoundOut) {
  const MachineCheck check = CheckMachine(MachineWithout({"\\arp.exe", "arp.exe"}), {});
  const CheckedArea area = FindArea(check, "Network");
  EXPECT_EQ(area.rating, Rating::kPartly);
  EXPECT_EQ(area.text, "ARPINFO stays empty: arp.exe is not there");
}

TEST(MachineCheck, MissesAToolThatOnlyLeavesAFile) {
  CheckedMachine machine = MachineWithout({"eventslog_convert.exe", "getsmbios.exe"});
  machine.devices["LSI RAID"] = true;
  const MachineCheck check = CheckMachine(machine, {});
  EXPECT_EQ(FindArea(check, "LSI RAID").rating, Rating::kPartly);
  EXPECT_EQ(FindArea(check, "LSI RAID").text,
            "all tables, but not all files of the log folder: eventslog_convert.exe is not there");
  EXPECT_EQ(FindArea(check, "SMBIOS").rating, Rating::kNothing);
  EXPECT_FALSE(check.isComplete);
}

TEST(MachineCheck, FindsNothingOutWhereNobodyCanLookForTheDevice) {
  const MachineCheck check = CheckMachine(MachineWithout({"check_amt_bmc.exe"}), {});
  EXPECT_EQ(FindArea(check, "BMC").rating, Rating::kNothing);
  EXPECT_THAT(FindArea(check, "BMC").text, StartsWith("check_amt_bmc.exe is not there"));
}

TEST(MachineCheck, SaysWhatAnotherLanguageLeavesEmpty) {
  CheckedMachine machine = WholeMachine();
  machine.facts.languageId = 1031;
  const CheckedArea area = FindArea(CheckMachine(machine, {}), "Network");
  EXPECT_EQ(area.rating, Rating::kPartly);
  EXPECT_EQ(area.text,
            "ARPINFO, NETSTATINFO stay empty: the tables are made on US English systems only");
}

TEST(MachineCheck, MissesASystemsProgramThatAnotherIsTakenFor) {
  CheckedMachine machine = WholeMachine();
  machine.locate = [](const std::string& program) {
    return program == "route" ? "D:\\Support\\route.BAT" : "c:\\windows\\SYSTEM32\\" + program;
  };
  const MachineCheck check = CheckMachine(machine, {});
  const CheckedTool tool = FindTool(FindArea(check, "Network"), "route");
  EXPECT_FALSE(check.isComplete);
  EXPECT_EQ(tool.state, State::kPlanted);
  EXPECT_EQ(tool.text,
            "D:\\Support\\route.BAT would be run for the system's route; remove it, or take its "
            "folder out of PATH");
}

TEST(MachineCheck, MissesTheInterpreter) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings->hasInterpreter = false;
  EXPECT_EQ(FindOne(machine, "interpreter").kind, Kind::kMissing);
}

TEST(MachineCheck, MissesALogFolderThatCannotBeWritten) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings->canWriteLogFolder = false;
  const Finding finding = FindOne(machine, "log folder");
  EXPECT_EQ(finding.kind, Kind::kMissing);
  EXPECT_EQ(finding.text,
            "C:\\Halyard\\logs\\ cannot be written; choose another with --log-folder");
}

TEST(MachineCheck, MissesALibraryThatCannotBeUsed) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings->libraryProblem = "cannot load it";
  const Finding finding = FindOne(machine, "library");
  EXPECT_EQ(finding.kind, Kind::kMissing);
  EXPECT_EQ(finding.text, "cannot load it");
}

TEST(MachineCheck, NotesMissingRights) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings->isElevated = false;
  EXPECT_EQ(FindOne(machine, "rights").kind, Kind::kNote);
}

TEST(MachineCheck, NotesAFullDisk) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings->freeBytes = (std::uint64_t{1} << 30) - 1;
  const Finding finding = FindOne(machine, "disk");
  EXPECT_EQ(finding.kind, Kind::kNote);
  EXPECT_TRUE(finding.text.starts_with("1.0 GiB free")) << finding.text;
}

TEST(MachineCheck, NotesALanguageWhoseTablesStayEmpty) {
  CheckedMachine machine = WholeMachine();
  machine.facts.languageId = 1031;
  const Finding finding = FindOne(machine, "language");
  EXPECT_EQ(finding.kind, Kind::kNote);
  EXPECT_TRUE(finding.text.starts_with("1031, ")) << finding.text;
}

TEST(MachineCheck, SaysNothingOfSurroundingsThatNobodyKnows) {
  CheckedMachine machine = WholeMachine();
  machine.surroundings.reset();
  for (const char* subject : {"library", "interpreter", "log folder", "disk", "rights"}) {
    EXPECT_TRUE(FindAbout(machine, subject).empty()) << subject;
  }
}

TEST(MachineCheck, MissesAHostFolderThatTheInterpreterSplits) {
  CheckedMachine machine = WholeMachine();
  machine.facts.hostExecutable = "C:\\Program Files (x86)\\Halyard\\halyard.exe";
  const Finding finding = FindOne(machine, "host folder");
  EXPECT_EQ(finding.kind, Kind::kMissing);
  EXPECT_TRUE(
      finding.text.starts_with("C:\\Program Files (x86)\\Halyard is cut at its first blank"))
      << finding.text;
}

TEST(MachineCheck, MissesAnyFolderThatTheInterpreterWouldReadAsAnother) {
  CheckedMachine machine = WholeMachine();
  machine.facts.logFolder = "C:\\100%\\logs\\";
  const std::vector<Finding> found = FindAbout(machine, "log folder", {"AMT_Info"});
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].kind, Kind::kGood);
  EXPECT_EQ(found[1].kind, Kind::kMissing);
  EXPECT_TRUE(found[1].text.starts_with("C:\\100%\\logs\\ has a %")) << found[1].text;
}

TEST(MachineCheck, NotesFoldersThatACollectionIsToRunInAllTheSame) {
  CheckedMachine machine = WholeMachine();
  machine.facts.hostExecutable = "C:\\R&D\\halyard.exe";
  machine.allowsUnsafeFolders = true;
  EXPECT_EQ(FindOne(machine, "host folder").kind, Kind::kNote);
}

TEST(MachineCheck, MissesAToolWhoseLineIsCutAtAnyBlankOfTheHostFolder) {
  CheckedMachine machine = WholeMachine();
  machine.facts.hostExecutable = "C:\\Program Files\\Halyard\\halyard.exe";
  const std::vector<Finding> found = FindAbout(machine, "host folder");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].kind, Kind::kMissing);
  EXPECT_EQ(found[0].text,
            "C:\\Program Files\\Halyard is cut at its first blank on the line of arcconf.exe: "
            "another program may be started, and these stay empty: PMCINFO, PMCVER, PMCLINK; move "
            "the program to a folder without blanks");
  EXPECT_EQ(FindOne(machine, "host folder").kind, Kind::kGood);
}

TEST(CheckCommand, EndsWithZeroWhereAllIsThereThatTheMachineNeeds) {
  const test::HostRun run = test::RunHost({"check", "--replay", test::Sample("two-socket-server")});
  EXPECT_EQ(run.exitCode, 0) << run.out;
  EXPECT_THAT(run.out, StartsWith("LSI RAID: full\n"
                                  "  ok       C:\\Halyard\\utilities\\lsi\\storcli.exe (StorCLI, "
                                  "from Broadcom, formerly LSI)\n"));
  EXPECT_THAT(run.out, HasSubstr("\nIntel AMT: not needed: this machine does not have AMT\n"));
  EXPECT_THAT(run.out, HasSubstr("IntelVROCCli.exe is not there, and not needed: rstcli64_5.exe is "
                                 "there in its place\n"));
  EXPECT_THAT(run.out, testing::EndsWith("\nmachine\n"
                                         "  ok       language     1033, English (United States)\n"
                                         "  ok       host folder  C:\\Halyard\n"));
}

TEST(CheckCommand, EndsWithOneWhereAToolIsMissing) {
  const test::HostRun run = test::RunHost({"check", "--replay", test::Sample("bare-machine")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("\n  missing  "));
  EXPECT_THAT(run.out, HasSubstr("\n  note     language"));
}

TEST(CheckCommand, KnowsTheDevicesOfARecordedMachine) {
  const auto ask = [](const char* sample) {
    return test::RunHost({"check", "--replay", test::Sample(sample)}).out;
  };
  EXPECT_THAT(ask("no-controller"), HasSubstr("LSI RAID: not needed: "));
  EXPECT_THAT(ask("no-bmc"), HasSubstr("BMC: not needed: this machine does not have a BMC\n"));
  EXPECT_THAT(ask("amt-desktop"), HasSubstr("Intel AMT: full\n"));
  // There is a row for a controller that nobody could ask.
  EXPECT_THAT(ask("bmc-unreachable"), HasSubstr("LSI RAID: nothing: "));
}

TEST(CheckCommand, TellsProgramsTheSame) {
  const test::HostRun run = test::RunHost({"check", "--replay", test::Sample("two-socket-server"),
                                           "--module", "BMC_Info", "--format", "json"});
  EXPECT_EQ(run.exitCode, 0);
  const auto all = nlohmann::json::parse(run.out);
  EXPECT_EQ(all["complete"], true);
  ASSERT_EQ(all["areas"].size(), 1U);
  const auto& bmc = all["areas"][0];
  EXPECT_EQ(bmc["area"], "BMC");
  EXPECT_EQ(bmc["modules"], nlohmann::json{"BMC_Info"});
  EXPECT_EQ(bmc["device"], "a BMC");
  EXPECT_EQ(bmc["hasDevice"], "yes");
  EXPECT_EQ(bmc["rating"], "full");
  EXPECT_EQ(bmc["tables"].size(), 10U);
  EXPECT_EQ(bmc["tools"][1].dump(),
            R"({"path":"C:\\Halyard\\pq_tools\\ipmiutilnh.exe","product":"ipmiutil",)"
            R"("program":"ipmiutilnh.exe","state":"found","text":"",)"
            R"("vendor":"the ipmiutil project"})");
  EXPECT_EQ(all["machine"][0].dump(),
            R"x({"state":"ok","subject":"language","text":"1033, English (United States)"})x");
}

TEST(CheckCommand, SaysWhatIsWrongWithARecording) {
  const test::HostRun run = test::RunHost({"check", "--replay", "nowhere"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
}

TEST(DryRunCommand, ShowsTheCommandLinesOfTheModulesInOrder) {
  const test::HostRun run = test::RunHost({"collect", "--replay", test::Sample("two-socket-server"),
                                           "--dry-run", "--module", "AMT_Info"});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_EQ(run.out,
            "AMT_Info\n"
            "  /c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" amt\n"
            "  /c \"\"C:\\Halyard\\pq_tools\\amt_log.exe\" ADDRESS USER "
            "PASSWORD>\"C:\\Halyard\\logs\\amtlog.txt\"\"\n");
}

TEST(DryRunCommand, ShowsWhatANamedTableTakes) {
  const test::HostRun run = test::RunHost({"collect", "--replay", test::Sample("two-socket-server"),
                                           "--dry-run", "--table", "ARPINFO"});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_TRUE(run.out.starts_with("Windows_Related_Info\n  /c route")) << run.out;
  EXPECT_EQ(run.out.find("BMC_Info"), std::string::npos);
}

TEST(DryRunCommand, RefusesWhatItWouldNotDo) {
  for (const char* option : {"--record", "--format", "--output", "--trace", "--tool-limit",
                             "--tool-memory", "--plugin"}) {
    std::string value = std::string(option) == "--format" ? "json" : "7";
    const test::HostRun run = test::RunHost({"collect", "--dry-run", option, value});
    EXPECT_EQ(run.exitCode, 2) << option;
    EXPECT_EQ(run.error, std::string("pqhost: ") + option +
                             " has no use with --dry-run, which collects nothing: leave one of "
                             "them away\n");
  }
  EXPECT_EQ(test::RunHost({"collect", "--dry-run", "--unsafe-folder"}).exitCode, 2);
}

}  // namespace
