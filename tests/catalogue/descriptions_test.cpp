// What the modules tell of themselves: the host reads every sentence of it, and the modules log
// every one.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "frame/description.h"
#include "frame/sentences.h"
#include "host/answers/tool_versions.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/failures.h"
#include "host/collect/status_explainer.h"
#include "host/collect/tool_history.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_reader.h"
#include "pqmodules/rsamplemodule1/microchip_archive.h"
#include "tests/support/bmc_machine.h"
#include "tests/support/collected.h"
#include "tests/support/fake_platform.h"
#include "tests/support/fault_table.h"
#include "tests/support/log_lines.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/raid_tools.h"
#include "tests/support/refused_allocation.h"

namespace test {
namespace {

using host::GetModuleDescriptions;
using pq::StepFailure;

host::LogLine MakeLine(const std::string& text) { return {4, "f", 1, pq::kLogPrefix + text}; }

/// The first table of `module` that a tool, or the tool `program`, serves.
const pq::TableDescription& FindServedTable(const pq::ModuleDescription& module,
                                            const std::string& program = {}) {
  for (const pq::TableDescription& table : module.tables) {
    if (table.commands.empty()) continue;
    if (program.empty() || table.commands.front().program == program) return table;
  }
  throw std::invalid_argument(module.name + " runs no tool");
}

/// The table's status after its first tool ran well, printed something, and the module logged
/// `text`.
host::TableStatus StatusAfterRun(const pq::ModuleDescription& module,
                                 const pq::TableDescription& table, const std::string& text) {
  host::ToolHistory history;
  history.Module(module.name, "");
  const pq::ToolCommand& command = table.commands.front();
  history.OnProcess("cmd.exe", "/c \"C:\\H" + command.program + "\" " + command.arguments, false,
                    false);
  history.OnProcessEnd(0);
  history.Log(MakeLine(text));
  return host::StatusExplainer(history).FindStatus(module.name, table.className, 0);
}

/// The table's status after the module logged `text` and ran nothing.
host::TableStatus StatusAfterLog(const pq::ModuleDescription& module, const std::string& className,
                                 const std::string& text) {
  host::ToolHistory history;
  history.Module(module.name, "");
  history.Log(MakeLine(text));
  return host::StatusExplainer(history).FindStatus(module.name, className, 0);
}

std::string FindOutcome(StepFailure failure) {
  switch (failure) {
    case StepFailure::kToolNotRun:
      return "could not start";
    case StepFailure::kOutputNotOpened:
    case StepFailure::kNothingToReport:
      return "output could not be opened";
    default:
      return "nothing printed";
  }
}

TEST(ModuleDescriptions, HaveTheirFailureSentencesInTheStatusOfTables) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    EXPECT_EQ(StatusAfterRun(module, FindServedTable(module), "some progress").outcome,
              "nothing printed");
    for (const pq::FailureSentence& known : module.failures) {
      SCOPED_TRACE(module.name + ": " + known.sentence);
      const pq::TableDescription& table = FindServedTable(module, known.program);
      const host::TableStatus status = StatusAfterRun(module, table, known.sentence);
      EXPECT_EQ(status.outcome, FindOutcome(known.failure));
    }
  }
}

TEST(ModuleDescriptions, HaveTheirFailureSentencesAmongTheFailures) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::FailureSentence& known : module.failures) {
      SCOPED_TRACE(module.name + ": " + known.sentence);
      host::FailureList list;
      list.Module(module.name, "");
      list.OnProcess("cmd.exe", "/c route print", false, false);
      list.Log(MakeLine(known.sentence));
      if (known.failure == StepFailure::kNothingToReport) {
        EXPECT_TRUE(list.Failures().empty());
        continue;
      }
      ASSERT_EQ(list.Failures().size(), 1u);
      const std::string last = known.failure == StepFailure::kBeforeTool ? "" : "route";
      const std::string own = known.program.substr(known.program.rfind('\\') + 1);
      EXPECT_EQ(list.Failures()[0].tool, own.empty() ? last : own);
    }
  }
}

TEST(ModuleDescriptions, HaveTheirExplanationsInTheStatusOfTables) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::Explanation& known : module.explanations) {
      const std::string value = known.usualValue.empty() ? "" : "1031";
      for (const pq::TableDescription& table : module.tables) {
        SCOPED_TRACE(table.className + ": " + known.sentence);
        const bool isConcerned =
            known.tables.empty() ||
            std::ranges::find(known.tables, table.className) != known.tables.end();
        const host::TableStatus status =
            StatusAfterLog(module, table.className, known.sentence + value);
        EXPECT_EQ(status.outcome, isConcerned ? known.outcome : "not reached");
        if (isConcerned) {
          EXPECT_EQ(status.text, known.text);
        }
      }
    }
  }
}

