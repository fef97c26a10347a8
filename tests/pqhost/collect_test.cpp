// The program as its user meets it.

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/program/host_run.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using test::HostRun;
using test::RunHost;
using test::Sample;
using test::TemporaryFolder;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

/// pqhost collect on a recording, with more options.
HostRun Replay(const std::string& recording, const Words& more = {},
               const test::HostTerminal& terminal = {}) {
  Words arguments = {"collect", "--replay", recording};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return RunHost(arguments, terminal);
}

HostRun ReplayServer(const Words& more = {}, const test::HostTerminal& terminal = {}) {
  return Replay(Sample("two-socket-server"), more, terminal);
}

/// A recording of its own, with these further members.
class MadeRecording {
 public:
  explicit MadeRecording(const std::string& members) {
    folder.Write("recording.json", "{\"format\": 1" + members + "}");
  }
  std::string Path() const { return folder / ""; }
  void AddFile(const std::string& name, const std::string& content) { folder.Write(name, content); }

 private:
  TemporaryFolder folder;
};

/// The "event" of every line of a trace, with what is told of it.
Words ListEvents(const std::string& trace) {
  Words events;
  std::istringstream lines(trace);
  std::string line;
  while (std::getline(lines, line)) {
    const Json event = Json::parse(line);
    const std::string kind = event["event"];
    if (kind == "module") events.push_back("module " + event["name"].get<std::string>());
    if (kind == "layout" || kind == "enumerate") {
      events.push_back(kind + " " + event["table"].get<std::string>());
    }
  }
  return events;
}

