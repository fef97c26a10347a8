#include "frame/module.h"

#include <gmock/gmock.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <map>
#include <string>
#include <vector>

#include "frame/add_modules.h"
#include "frame/bound/machine_in_use.h"
#include "frame/report_file.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "host/recorded/recording.h"

namespace pq {
namespace {

using testing::ElementsAre;

constexpr ModuleLog kLog{"pqmodules/example"};

/// A module with two tables, whose callbacks count their calls.
class ExampleModule : public CollectionModule {
 public:
  std::string GetName() override { return "Example"; }
  std::string GetDescription() override { return "for tests"; }
  void RegisterTables() override {
    RegisterTable("ONE", &ExampleModule::Enumerate, &ExampleModule::FormatRowTable);
    RegisterTable("TWO", &ExampleModule::Enumerate, &ExampleModule::FormatTwo);
  }
  /// Registers "ONE" with other callbacks.
  void RegisterAgain() {
    RegisterTable("ONE", &ExampleModule::EnumerateAgain, &ExampleModule::FormatTwo);
  }

  void Enumerate(RRepository& /*repo*/) {
    CollectOnce([&] { ++collections; });
  }
  void EnumerateAgain(RRepository& /*repo*/) { ++secondEnumerations; }
  void FormatTwo(RInstancesWrapper& table) { table.SetColumnHeaders({"a", "b"}, 30, 1); }