TEST(ModuleDescriptions, ExplainNothingByTheUsualValue) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::Explanation& known : module.explanations) {
      if (known.usualValue.empty()) continue;
      const std::string text = known.sentence + known.usualValue;
      EXPECT_EQ(StatusAfterLog(module, known.tables.front(), text).outcome, "not reached");
    }
  }
}

TEST(ModuleDescriptions, NameTheTablesOfTheirOwnModule) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    std::set<std::string> classes;
    for (const pq::TableDescription& table : module.tables) classes.insert(table.className);
    for (const pq::Explanation& known : module.explanations) {
      for (const std::string& name : known.tables) EXPECT_TRUE(classes.contains(name)) << name;
    }
    for (const pq::AnswerExplanation& known : module.answers) {
      for (const std::string& name : known.tables) EXPECT_TRUE(classes.contains(name)) << name;
    }
    for (const pq::VersionLine& line : module.versionLines) {
      EXPECT_TRUE(classes.contains(line.className)) << line.className;
    }
  }
}

TEST(ModuleDescriptions, HaveAnErrorTextOfToolsInTheStatusOfTables) {
  int modules = 0;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    if (module.toolErrorText.empty()) continue;
    ++modules;
    const std::string whole = std::string(pq::kWholeOutput) + module.toolErrorText + " 7";
    EXPECT_EQ(StatusAfterRun(module, FindServedTable(module), whole).outcome,
              "tool reported an error");
  }
  EXPECT_EQ(modules, 2);
}

TEST(ModuleDescriptions, SayWhyATableIsAlwaysEmpty) {
  int tables = 0;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      if (table.whyAlwaysEmpty.empty()) continue;
      ++tables;
      const host::TableStatus status = StatusAfterLog(module, table.className, "");
      EXPECT_EQ(status.outcome, "always empty");
      EXPECT_EQ(status.text, table.whyAlwaysEmpty);
    }
  }
  EXPECT_EQ(tables, 1);
}

TEST(ModuleDescriptions, HaveMissingPresenceTestsAmongTheFailures) {
  int tests = 0;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::PresenceTest& presence : module.presenceTests) {
      ++tests;
      host::FailureList list;
      list.FindMissingPrograms([](const std::string&) { return false; });
      list.OnProcess("cmd.exe", "/c \"C:\\H" + presence.commandEnd, false, false);
      ASSERT_EQ(list.Failures().size(), 1u);
      EXPECT_EQ(
          list.Failures()[0].text,
          "the program is missing, so it is not known whether the machine has " + presence.device);
    }
  }
  EXPECT_EQ(tests, 2);
}

TEST(ModuleDescriptions, HaveTheirVersionLinesRead) {
  int lines = 0;
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::VersionLine& line : module.versionLines) {
      ++lines;
      MadeCollection made;
      made.Table(line.className).Row({{"Text", line.label + " 1.2.3\r\n"}});
      const auto versions = host::FindToolVersions(made.Get());
      ASSERT_EQ(versions.size(), 1u) << line.label;
      EXPECT_EQ(versions[0].tool, line.tool);
      EXPECT_EQ(versions[0].version, "1.2.3");
    }
  }
  EXPECT_EQ(lines, 5);
}

TEST(ModuleDescriptions, HaveTextsForAllColumns) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) {
      EXPECT_FALSE(table.title.empty()) << table.className;
      for (const pq::ColumnDescription& column : table.columns) {
        EXPECT_FALSE(column.text.empty()) << table.className << " " << column.key;
      }
    }
  }
}

/// "module: text" of every line that modules log.
using LoggedLines = std::set<std::string>;

void Keep(LoggedLines& logged, const std::string& module, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) logged.insert(module + ": " + line.substr(2));
}

