#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "pqmodules/rbmcinfo.h"
#include "tests/support/bmc_machine.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"

namespace test {
namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// All that a collection did, step by step, once every table was asked for.
std::string TraceOf(std::uint32_t detection) {
  return Collect(MakeBmcMachine(detection), kBmcModule).trace;
}

host::Recording Sample(const std::string& name) {
  return host::LoadRecording(SamplesFolder() + "/" + name);
}

std::string SampleTrace(const std::string& name) { return Collect(Sample(name), kBmcModule).trace; }

/// What the utility was asked, in order, without folders and redirections.
std::vector<std::string> QueriesOf(const Collected& collected) {
  constexpr char kUtility[] = "ipmiutilnh.exe\" ";
  std::vector<std::string> queries;
  for (const std::string& line : collected.commandLines) {
    const std::size_t at = line.find(kUtility);
    if (at == std::string::npos) continue;
    const std::string rest = line.substr(at + sizeof(kUtility) - 1);
    queries.push_back(rest.substr(0, rest.find(rest.find('>') < rest.size() ? '>' : '\0')));
  }
  return queries;
}

TEST(BmcTrace, OfFamily5) { EXPECT_EQ(TraceOf(5), TestData("bmc/family_5.trace")); }
TEST(BmcTrace, OfFamily7) { EXPECT_EQ(TraceOf(7), TestData("bmc/family_7.trace")); }
TEST(BmcTrace, OfFamily9) { EXPECT_EQ(TraceOf(9), TestData("bmc/family_9.trace")); }
TEST(BmcTrace, OfFamily11) { EXPECT_EQ(TraceOf(11), TestData("bmc/family_11.trace")); }
TEST(BmcTrace, OfAMachineWithoutBmc) { EXPECT_EQ(TraceOf(3), TestData("bmc/no_bmc.trace")); }
TEST(BmcTrace, OfADetectionThatFailed) {
  EXPECT_EQ(TraceOf(255), TestData("bmc/detection_failed.trace"));
}

TEST(BmcTrace, OfATwoSocketServer) {
  EXPECT_EQ(SampleTrace("two-socket-server"), TestData("bmc/two_socket_server.trace"));
}
TEST(BmcTrace, OfABladeWithLatin1Names) {
  EXPECT_EQ(SampleTrace("blade"), TestData("bmc/blade.trace"));
}
TEST(BmcTrace, OfABmcThatDoesNotAnswer) {
  EXPECT_EQ(SampleTrace("bmc-unreachable"), TestData("bmc/unreachable.trace"));
}
TEST(BmcTrace, OfTheSampleWithoutBmc) {
  EXPECT_EQ(SampleTrace("no-bmc"), TestData("bmc/no_bmc.trace"));
}

TEST(BmcModule, FillsTenTablesOfATwoSocketServer) {
  const Collected collected = Collect(Sample("two-socket-server"), kBmcModule);
  EXPECT_EQ(collected.Tables().size(), 10u);
  const auto sensors = collected.Rows("SENSORINFO");
  EXPECT_GE(sensors.size(), 40u);
  EXPECT_THAT(sensors[0],
              ElementsAre("item1=CPU0 Temp        ", "item2=   47.00 ", "item3= C ", "item4= ok ",
                          "item5=     na ", "item6=     na ", "item7=     na ", "item8=  85.00 ",
                          "item9=  92.00 ", "item10= 100.00"));
}

TEST(BmcDetection, LogsWhatAnExitCodeMeans) {
  const auto logOf = [](std::uint32_t exitCode) {
    return GetLogBetween(Collect(MakeBmcMachine(exitCode), kBmcModule, {"MCINFO"}),
                         "4 check_bmc function return:" + std::to_string(exitCode), "")
        .at(1);
  };
  EXPECT_EQ(logOf(255), "1 check_amt_bmc bmc command meets error");
  EXPECT_EQ(logOf(5), "3 Grantley 2B3C or ZN720,has BMC, return 5");
  EXPECT_EQ(logOf(7), "3 Marl(ZM310), has BMC, return 7");
  EXPECT_EQ(logOf(9), "3 ZK140,ZP480 or ZW430E, has BMC, return 9");
  EXPECT_EQ(logOf(11), "3 IVB 2B3C,has BMC, return 11");
}

TEST(BmcDetection, TakesEveryOtherExitCodeForNoBmc) {
  for (const std::uint32_t exitCode : {0u, 1u, 3u, 4u, 6u, 12u, 254u, 256u, 259u, 4294967295u}) {
    const Collected collected = Collect(MakeBmcMachine(exitCode), kBmcModule, {"MCINFO"});
    EXPECT_THAT(collected.LogTexts(),
                ElementsAre("3 Enter EnumBMCInstances", "3 Enter CollectData-BMC related info",
                            "3 the exepath:C:\\Halyard",
                            "3 the final path:/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" bmc",
                            "4 check_bmc function return:" + std::to_string(exitCode),
                            "3 has no BMC, return 4", "3 Exit EnumBMCInstances"));
  }
}

TEST(BmcDetection, ThatCannotStartIsLoggedAsDetailAndCollectsNothing) {
  host::Recording machine = MakeBmcMachine();
  AnswerOf(machine, "bmc").startError = 5;
  const Collected collected = Collect(machine, kBmcModule, {"MCINFO"});
  EXPECT_THAT(collected.LogTexts(),
              ElementsAre("3 Enter EnumBMCInstances", "3 Enter CollectData-BMC related info",
                          "3 the exepath:C:\\Halyard",
                          "3 the final path:/c \"C:\\Halyard\\pq_tools\\check_amt_bmc.exe\" bmc",
                          "4 CreateProcess failed (5)", "3 Exit EnumBMCInstances"));
  EXPECT_THAT(collected.Tables(), IsEmpty());
}

TEST(BmcDetection, TakesAnExitCodeThatCannotBeReadForNone) {
  host::Recording machine = MakeBmcMachine(5);
  AnswerOf(machine, "bmc").exitCodeError = 6;
  EXPECT_THAT(
      GetLogBetween(Collect(machine, kBmcModule, {"MCINFO"}), "4 check_bmc function return:0", ""),
      ElementsAre("4 check_bmc function return:0", "3 has no BMC, return 4",
                  "3 Exit EnumBMCInstances"));
}

TEST(BmcDetection, RunsOnceAlsoWithoutBmc) {
  const Collected collected =
      Collect(MakeBmcMachine(4), kBmcModule, {"MCINFO", "SELINFO", "MCINFO"});
  EXPECT_EQ(collected.commandLines.size(), 1u);
  EXPECT_EQ(std::ranges::count(collected.LogTexts(), "3 Enter EnumBMCInstances"), 3);
}

TEST(BmcModule, LeavesAllTablesEmptyWithoutBmc) {
  EXPECT_THAT(Collect(MakeBmcMachine(3), kBmcModule).Tables(), IsEmpty());
  EXPECT_THAT(Collect(MakeBmcMachine(255), kBmcModule).Tables(), IsEmpty());
}

TEST(BmcModule, WritesNoFileWithoutBmc) {
  EXPECT_THAT(Collect(MakeBmcMachine(3), kBmcModule).files, IsEmpty());
  EXPECT_THAT(Collect(MakeBmcMachine(255), kBmcModule).files, IsEmpty());
}

TEST(BmcModule, AsksFamily9AndFamily11ForControllerSelfTestAndLanOnly) {
  for (const std::uint32_t family : {9u, 11u}) {
    EXPECT_THAT(QueriesOf(Collect(MakeBmcMachine(family), kBmcModule)),
                ElementsAre("korvaxoem mc", "korvaxoem selftest", StartsWith("lan | findstr"),
                            "sensor -s -q", "korvaxoem fru", "sel", "sel -r ", "sensor "));
  }
}

TEST(BmcModule, ReportsTheMissingSdrOfFamily9AsProgress) {
  const Collected collected = Collect(MakeBmcMachine(9), kBmcModule);
  EXPECT_THAT(collected.Rows("SDRINFO"), IsEmpty());
  EXPECT_THAT(GetLogBetween(collected, "3 Oru Debug after sensor info", "3 Oru Debug  fru info 1"),
              ElementsAre("3 Oru Debug after sensor info", "3 Oru Debug after sdr info"));
}

TEST(BmcModule, AsksFamily7ForSdrBeforeFruAndNotForLeds) {
  const Collected collected = Collect(MakeBmcMachine(7), kBmcModule);
  EXPECT_THAT(QueriesOf(collected),
              ElementsAre("korvaxoem mc", "korvaxoem selftest", "korvaxoem ver", "korvaxoem psu",
                          StartsWith("lan | findstr"), "sensor -s -q", "sensor", "korvaxoem fru",
                          "sel", "sel -r ", "sensor "));
  EXPECT_THAT(collected.Rows("LEDINFO"), IsEmpty());
}

TEST(BmcModule, AsksFamily5ForEverythingWithFruBeforeSdr) {
  EXPECT_THAT(QueriesOf(Collect(MakeBmcMachine(5), kBmcModule)),
              ElementsAre("korvaxoem mc", "korvaxoem selftest", "korvaxoem ver", "korvaxoem psu",
                          StartsWith("lan | findstr"), "korvaxoem led", "sensor -s -q",
                          "korvaxoem fru", "sensor", "sel", "sel -r ", "sensor "));
}

TEST(BmcModule, GoesOnWithTheNextQueryAfterEachFailure) {
  host::Recording machine = MakeBmcMachine();
  for (host::RecordedCommand& answer : machine.commands) {
    if (answer.arguments != "bmc") answer.startError = 8;
  }
  const Collected collected = Collect(machine, kBmcModule);
  EXPECT_EQ(collected.commandLines.size(), 13u);
  EXPECT_EQ(std::ranges::count_if(
                collected.LogTexts(),
                [](const std::string& text) { return text.find("failed") != std::string::npos; }),
            12);
  EXPECT_THAT(collected.Tables(), IsEmpty());
  EXPECT_THAT(collected.LogTexts(), Contains("3 Exit CollectData-BMC related info"));
}

TEST(BmcModule, LeavesNothingOpen) {
  EXPECT_EQ(Collect(MakeBmcMachine(5), kBmcModule).openHandles, 0);
}

TEST(BmcModule, ReportsQueriesWhoseCommandDoesNotFitItsBuffer) {
  host::Recording machine = MakeBmcMachine();
  const std::string folder = "C:\\" + std::string(240, 'h');
  machine.hostExecutable = folder + "\\halyard.exe";
  const Collected collected = Collect(machine, kBmcModule);
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (206)").Times(6));
  EXPECT_THAT(collected.LogTexts(), Contains("3 CreateProcess failed (206)").Times(2));
  EXPECT_THAT(collected.commandLines, Each(Not(HasSubstr("korvaxoem mc"))));
  EXPECT_EQ(ListValues(collected, "SELINFO").size(), 1u);
}

TEST(BmcModule, StartsAPipeQueryWhoseCommandJustFits) {
  host::Recording machine = MakeBmcMachine();
  const std::string command = "/c \"\\pq_tools\\ipmiutilnh.exe\" korvaxoem mc";
  const std::size_t folderRoom = 255 - command.size();
  const auto nameCount = [&](std::size_t folderSize) {
    machine.hostExecutable = "C:\\" + std::string(folderSize - 3, 'h') + "\\h.exe";
    return Collect(machine, kBmcModule, {"MCINFO"}).Rows("MCINFO").size();
  };
  EXPECT_EQ(nameCount(folderRoom), 1u);
  EXPECT_EQ(nameCount(folderRoom + 1), 0u);
}

TEST(BmcModule, FetchesTheHostFolderAnewInEachCollection) {
  Collect(MakeBmcMachine(4), kBmcModule, {"MCINFO"});
  host::Recording moved = MakeBmcMachine(4);
  moved.hostExecutable = "D:\\Tools\\halyard.exe";
  EXPECT_THAT(Collect(moved, kBmcModule, {"MCINFO"}).LogTexts(),
              Contains("3 the exepath:D:\\Tools"));
}

TEST(BmcModule, KeepsAHostPathWithoutBackslashWhole) {
  host::Recording machine = MakeBmcMachine(4);
  machine.hostExecutable = "halyard.exe";
  EXPECT_THAT(Collect(machine, kBmcModule, {"MCINFO"}).LogTexts(),
              Contains("3 the exepath:halyard.exe"));
}

TEST(BmcDetection, StartsACommandThatJustFits) {
  const std::string around = "/c \"\\pq_tools\\check_amt_bmc.exe\" bmc";
  const auto callsIn = [&](std::size_t folderSize) {
    FakePlatform machine;
    machine.hostExecutable = "C:\\" + std::string(folderSize - 3, 'h') + "\\h.exe";
    const pq::MachineInUse inUse(machine);
    halyard::repository::RRepository repository;
    pq::RBMCInfo().EnumBMCInstances(repository);
    return machine.calls.size();
  };
  EXPECT_EQ(callsIn(511 - around.size()), 4u);  // It is started, awaited, asked and closed.
  EXPECT_EQ(callsIn(512 - around.size()), 0u);
}

TEST(BmcDetection, ReportsACommandThatDoesNotFit) {
  FakePlatform machine;
  machine.hostExecutable = "C:\\" + std::string(505, 'h') + "\\h.exe";
  const pq::MachineInUse inUse(machine);
  const LogLines log;
  halyard::repository::RRepository repository;
  pq::RBMCInfo().EnumBMCInstances(repository);
  ASSERT_GE(log.texts.size(), 2u);
  EXPECT_EQ(log.texts.end()[-2], "4 [repo] CreateProcess failed (206)");
  EXPECT_EQ(log.texts.end()[-1], "3 [repo] Exit EnumBMCInstances");
}

TEST(BmcModule, KeepsTheHostFolderOfItsOwnThread) {
  FakePlatform machine;
  machine.hostExecutable = "C:\\First\\halyard.exe";
  const pq::MachineInUse inUse(machine);
  pq::RRepository repository;
  pq::RBMCInfo module;
  module.EnumBMCInstances(repository);
  std::thread([] {
    FakePlatform other;
    other.hostExecutable = "C:\\Second\\halyard.exe";
    const pq::MachineInUse otherInUse(other);
    pq::RRepository otherRepository;
    pq::RBMCInfo().EnumBMCInstances(otherRepository);
  }).join();
  machine.calls.clear();
  module.DumpSelHex();
  ASSERT_FALSE(machine.calls.empty());
  EXPECT_THAT(machine.calls.front(), HasSubstr("C:\\First\\pq_tools\\"));
}

using Step = int (*)(pq::RBMCInfo&, pq::RRepository&);

/// What a step of a collection returns on the machine of `recording`.
int ResultOf(const host::Recording& recording, Step step) {
  Collect(MakeBmcMachine(4), kBmcModule, {"MCINFO"});  // Finds the host's folder for all objects.
  const host::LogFolderInUse logFolder(recording.logFolder);
  host::RecordedMachine machine(recording);
  const pq::MachineInUse inUse(machine);
  pq::RRepository repository;
  pq::RBMCInfo module;
  return step(module, repository);
}

template <int selector>
int QueryStep(pq::RBMCInfo& module, pq::RRepository& repo) {
  return module.QueryOem(repo, selector);
}
int SensorStep(pq::RBMCInfo& module, pq::RRepository& repo) {
  return module.CollectSensorReadings(repo);
}
int SdrStep(pq::RBMCInfo& module, pq::RRepository& repo) { return module.CollectSdr(repo); }
int FruStep(pq::RBMCInfo& module, pq::RRepository& repo) { return module.CollectFru(repo); }
int SelStep(pq::RBMCInfo& module, pq::RRepository& repo) { return module.CollectSel(repo); }

/// A step whose result counts, by what it asks the utility for.
struct ResultStep {
  const char* arguments;
  Step step;
};

constexpr ResultStep kPipeSteps[] = {
    {"korvaxoem mc", QueryStep<1>},  {"korvaxoem selftest", QueryStep<2>},
    {"korvaxoem ver", QueryStep<3>}, {"korvaxoem psu", QueryStep<4>},
    {"lan", QueryStep<5>},           {"korvaxoem led", QueryStep<6>},
    {"sensor -s -q", SensorStep},    {"sensor", SdrStep},
};
constexpr ResultStep kFileSteps[] = {{"korvaxoem fru", FruStep}, {"sel", SelStep}};

/// What `step` returns when the utility answers as `change` has it.
template <typename Change>
int ChangedResult(const ResultStep& step, const Change& change) {
  host::Recording machine = MakeBmcMachine();
  change(AnswerOf(machine, step.arguments));
  return ResultOf(machine, step.step);
}

TEST(BmcStep, Returns0AfterItsLastRow) {
  for (const ResultStep& step : kPipeSteps) {
    EXPECT_EQ(ResultOf(MakeBmcMachine(), step.step), 0) << step.arguments;
  }
  for (const ResultStep& step : kFileSteps) {
    EXPECT_EQ(ResultOf(MakeBmcMachine(), step.step), 0) << step.arguments;
  }
}

TEST(BmcStep, Returns1WithoutAPipe) {
  for (const ResultStep& step : kPipeSteps) {
    EXPECT_EQ(ChangedResult(step, [](auto& answer) { answer.pipeError = 5; }), 1) << step.arguments;
  }
}

TEST(BmcStep, Returns1WhenTheUtilityCannotStart) {
  const auto failStart = [](host::RecordedCommand& answer) { answer.startError = 5; };
  for (const ResultStep& step : kPipeSteps) {
    EXPECT_EQ(ChangedResult(step, failStart), 1) << step.arguments;
  }
  for (const ResultStep& step : kFileSteps) {
    EXPECT_EQ(ChangedResult(step, failStart), 1) << step.arguments;
  }
}

TEST(BmcStep, Returns1AfterAnErrorText) {
  for (const ResultStep& step : kPipeSteps) {
    if (step.step == SdrStep) continue;  // Takes it for a line.
    EXPECT_EQ(
        ChangedResult(step, [](auto& answer) { answer.standardOutput = "Param (3) Error: x\r\n"; }),
        1)
        << step.arguments;
  }
}

TEST(BmcStep, Returns1WithoutALineToAdd) {
  for (const ResultStep& step : kPipeSteps) {
    if (step.step == SensorStep) continue;
    EXPECT_EQ(ChangedResult(step, [](auto& answer) { answer.standardOutput.clear(); }), 1)
        << step.arguments;
  }
}

TEST(BmcStep, OfAFileReturns0AlsoWithoutALine) {
  for (const ResultStep& step : kFileSteps) {
    EXPECT_EQ(ChangedResult(step, [](auto& answer) { answer.standardOutput.clear(); }), 0)
        << step.arguments;
  }
}

TEST(BmcStep, OfAFileReturns1WhenItCannotBeOpened) {
  host::Recording machine = MakeBmcMachine();
  machine.readOnly = {"C:\\Halyard\\logs\\fruinfo.txt", "C:\\Halyard\\logs\\selinfo.txt"};
  for (const ResultStep& step : kFileSteps) {
    EXPECT_EQ(ResultOf(machine, step.step), 1) << step.arguments;
  }
}

/// What `step` does to the machine when the utility prints `output`, the start first.
std::vector<std::string> CallsOf(const ResultStep& step, const std::string& output) {
  FakePlatform machine;
  bool isRead = false;
  machine.onRead = [&](char* buffer, std::size_t size, std::size_t& count) {
    count = output.copy(buffer, size);
    return !std::exchange(isRead, true);
  };
  // The host folder of a thread is that of its last collection.
  std::thread([&] {
    const pq::MachineInUse inUse(machine);
    pq::RRepository repository;
    pq::RBMCInfo module;
    step.step(module, repository);
  }).join();
  return machine.calls;
}

TEST(BmcStep, ClosesThePipeThenAwaitsAndClosesTheUtility) {
  for (const ResultStep& step : kPipeSteps) {
    EXPECT_THAT(CallsOf(step, "a : b\r\n"),
                ElementsAre(AllOf(HasSubstr(step.arguments), EndsWith(", inheriting, piped")),
                            "close write end", "close read end", "wait", "close process"));
  }
}

TEST(BmcStep, OfTheSensorsAwaitsAUtilityThatReportsAnError) {
  EXPECT_THAT(CallsOf({"sensor -s -q", SensorStep}, "Error: x\r\n"),
              ElementsAre(HasSubstr("sensor -s -q"), "close write end", "close read end", "wait",
                          "close process"));
}

TEST(BmcStep, OfAFileClosesTheUtilityBeforeItOpensTheFile) {
  for (const ResultStep& step : kFileSteps) {
    EXPECT_THAT(CallsOf(step, ""), ElementsAre(HasSubstr(step.arguments), "wait", "close process",
                                               StartsWith("open ")));
  }
}

TEST(BmcStep, OfAnUnknownSelectorRunsNothingAndReturns1) {
  FakePlatform machine;
  const pq::MachineInUse inUse(machine);
  const LogLines log;
  pq::RRepository repository;
  for (const int selector : {-1, 0, 7}) {
    EXPECT_EQ(pq::RBMCInfo().QueryOem(repository, selector), 1) << selector;
  }
  EXPECT_THAT(machine.calls, IsEmpty());
  EXPECT_THAT(log.texts, IsEmpty());
}

}  // namespace
}  // namespace test