  int collections = 0;
  int secondEnumerations = 0;
};

/// Every log line as "level file text" as long as it lives.
struct LogKept {
  std::vector<std::string> lines;
  std::vector<int> sourceLines;
  host::LogSinkInUse sink{[this](const host::LogLine& line) {
    lines.push_back(std::to_string(line.level) + " " + line.file + " " + line.text);
    sourceLines.push_back(line.line);
  }};
};

TEST(ModuleLog, WritesOneLineWithItsPartsBehindThePrefix) {
  const LogKept log;
  kLog(kDetail, "CreateProcess failed (", 4294967295u, ")");
  EXPECT_THAT(log.lines,
              ElementsAre("4 pqmodules/example [repo] CreateProcess failed (4294967295)"));
}

TEST(ModuleLog, CarriesTheSourceLineOfTheCall) {
  const LogKept log;
  kLog(kProgress, "first");
  kLog(kProgress, "second");
  EXPECT_EQ(log.sourceLines[1], log.sourceLines[0] + 1);
}

/// A piece of code that modules share.
void LogForCaller(CallerLog log, const Sentence& words = {"shared", kCallersLine}) {
  log(kDetail, words);
}

TEST(CallerLog, CarriesTheSourceLineOfTheModulesCall) {
  const LogKept log;
  kLog(kProgress, "own");
  LogForCaller(kLog);
  EXPECT_EQ(log.sourceLines[1], log.sourceLines[0] + 1);
  EXPECT_EQ(log.lines[1], "4 pqmodules/example [repo] shared");
}

TEST(CallerLog, CarriesTheSourceLineOfWordsThatHaveOne) {
  constexpr Sentence kWords = "words";
  const LogKept log;
  kLog(kProgress, "own");
  LogForCaller(kLog, kWords);
  EXPECT_EQ(log.sourceLines[1], log.sourceLines[0] - 2);
  EXPECT_EQ(log.lines[1], "4 pqmodules/example [repo] words");
}

TEST(RunLogged, LogsAFailedStartWithTheSourceLineOfTheCall) {
  host::Recording recording;
  host::RecordedCommand& route = recording.commands.emplace_back();
  route.tool = "route";
  route.arguments = "print";
  route.startError = 5;
  host::RecordedMachine machine(recording, nullptr);
  const pq::MachineInUse inUse(machine);
  const LogKept log;
  kLog(kProgress, "own");
  RunLogged(kLog, "/c route print");
  ASSERT_EQ(log.lines.size(), 2u);
  EXPECT_EQ(log.lines[1], "4 pqmodules/example [repo] CreateProcess failed (5)");
  EXPECT_EQ(log.sourceLines[1], log.sourceLines[0] + 1);
}

TEST(CollectionModule, CollectsOncePerObject) {
  ExampleModule module;
  module.RegisterTables();
  RRepository repo;
  module.Tables().at("ONE").enumHandler(repo);
  module.Tables().at("TWO").enumHandler(repo);
  module.Tables().at("ONE").enumHandler(repo);
  EXPECT_EQ(module.collections, 1);
}

TEST(AddModules, GivesModulesThatLogEntryAndExitAlsoWhenNothingIsCollectedAnyMore) {
  const host::Recording recording;
  host::RecordedMachine machine(recording, nullptr);
  const pq::MachineInUse inUse(machine);
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  std::map<std::string, std::vector<std::string>> lines;
  for (const auto& module : modules) {
    if (module->GetName() == "AMT_Info") continue;  // It is tested for AMT again.
    module->RegisterTables();
    RRepository repo;
    const auto& enumerate = module->Tables().begin()->second.enumHandler;
    enumerate(repo);
    const LogKept log;
    enumerate(repo);
    lines[module->GetName()] = log.lines;
  }
  EXPECT_THAT(lines["sampleModule1"],
              ElementsAre("3 pqmodules/rsamplemodule1 [repo] Enter EnumPQ1Instances",
                          "3 pqmodules/rsamplemodule1 [repo] Exit EnumPQ1Instances"));
  EXPECT_THAT(lines["sampleModule2"],
              ElementsAre("3 pqmodules/rsamplemodule2 [repo] Enter EnumPQ2Instances",
                          "3 pqmodules/rsamplemodule2 [repo] Exit EnumPQ2Instances"));
  EXPECT_THAT(lines["BMC_Info"], ElementsAre("3 pqmodules/rbmcinfo [repo] Enter EnumBMCInstances",
                                             "3 pqmodules/rbmcinfo [repo] Exit EnumBMCInstances"));
  EXPECT_THAT(lines["Windows_Related_Info"],
              ElementsAre("3 pqmodules/rwininfo [repo] Enter EnumWINInstances",
                          "3 pqmodules/rwininfo [repo] Exit EnumWINInstances"));
}

TEST(CollectionModule, StaysCollectedWhenResourcesAreDropped) {
  ExampleModule module;
  RRepository repo;
  module.Enumerate(repo);
  module.DelDisuseResources();
  module.Enumerate(repo);
  EXPECT_EQ(module.collections, 1);
}

TEST(CollectionModule, GivesEachTableItsOwnLayout) {
  ExampleModule module;
  module.RegisterTables();
  RInstancesWrapper one;
  RInstancesWrapper two;
  module.Tables().at("ONE").layoutHandler(one);
  module.Tables().at("TWO").layoutHandler(two);
  EXPECT_TRUE(one.byRow);
  EXPECT_FALSE(two.byRow);
  EXPECT_THAT(two.headers, ElementsAre("a", "b"));
}

TEST(CollectionModule, KeepsOneEntryWithTheSecondCallbacksWhenRegisteredTwice) {
  ExampleModule module;
  module.RegisterTables();
  module.RegisterAgain();
  EXPECT_EQ(module.Tables().size(), 2u);
  RRepository repo;
  module.Tables().at("ONE").enumHandler(repo);
  EXPECT_EQ(module.secondEnumerations, 1);
  EXPECT_EQ(module.collections, 0);
  RInstancesWrapper one;
  module.Tables().at("ONE").layoutHandler(one);
  EXPECT_FALSE(one.byRow);
}

TEST(AddModules, AppendsTheFiveModulesBehindWhatTheHostHolds) {
  std::vector<boost::shared_ptr<RModule>> modules;
  modules.push_back(boost::make_shared<ExampleModule>());
  EXPECT_EQ(AddModules(modules), 0);
  std::vector<std::string> names;
  for (const auto& module : modules) names.push_back(module->GetName());
  EXPECT_THAT(names, ElementsAre("Example", "sampleModule1", "sampleModule2", "BMC_Info",
                                 "AMT_Info", "Windows_Related_Info"));
}

TEST(AddModules, DescribesItsModules) {
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  std::vector<std::string> descriptions;
  for (const auto& module : modules) descriptions.push_back(module->GetDescription());
  EXPECT_THAT(descriptions, ElementsAre("Sample Module 1", "Sample Module 2", "BMC information",
                                        "AMT Log", "Windows related information"));
}

TEST(AddModules, GivesModulesThatRegisteredNothingYet) {
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  for (const auto& module : modules) {
    EXPECT_TRUE(module->Tables().empty()) << module->GetName();
  }
}

/// The table classes of the module `name` after `registrations` registrations.
std::vector<std::string> TablesOfModule(const std::string& name, int registrations = 1) {
  std::vector<boost::shared_ptr<RModule>> modules;
  AddModules(modules);
  std::vector<std::string> tables;
  for (const auto& module : modules) {
    if (module->GetName() != name) continue;
    for (int i = 0; i < registrations; ++i) module->RegisterTables();
    for (const auto& [className, handlers] : module->Tables()) tables.push_back(className);
  }
  return tables;
}

TEST(RegisterTables, NamesTheTablesOfEveryModule) {
  EXPECT_THAT(TablesOfModule("Windows_Related_Info"), ElementsAre("ARPINFO", "NETSTATINFO"));
  EXPECT_THAT(TablesOfModule("AMT_Info"), ElementsAre("AMTLOG"));
  EXPECT_EQ(TablesOfModule("BMC_Info").size(), 10u);
  EXPECT_EQ(TablesOfModule("sampleModule1").size(), 8u);
  EXPECT_EQ(TablesOfModule("sampleModule2").size(), 17u);
}

TEST(RegisterTables, LeavesOneEntryPerTableWhenCalledTwice) {
  for (const char* name :
       {"sampleModule1", "sampleModule2", "BMC_Info", "AMT_Info", "Windows_Related_Info"}) {
    EXPECT_EQ(TablesOfModule(name, 2), TablesOfModule(name, 1)) << name;
  }
}

}  // namespace
}  // namespace pq