/// Every step of the fault table meets every fault that takes away a tool, a pipe or a report.
void KeepFaults(LoggedLines& logged) {
  for (const FaultScenario& scenario : GetFaultScenarios()) {
    const FaultRun whole = RunWhole(scenario);
    Keep(logged, scenario.module, whole.lines);
    for (std::size_t row = 0; row < scenario.rows.size(); ++row) {
      for (const Fault fault : {Fault::kStartFails, Fault::kPipeFails, Fault::kExitCodeUnreadable,
                                Fault::kReportNotCreated}) {
        if (!CanMeet(scenario.rows[row].kind, fault)) continue;
        Keep(logged, scenario.module, RunWithFault(scenario, whole, row, fault).lines);
      }
    }
  }
}

void KeepDetections(LoggedLines& logged) {
  for (const std::uint32_t exitCode : {4, 5, 7, 9, 11, 255}) {
    Keep(logged, "BMC_Info", Collect(MakeBmcMachine(exitCode), "BMC_Info").LogTexts());
  }
}

void KeepLogins(LoggedLines& logged) {
  for (const char* typed : {"\n", "  \n"}) {
    host::Recording machine = host::LoadRecording(SamplesFolder() + "/amt-desktop");
    machine.console = typed;
    Keep(logged, "AMT_Info", Collect(machine, "AMT_Info").LogTexts());
  }
}

void KeepMissingMemory(LoggedLines& logged) {
  constexpr std::size_t kSize = 54320;
  const RefusedAllocation refused(kSize + 1);
  RaidTools tools("Controller Count = 1\n");
  tools.Storcli("/c0 show", std::string(kSize, 'x'));
  tools.recording.files["C:\\Support\\Firmware\\Controller_1_Config.txt"] = std::string(kSize, 'x');
  for (const char* module : {"sampleModule1", "sampleModule2"}) {
    Keep(logged, module, Collect(tools.recording, module).LogTexts());
  }
}

/// An archive whose files vanish once its configuration has been opened.
void KeepVanishedArchive(LoggedLines& logged) {
  class Vanishing final : public FakePlatform {
   public:
    std::unique_ptr<pq::TextFile> OpenText(const std::string& path) override {
      class Empty final : public pq::TextFile {
       public:
        bool ReadLine(char* /*buffer*/, std::size_t /*size*/) override { return false; }
        void Rewind() override {}
        std::uint64_t SizeAndRewind() override { return 0; }
      };
      if (path.find("Config") == std::string::npos || wasOpened) return nullptr;
      wasOpened = true;
      return std::make_unique<Empty>();
    }
    bool wasOpened = false;
  } machine;
  const pq::MachineInUse inUse(machine);
  const LogLines log;
  constexpr pq::ModuleLog kLog{"pqmodules/rsamplemodule1"};
  halyard::repository::RRepository repository;
  pq::CollectMicrochipArchive({repository, kLog, "C:\\Halyard"});
  for (std::string line : log.texts) {
    logged.insert("sampleModule1: " + line.erase(0, std::string("4 [repo] ").size()));
  }
}

TEST(ModuleDescriptions, AreOfSentencesThatTheModulesLog) {
  LoggedLines logged;
  KeepFaults(logged);
  KeepDetections(logged);
  KeepLogins(logged);
  KeepMissingMemory(logged);
  KeepVanishedArchive(logged);
  const auto isLogged = [&](const std::string& sentence) {
    const auto found = logged.lower_bound(sentence);
    return found != logged.end() && found->starts_with(sentence);
  };
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::FailureSentence& known : module.failures) {
      EXPECT_TRUE(isLogged(module.name + ": " + known.sentence)) << known.sentence;
    }
    for (const pq::Explanation& known : module.explanations) {
      EXPECT_TRUE(isLogged(module.name + ": " + known.sentence)) << known.sentence;
    }
  }
}

TEST(ModuleDescriptions, HoldEveryFailureOfTheFaultTable) {
  for (const FaultScenario& scenario : GetFaultScenarios()) {
    const pq::ModuleDescription* module = host::FindModuleDescription(scenario.module);
    ASSERT_NE(module, nullptr);
    for (const FaultRow& row : scenario.rows) {
      for (const Fault fault : {Fault::kStartFails, Fault::kPipeFails}) {
        const auto outcome = row.outcomes.find(fault);
        if (outcome == row.outcomes.end()) continue;
        const bool isDescribed =
            std::ranges::any_of(outcome->second.lines, [&](const std::string& line) {
              return std::ranges::any_of(module->failures, [&](const pq::FailureSentence& known) {
                return line.substr(2).starts_with(known.sentence);
              });
            });
        EXPECT_TRUE(isDescribed) << row.commandLine;
      }
    }
  }
}

}  // namespace
}  // namespace test