TEST(Collect, ShowsTheTablesOfARecording) {
  const HostRun run = ReplayServer({"--table", "NETSTATINFO"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.error, "NETSTATINFO  10 rows\n");
  EXPECT_THAT(run.out, StartsWith("NODE31\n"));
  EXPECT_THAT(run.out, HasSubstr("\n\nNetwork\n"
                                 "  NETSTATINFO  Network connections  10 rows\n"
                                 "\nNetwork\n\nNetwork connections · NETSTATINFO · 10 rows\n"));
  EXPECT_THAT(run.out, HasSubstr("\nProtocol  Local Address"));
}

TEST(Collect, ShowsEveryModuleInTheLibrarysOrder) {
  const Json all = Json::parse(ReplayServer({"--format", "json"}).out);
  Words names;
  for (const Json& module : all["modules"]) names.push_back(module["name"]);
  EXPECT_THAT(names, ElementsAre("sampleModule1", "sampleModule2", "BMC_Info", "AMT_Info",
                                 "Windows_Related_Info"));
  EXPECT_EQ(all["tables"].size(), 38U);
}

TEST(Collect, DescribesTheRecordedMachine) {
  const Json machine = Json::parse(ReplayServer({"--format", "json"}).out)["machine"];
  EXPECT_EQ(machine["recorded"], true);
  EXPECT_EQ(machine["languageId"], 1033);
  EXPECT_EQ(machine["logFolder"], "C:\\Halyard\\logs\\");
}

TEST(Collect, KnowsTheMachineByItsRecording) {
  const Json machine = Json::parse(ReplayServer({"--format", "json"}).out)["machine"];
  EXPECT_EQ(machine["name"], "NODE31");
  EXPECT_EQ(machine["recordedAt"], "2026-11-18T09:41:12+01:00");
  EXPECT_EQ(machine["maker"], "Northgate");
  EXPECT_EQ(machine["serial"], "NGR208-0031");
  EXPECT_EQ(machine["assetTag"], "DC2-R11-U18");
}

TEST(Collect, TellsASubmissionThatCannotBeReadAndGoesOn) {
  MadeRecording recording("");
  recording.AddFile("submission.json", R"({"format": 1, "recordedAt": "yesterday"})");
  const HostRun run = Replay(recording.Path(), {"--table", "ARPINFO", "--format", "json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.error, HasSubstr("pqhost: submission.json: recordedAt: has to be a time"));
  EXPECT_EQ(Json::parse(run.out)["tables"].size(), 1u);
}

TEST(Collect, TracesModuleLayoutAndEnumerationInOrder) {
  const HostRun run = ReplayServer({"--module", "Windows_Related_Info", "--trace", "-"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(ListEvents(run.out),
              ElementsAre("module Windows_Related_Info", "layout ARPINFO", "enumerate ARPINFO",
                          "layout NETSTATINFO", "enumerate NETSTATINFO"));
}

TEST(Collect, EnumeratesATableNamedTwiceTwice) {
  const HostRun run =
      ReplayServer({"--table", "NETSTATINFO", "--table", "NETSTATINFO", "--trace", "-"});
  EXPECT_THAT(ListEvents(run.out),
              ElementsAre("module Windows_Related_Info", "layout NETSTATINFO",
                          "enumerate NETSTATINFO", "layout NETSTATINFO", "enumerate NETSTATINFO"));
}

TEST(Collect, WritesTheSameTraceToAFileAsToStandardOutput) {
  const TemporaryFolder folder;
  const HostRun run = ReplayServer({"--table", "ARPINFO", "--trace", folder / "t.jsonl"});
  EXPECT_THAT(run.out, HasSubstr("ARP table"));
  EXPECT_EQ(folder.Read("t.jsonl"), ReplayServer({"--table", "ARPINFO", "--trace", "-"}).out);
}

TEST(Collect, WritesOneByteAsOneCharacterInATrace) {
  MadeRecording recording(R"(, "codePage": 437,
    "commands": [{"tool": "arp.exe", "arguments": "-a", "stdout": "arp.txt"}])");
  recording.AddFile("arp.txt", "\x81\n");
  const HostRun run = Replay(recording.Path(), {"--table", "ARPINFO", "--trace", "-"});
  EXPECT_THAT(run.out, HasSubstr("\"[repo] \xC2\x81\\n\""));
}

TEST(Collect, EscapesATracesControlCharactersOnATerminal) {
  MadeRecording recording(R"(,
    "commands": [{"tool": "arp.exe", "arguments": "-a", "stdout": "arp.txt"}])");
  recording.AddFile("arp.txt",
                    "\x9b"
                    "31m\x7f\n");
  const HostRun run =
      Replay(recording.Path(), {"--table", "ARPINFO", "--trace", "-"}, {.out = true});
  EXPECT_THAT(run.out, HasSubstr("\"[repo] \\u009b31m\\u007f\\n\""));
}

TEST(Collect, WritesResultsToAFile) {
  const TemporaryFolder folder;
  const HostRun run =
      ReplayServer({"--table", "ARPINFO", "--format", "csv", "--output", folder / "arp.csv"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(folder.Read("arp.csv"), StartsWith("Internet Address,Physical Address,Type\r\n"));
  EXPECT_THAT(folder.Files(), ElementsAre("arp.csv"));
}

TEST(Collect, ReplacesAnEarlierResult) {
  const TemporaryFolder folder;
  folder.Write("o", "old");
  ReplayServer({"--table", "ARPINFO", "--format", "ndjson", "--output", folder / "o"});
  EXPECT_THAT(folder.Read("o"), StartsWith("{\"machine\":\"NODE31\""));
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
}

TEST(Collect, WritesFilesWithUnusualNames) {
  const TemporaryFolder folder;
  ReplayServer({"--table", "ARPINFO", "--output", folder / "Größe 连接.txt"});
  EXPECT_THAT(folder.Files(), ElementsAre("Größe 连接.txt"));
}

TEST(Collect, RefusesAnOutputThatCannotBeWritten) {
  const TemporaryFolder folder;
  HostRun run = ReplayServer({"--output", folder / "missing/o.txt"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, AllOf(StartsWith("pqhost: cannot write "), HasSubstr("does not exist")));
  run = ReplayServer({"--output", folder / ""});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("it is a folder"));
  run = ReplayServer({"--trace", folder / "missing/t"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("does not exist"));
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST(Collect, LeavesNoHalfFileBehindWhenTheCollectionIsRefused) {
  const TemporaryFolder folder;
  folder.Write("o", "old");
  const HostRun run = ReplayServer({"--output", folder / "o", "--trace", folder / "no/t"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(folder.Read("o"), "old");
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
}

/// What the recorded server's route tool prints.
std::string RecordedRoutes() {
  std::ifstream in(fs::path(Sample("two-socket-server")) / "windows/route_print.txt",
                   std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(Collect, WritesTheLogFilesOfAReplay) {
  const TemporaryFolder folder;
  const HostRun run = ReplayServer({"--module", "Windows_Related_Info", "--format", "none",
                                    "--log-folder", folder / "logs/of it"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.error, HasSubstr("Log files: "));
  const Words files = folder.Files();
  EXPECT_THAT(files, testing::Contains("logs/of it/route.txt"));
  EXPECT_THAT(files, testing::Contains("logs/of it/hosts.txt"));
  EXPECT_EQ(folder.Read("logs/of it/route.txt"), RecordedRoutes());
}

TEST(Collect, WritesLogFilesBelowFoldersAndUnderTheirNamesInUtf8) {
  MadeRecording recording(R"(, "codePage": 850, "files": {
      "C:\\Halyard\\logs\\Firmware\\Ger\u0084t.txt": "x.txt",
      "c:\\\\halyard\\\\LOGS\\\\b.txt": "x.txt", "C:\\Halyard\\other.txt": "x.txt"})");
  recording.AddFile("x.txt", "content");
  const TemporaryFolder folder;
  const HostRun run = Replay(
      recording.Path(), {"--table", "ARPINFO", "--format", "none", "--log-folder", folder / ""});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_THAT(folder.Files(), ElementsAre("Firmware/Gerät.txt", "b.txt", "netshare.txt",
                                          "route.txt", "smbios_info.txt"));
}

TEST(Collect, KeepsOddNamesInsideTheLogFolder) {
  MadeRecording recording(R"(, "files": {
      "C:\\Halyard\\logs\\..\\up.txt": "x.txt", "C:\\Halyard\\logs\\a:b.txt": "x.txt",
      "C:\\Halyard\\logs\\a/b.txt": "x.txt", "C:\\Halyard\\logs\\good.txt": "x.txt"})");
  recording.AddFile("x.txt", "content");
  const TemporaryFolder folder;
  const HostRun run = Replay(recording.Path(), {"--table", "ARPINFO", "--format", "none",
                                                "--log-folder", folder / "sub/logs"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(folder.Files(), ElementsAre("sub/logs/good.txt", "sub/logs/netshare.txt",
                                          "sub/logs/route.txt", "sub/logs/smbios_info.txt"));
  EXPECT_THAT(run.error, HasSubstr("pqhost: not written: a:b.txt: no name for a file here\n"));
}

TEST(Collect, RefusesALogFolderThatIsAFile) {
  const TemporaryFolder folder;
  folder.Write("logs", "");
  const HostRun run = ReplayServer({"--log-folder", folder / "logs"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, StartsWith("pqhost: cannot create the folder "));
}

TEST(Collect, SaysWhatCouldNotBeCollectedAndGoesOn) {
  const MadeRecording recording(R"(, "commands": [
    {"tool": "route", "arguments": "print", "startError": 5},
    {"tool": "arp.exe", "arguments": "-a", "pipeError": 8}])");
  const HostRun run = Replay(recording.Path(), {"--module", "Windows_Related_Info"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.error, HasSubstr("pqhost: not collected: Windows_Related_Info, route: "
                                   "CreateProcess failed in getting route(5)\n"));
  EXPECT_THAT(run.error, HasSubstr("pqhost: not collected: Windows_Related_Info: "
                                   "Failed to create pipe for arp info\n"));
  EXPECT_THAT(run.error, EndsWith("ARPINFO      its pipe could not be created\n"
                                  "NETSTATINFO  netstat.exe is not on this machine\n"));
  EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 4);
  EXPECT_THAT(
      run.out,
      HasSubstr("\n2 problems\n"
                "  not collected: Windows_Related_Info, route: CreateProcess failed in "
                "getting route(5)\n"
                "  not collected: Windows_Related_Info: Failed to create pipe for arp info\n"
                "\nNetwork\n"
                "  ARPINFO      ARP table            its pipe could not be created\n"
                "  NETSTATINFO  Network connections  netstat.exe is not on this machine\n"));
}

TEST(Collect, SaysNothingTwiceOnATerminal) {
  const std::string broken = Sample("bmc-unreachable");
  const HostRun run = Replay(broken, {"--module", "BMC_Info"}, {.out = true, .error = true});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.out, HasSubstr("\n3 problems\n  not collected: BMC_Info"));
  EXPECT_THAT(run.error, AllOf(Not(HasSubstr("not collected")), Not(HasSubstr("SENSORINFO"))));
}

TEST(Collect, TellsStandardErrorWhatItsReaderDoesNotSee) {
  const std::string broken = Sample("bmc-unreachable");
  const TemporaryFolder folder;
  const auto tells = AllOf(HasSubstr("not collected: BMC_Info"), HasSubstr("\nSENSORINFO "));
  for (const test::HostTerminal& terminal :
       {test::HostTerminal{.out = true}, {.error = true}, {}}) {
    EXPECT_THAT(Replay(broken, {}, terminal).error, tells);
  }
  const test::HostTerminal both{.out = true, .error = true};
  EXPECT_THAT(Replay(broken, {"--format", "csv"}, both).error, tells);
  EXPECT_THAT(Replay(broken, {"--output", folder / "o"}, both).error, tells);
}

TEST(Collect, NamesWhatItWroteLast) {
  const TemporaryFolder folder;
  const HostRun run =
      ReplayServer({"--table", "ARPINFO", "--format", "html", "--output", folder / "r.html",
                    "--trace", folder / "t", "--log-folder", folder / "logs"});
  EXPECT_THAT(run.error,
              EndsWith("\nTrace: " + (folder / "t") + "\nReport: " + (folder / "r.html") + "\n"));
  EXPECT_THAT(run.error, HasSubstr("ARPINFO  11 rows\nLog files: "));
  EXPECT_THAT(ReplayServer({"--format", "sqlite", "--output", folder / "s.db"}).error,
              EndsWith("\nDatabase: " + (folder / "s.db") + "\n"));
  EXPECT_THAT(ReplayServer({"--format", "csv", "--output", folder / "s.csv"}).error,
              EndsWith("\nResults: " + (folder / "s.csv") + "\n"));
  EXPECT_EQ(RunHost({"query", folder / "s.db", "SELECT 1", "--output", folder / "a"}).error,
            "Results: " + (folder / "a") + "\n");
}

TEST(Collect, ShowsOldLinesOfLogsWhenAsked) {
  const std::string newest = ReplayServer({"--table", "FWTERMLOG"}).out;
  EXPECT_THAT(newest, HasSubstr("146 before them are not shown (--all shows them)"));
  EXPECT_THAT(newest, Not(HasSubstr("CLI Version")));
  const std::string all = ReplayServer({"--table", "FWTERMLOG", "--all"}).out;
  EXPECT_THAT(all, AllOf(HasSubstr("\nCLI Version"), Not(HasSubstr("--all"))));
}

TEST(Collect, TakesNamesInAnyCase) {
  EXPECT_EQ(ReplayServer({"--table", "arpinfo", "--module", "windows_related_info"}).error,
            "ARPINFO  11 rows\n");
}

TEST(Collect, IsDoneOnAMachineThatLacksVendorsTools) {
  const MadeRecording recording("");
  const HostRun run =
      Replay(recording.Path(), {"--module", "sampleModule1", "--module", "sampleModule2",
                                "--module", "Windows_Related_Info"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.error, AllOf(HasSubstr("RAIDINFO       storcli.exe is not on this machine\n"),
                               HasSubstr("LSILINK        1 row; c0_showall.txt, c0_raidevents.txt, "
                                         "c0_fwtermlog.txt, c0_pdlist.txt are empty: storcli.exe "
                                         "is not on this machine\n"),
                               Not(HasSubstr("pqhost: "))));
}

TEST(Collect, SaysThatTheToolOfADeadBmcFailed) {
  const HostRun run = Replay(Sample("bmc-unreachable"), {"--format", "none"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.error,
              StartsWith("pqhost: not collected: BMC_Info, ipmiutilnh.exe: printed an error text "
                         "(concerns MCINFO, SELFINFO, VERINFO, PSUINFO, LANINFO, LEDINFO)\n"
                         "pqhost: not collected: BMC_Info, ipmiutilnh.exe: ended with code "
                         "4294967295 (concerns SENSORINFO)\n"
                         "pqhost: not collected: BMC_Info, ipmiutilnh.exe: ended with code 22 "
                         "(concerns FRUINFO, SDRINFO, SELINFO)\n"
                         "CONTROLLER "));
}

TEST(Collect, IsDoneWhereToolsFindNoController) {
  const HostRun run = Replay(Sample("no-controller"), {"--format", "none"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.error, Not(HasSubstr("pqhost: ")));
  for (const char* table : {"PMCINFO", "PMCLINK", "PMCVER"}) {
    EXPECT_THAT(run.error,
                testing::ContainsRegex(std::string(table) + " +arcconf finds no controller\n"));
  }
}

TEST(Collect, NamesTheToolWhoseCommandLineIsTooLong) {
  // The lines of storcli are the only ones that are too long.
  const std::string folder = std::string(246, 'h');
  const std::string logs = std::string(220, 'l');
  const MadeRecording recording(R"(, "hostExecutable": "C:\\)" + folder + R"(\\p.exe", )" +
                                R"("logFolder": "C:\\)" + logs + R"(\\")");
  const HostRun run = Replay(recording.Path(), {"--module", "sampleModule2", "--format", "none"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_THAT(run.error, StartsWith("pqhost: not collected: sampleModule2, storcli.exe: "
                                    "CreateProcess failed (206)\n"));
  EXPECT_THAT(run.error, HasSubstr("FWTERMLOG      storcli.exe: CreateProcess failed (206)\n"));
}

TEST(Collect, SaysThatAMissingToolsArchiveIsFromBefore) {
  MadeRecording recording(
      R"(, "commands": [{"tool": "storcli.exe", "arguments": "show ctrlcount"}],)"
      R"( "files": {"c:\\Support\\Firmware\\Controller_1_Config.txt": "config"})");
  recording.AddFile("config", "   Controller Status : Optimal\n");
  const HostRun run = Replay(recording.Path(), {"--table", "PMCINFO", "--format", "json"});
  EXPECT_EQ(run.exitCode, 1);
  const Json all = Json::parse(run.out);
  EXPECT_EQ(all["tables"][0]["status"]["notes"][0],
            "from files of an unknown time; arcconf.exe is not on this machine");
  EXPECT_THAT(run.error, HasSubstr("pqhost: not collected: sampleModule1, arcconf.exe: is not on "
                                   "this machine; files of an unknown time are used instead "
                                   "(concerns PMCINFO, PMCVER, PMCLINK)\n"));
}

TEST(Collect, SaysThatAReportThatCouldNotBeWrittenIsFromBefore) {
  MadeRecording recording(
      R"(, "commands": [{"tool": "storcli.exe", "arguments": "show ctrlcount"},)"
      R"( {"tool": "storcli.exe", "arguments": "/c0 show", "stdout": "today"}],)"
      R"( "files": {"C:\\Halyard\\logs\\c0_showall.txt": "yesterday"},)"
      R"( "readOnly": ["C:\\Halyard\\logs\\c0_showall.txt"])");
  recording.AddFile("today", "CLI Version = 2\n");
  recording.AddFile("yesterday", "CLI Version = 1\n");
  const HostRun run = Replay(recording.Path(), {"--table", "PINFO", "--format", "json"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(Json::parse(run.out)["tables"][0]["status"]["notes"],
            Json({"from files of an unknown time; storcli.exe did not run, because c0_showall.txt "
                  "could not be written"}));
  EXPECT_THAT(run.error, HasSubstr("sampleModule2, storcli.exe: did not run, because "
                                   "c0_showall.txt could not be written; files of an unknown time "
                                   "are used instead (concerns TINFO, VINFO, PINFO, LSILINK)\n"));
}

TEST(Collect, SaysOnceThatNobodyKnowsWhetherThereIsAmt) {
  const MadeRecording recording("");
  const HostRun run = Replay(recording.Path(), {"--table", "AMTLOG", "--table", "AMTLOG"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(
      run.error,
      "pqhost: not collected: AMT_Info, check_amt_bmc.exe: the program is missing, so it is "
      "not known whether the machine has AMT\n"
      "AMTLOG  check_amt_bmc.exe is not on this machine, so it is not known whether this machine "
      "has AMT\n");
}

TEST(Collect, RefusesARecordingThatIsNotThere) {
  const TemporaryFolder folder;
  const HostRun run = Replay(folder / "nothing");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.error, StartsWith("pqhost: "));
  EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1);
}

TEST(Collect, RefusesARecordingOfAnotherFormat) {
  const TemporaryFolder folder;
  folder.Write("recording.json", "{\"format\": 2}");
  const HostRun run = Replay(folder / "");
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("format"));
}

TEST(Collect, RefusesUnknownNamesWithCode2) {
  HostRun run = ReplayServer({"--module", "BMCInfo"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.error,
            "pqhost: there is no module BMCInfo; did you mean BMC_Info? (modules: sampleModule1, "
            "sampleModule2, BMC_Info, AMT_Info, Windows_Related_Info)\n");
  run = ReplayServer({"--table", "ARPINF"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, HasSubstr("there is no table ARPINF; did you mean ARPINFO?"));
}

TEST(Collect, NeverPutsWhatWasTypedRawOnTheTerminal) {
  const HostRun run = RunHost({"collect", "--form\x1b[31m"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.error, AllOf(HasSubstr("\\x1b[31m"), Not(HasSubstr("\x1b"))));
}

TEST(Collect, ShowsProgressOnlyOnATerminal) {
  EXPECT_EQ(ReplayServer({"--table", "ARPINFO"}).error, "ARPINFO  11 rows\n");
  const HostRun run = ReplayServer({"--table", "ARPINFO"}, {.error = true});
  EXPECT_THAT(run.error, HasSubstr("Windows_Related_Info: arp.exe"));
}

TEST(Collect, FitsTheTerminal) {
  const HostRun narrow = ReplayServer({"--table", "ARPINFO"}, {.out = true, .width = 40});
  EXPECT_THAT(narrow.out, HasSubstr("Internet Address: "));
  const HostRun wide = ReplayServer({"--table", "ARPINFO"}, {.out = true, .width = 80});
  EXPECT_THAT(wide.out, HasSubstr("Internet Address  Physical Address"));
}

TEST(Collect, ColoursOnATerminal) {
  EXPECT_THAT(ReplayServer({"--table", "ARPINFO"}, {.out = true, .colors = true}).out,
              HasSubstr("\x1b[1mARP table\x1b[0m"));
  EXPECT_THAT(ReplayServer({"--table", "ARPINFO"}, {.out = true}).out, Not(HasSubstr("\x1b")));
}

TEST(Collect, PrintsNoDatabaseOnATerminal) {
  const HostRun run = Replay(Sample("two-socket-server"), {"--format", "sqlite"}, {.out = true});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.error, "pqhost: --format sqlite is nothing for a terminal: add --output FILE\n");
}

TEST(Collect, NeverColoursAFile) {
  const TemporaryFolder folder;
  ReplayServer({"--table", "ARPINFO", "--output", folder / "o"}, {.out = true, .colors = true});
  EXPECT_THAT(folder.Read("o"), Not(HasSubstr("\x1b")));
}

TEST(Collect, LeavesNothingSetBehindARun) {
  const std::string first = ReplayServer({"--trace", "-"}).out;
  RunHost({"collect", "--replay", "nowhere"});
  EXPECT_EQ(ReplayServer({"--trace", "-"}).out, first);
}

TEST(Modules, ListsModulesTablesAndColumns) {
  const HostRun run = RunHost({"modules"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.out, StartsWith("LSI RAID  sampleModule1, sampleModule2\n  RAIDINFO "));
  EXPECT_THAT(run.out, HasSubstr("\n\nNetwork  Windows_Related_Info\n  ARPINFO "));
  EXPECT_THAT(run.out, HasSubstr("\n\nSamples  sampleModule1, sampleModule2\n  JUNADDTABLE "));
  EXPECT_THAT(run.out,
              testing::ContainsRegex("  ARPINFO  +ARP table  +3 columns \\(40, 40, 20 wide\\)\n"));
  EXPECT_THAT(run.out, testing::ContainsRegex("  MCINFO  +Management controller  +one property"));
}

TEST(Modules, ListsThemAsJson) {
  const Json all = Json::parse(RunHost({"modules", "--format", "json"}).out);
  EXPECT_EQ(all["modules"].size(), 5U);
  const Json& windows = all["modules"][4];
  EXPECT_EQ(windows["description"], "Windows related information");
  EXPECT_EQ(windows["tables"][0].dump(),
            R"({"class":"ARPINFO","title":"ARP table","area":"Network",)"
            R"("layout":{"by":"row","headers":[],"widths":[40,40,20]}})");
}

TEST(Modules, TitlesEveryTableInWords) {
  const Json all = Json::parse(RunHost({"modules", "--format", "json"}).out);
  int tables = 0;
  for (const Json& module : all["modules"]) {
    for (const Json& table : module["tables"]) {
      EXPECT_NE(table["title"], table["class"]);
      ++tables;
    }
  }
  EXPECT_EQ(tables, 38);
}

TEST(Query, AsksARecordingInSql) {
  const HostRun run = RunHost({"query", "--replay", Sample("two-socket-server"), "--format", "csv",
                               "SELECT count(*) AS n, 'x' AS n FROM ARPINFO"});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_EQ(run.out, "n (n),n (n_2)\r\n11,x\r\n");
}

TEST(Query, AsksADatabaseThatACollectionWasWrittenTo) {
  const TemporaryFolder folder;
  const std::string file = folder / "server.db";
  ASSERT_EQ(ReplayServer({"--format", "sqlite", "--output", file}).exitCode, 0);
  const HostRun run = RunHost(
      {"query", file, "SELECT rows FROM tables WHERE class = 'SENSORINFO'", "--format", "ndjson"});
  EXPECT_EQ(run.exitCode, 0) << run.error;
  EXPECT_EQ(run.out, "{\"class\":\"ANSWER\",\"row\":{\"rows\":41}}\n");
}

TEST(Query, WritesItsAnswerAsADatabase) {
  const TemporaryFolder folder;
  const std::string answer = folder / "answer.db";
  const HostRun asked = RunHost({"query", "--replay", Sample("two-socket-server"),
                                 "SELECT class FROM tables WHERE class LIKE 'EVENTLOG%'",
                                 "--format", "sqlite", "--output", answer});
  EXPECT_EQ(asked.exitCode, 0) << asked.error;
  EXPECT_THAT(RunHost({"query", answer, "SELECT count(*) FROM ANSWER", "--format", "csv"}).out,
              HasSubstr("\r\n5\r\n"));
}

TEST(Query, SaysWhatIsWrongWithAQuery) {
  const HostRun run =
      RunHost({"query", "--replay", Sample("two-socket-server"), "SELECT * FROM NOWHERE"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.error,
            "pqhost: no such table: NOWHERE; SELECT name FROM sqlite_schema lists them\n");
}

TEST(Program, SaysHowItIsUsed) {
  const HostRun run = RunHost({"--help"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.error, "");
  EXPECT_THAT(run.out, HasSubstr("Usage: pqhost"));
}

TEST(Program, ComplainsInOneLineOnStandardError) {
  const HostRun run = RunHost({});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.error,
            "pqhost: nothing to do: give a command (collect, health, diff, modules, query, show, "
            "check, setup, verify, redact, help; see pqhost --help)\n");
}

}  // namespace
}  // namespace host
