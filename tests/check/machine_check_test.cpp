#include "host/check/machine_check.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/text/usage_error.h"
#include "tests/support/program/host_run.h"

namespace {

using host::CheckedMachine;
using host::CheckMachine;
using host::Finding;
using Kind = host::Finding::Kind;

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

std::vector<Finding> FindAbout(const CheckedMachine& machine, const std::string& subject,
                               const std::vector<std::string>& modules = {}) {
  std::vector<Finding> found = CheckMachine(machine, modules);
  std::erase_if(found, [&](const Finding& finding) { return finding.subject != subject; });
  return found;
}

Finding FindOne(const CheckedMachine& machine, const std::string& subject) {
  const std::vector<Finding> found = FindAbout(machine, subject, {"AMT_Info"});
  return found.size() == 1 ? found.front() : Finding{Kind::kGood, "", "not one finding"};
}

TEST(MachineCheck, FindsAllOfAWholeMachineGood) {
  for (const Finding& finding : CheckMachine(WholeMachine(), {})) {
    EXPECT_EQ(finding.kind, Kind::kGood) << finding.subject << ": " << finding.text;
  }
}

TEST(MachineCheck, NamesEachToolOfAModuleOnceWithItsFullPath) {
  std::vector<std::string> paths;
  for (const Finding& finding : FindAbout(WholeMachine(), "Windows_Related_Info")) {
    paths.push_back(finding.text);
  }
  const std::vector<std::string> known = {"C:\\Windows\\System32\\route",
                                          "C:\\Windows\\System32\\arp.exe",
                                          "C:\\Windows\\System32\\netstat.exe"};
  for (const std::string& path : known) {
    EXPECT_EQ(std::count(paths.begin(), paths.end(), path), 1) << path;
  }
}

TEST(MachineCheck, LooksAtTheToolsOfEveryModule) {
  for (const char* module :
       {"sampleModule1", "sampleModule2", "BMC_Info", "AMT_Info", "Windows_Related_Info"}) {
    EXPECT_FALSE(FindAbout(WholeMachine(), module).empty()) << module;
  }
}

TEST(MachineCheck, LooksAtNamedModulesAlone) {
  EXPECT_TRUE(FindAbout(WholeMachine(), "BMC_Info", {"AMT_Info"}).empty());
  EXPECT_FALSE(FindAbout(WholeMachine(), "AMT_Info", {"AMT_Info"}).empty());
}

TEST(MachineCheck, RefusesAModuleThatIsNotThere) {
  EXPECT_THROW(CheckMachine(WholeMachine(), {"BMC"}), host::UsageError);
}

TEST(MachineCheck, TellsWhichTablesAMissingToolLeavesEmpty) {
  CheckedMachine machine = WholeMachine();
  machine.locate = [](const std::string& program) {
    return program.ends_with("amt_log.exe") ? std::nullopt : std::optional(program);
  };
  const std::vector<Finding> found = FindAbout(machine, "AMT_Info");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].kind, Kind::kGood);
  EXPECT_EQ(found[1].kind, Kind::kMissing);
  EXPECT_EQ(found[1].text,
            "C:\\Halyard\\pq_tools\\amt_log.exe is not there; put it in its place, or AMTLOG "
            "stays empty");
}

TEST(MachineCheck, MissesASystemsProgramThatAnotherIsTakenFor) {
  CheckedMachine machine = WholeMachine();
  machine.locate = [](const std::string& program) {
    return program == "route" ? "D:\\Support\\route.BAT" : "c:\\windows\\SYSTEM32\\" + program;
  };
  std::vector<std::string> missing;
  for (const Finding& finding : FindAbout(machine, "Windows_Related_Info")) {
    if (finding.kind == Kind::kMissing) missing.push_back(finding.text);
  }
  EXPECT_EQ(missing, std::vector<std::string>{
                         "D:\\Support\\route.BAT would be run for the system's route; remove it, "
                         "or take its folder out of PATH"});
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

TEST(CheckCommand, EndsWithZeroWhereEveryToolIsRecorded) {
  const test::HostRun run = test::RunHost(
      {"check", "--replay", test::Sample("two-socket-server"), "--module", "BMC_Info"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out,
            "ok       BMC_Info     C:\\Halyard\\pq_tools\\check_amt_bmc.exe\n"
            "ok       BMC_Info     C:\\Halyard\\pq_tools\\ipmiutilnh.exe\n"
            "ok       language     1033, English (United States)\n"
            "ok       host folder  C:\\Halyard\n");
}

TEST(CheckCommand, EndsWithOneWhereAToolIsMissing) {
  const test::HostRun run = test::RunHost({"check", "--replay", test::Sample("bare-machine")});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_NE(run.out.find("missing  "), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("note     language"), std::string::npos) << run.out;
}

TEST(CheckCommand, SaysWhatIsWrongWithARecording) {
  const test::HostRun run = test::RunHost({"check", "--replay", "nowhere"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
}

TEST(CheckCommand, HasNoFormat) {
  const test::HostRun run = test::RunHost({"check", "--format", "json"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.error, "pqhost: there is no option --format (see pqhost check --help)\n");
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
