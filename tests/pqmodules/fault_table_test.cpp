#include "tests/support/fault_table.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <boost/shared_ptr.hpp>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frame/add_modules.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"

namespace test {
namespace {

using testing::ElementsAreArray;

std::vector<std::string> StepsOf(const FaultScenario& scenario) {
  std::vector<std::string> steps;
  for (const FaultRow& row : scenario.rows) steps.push_back(row.commandLine);
  return steps;
}

FaultOutcome OutcomeOf(const FaultRow& row, Fault fault) {
  const auto stated = row.outcomes.find(fault);
  return stated == row.outcomes.end() ? FaultOutcome() : stated->second;
}

/// What holds after any run: it went to its end and cleaned up.
void ExpectWholeAndClean(const FaultScenario& scenario, const FaultRun& whole, const FaultRun& run,
                         int leftOpen) {
  EXPECT_EQ(run.lines.back(), whole.lines.back());
  EXPECT_EQ(run.instancesBuilt, run.instancesReleased);
  EXPECT_EQ(run.openHandles, scenario.leftOpen + leftOpen);
}

/// The steps up to and with `row` are those of a full run, and so are those behind it, unless
/// something else is stated or what follows depends on the step's output.
void ExpectFollowingSteps(const FaultScenario& scenario, const FaultRun& run, std::size_t row,
                          bool isTried, const FaultOutcome& outcome) {
  const std::vector<std::string> all = StepsOf(scenario);
  const auto behind = all.begin() + static_cast<std::ptrdiff_t>(row) + 1;
  std::vector<std::string> expected(all.begin(), isTried ? behind : behind - 1);
  if (scenario.rows[row].decides && !outcome.after) {
    ASSERT_GE(run.steps.size(), expected.size());
    const std::vector<std::string> start(
        run.steps.begin(), run.steps.begin() + static_cast<std::ptrdiff_t>(expected.size()));
    EXPECT_THAT(start, ElementsAreArray(expected));
    return;
  }
  const std::vector<std::string> after =
      outcome.after.value_or(std::vector<std::string>(behind, all.end()));
  expected.insert(expected.end(), after.begin(), after.end());
  EXPECT_THAT(run.steps, ElementsAreArray(expected));
}

enum class Lines {
  kExact,    ///< nothing else than the stated lines comes in addition
  kContain,  ///< what the tool printed is logged too
};

/// Every step that can meet `fault` meets it, each in a run of its own.
void MeetFault(const FaultScenario& scenario, Fault fault, Lines lines) {
  const FaultRun whole = RunWhole(scenario);
  ASSERT_EQ(whole.steps, StepsOf(scenario));
  for (std::size_t row = 0; row < scenario.rows.size(); ++row) {
    if (!CanMeet(scenario.rows[row].kind, fault)) continue;
    if (fault == Fault::kReportNotCreated && scenario.rows[row].sharesReport) continue;
    SCOPED_TRACE(scenario.rows[row].commandLine);
    const FaultOutcome outcome = OutcomeOf(scenario.rows[row], fault);
    const FaultRun run = RunWithFault(scenario, whole, row, fault);
    const std::vector<std::string> added = FindAddedLines(whole, run);
    if (lines == Lines::kExact) {
      EXPECT_THAT(added, ElementsAreArray(outcome.lines));
    } else {
      for (const std::string& line : outcome.lines) EXPECT_THAT(added, testing::Contains(line));
    }
    ExpectFollowingSteps(scenario, run, row, fault != Fault::kPipeFails, outcome);
    ExpectWholeAndClean(scenario, whole, run, outcome.leftOpen);
  }
}

/// `step` as it is for the first RAID controller: its further ones only repeat the same steps.
std::string ForFirstController(std::string step) {
  constexpr std::string_view kDigits = "0123456789";
  for (std::size_t at = 0; (at = step.find_first_of("/\\", at)) != std::string::npos; ++at) {
    if (step.compare(at + 1, 1, "c") != 0) continue;
    const std::size_t number = at + 2;
    const std::size_t end = std::min(step.find_first_not_of(kDigits, number), step.size());
    if (end > number) step.replace(number, end - number, "0");
  }
  return step;
}

/// The steps that any scenario of `module` names.
std::set<std::string> StepsNamedFor(const std::string& module) {
  std::set<std::string> named;
  for (const FaultScenario& scenario : GetFaultScenarios()) {
    if (scenario.module != module) continue;
    for (const FaultRow& row : scenario.rows) named.insert(row.commandLine);
  }
  return named;
}

std::vector<std::string> ModuleNames() {
  std::vector<boost::shared_ptr<halyard::repository::RModule>> modules;
  AddModules(modules);
  std::vector<std::string> names;
  for (const auto& module : modules) names.push_back(module->GetName());
  return names;
}

TEST(FaultScenarios, CoverEveryStepThatTheSamplesMake) {
  for (const auto& sample : std::filesystem::directory_iterator(SamplesFolder())) {
    const auto recording = [&] { return host::LoadRecording(sample.path()); };
    for (const std::string& module : ModuleNames()) {
      SCOPED_TRACE(module + " on " + sample.path().filename().string());
      const std::set<std::string> named = StepsNamedFor(module);
      const FaultScenario run{.name = "", .module = module, .recording = recording, .rows = {}};
      for (const std::string& step : RunWhole(run).steps) {
        EXPECT_THAT(named, testing::Contains(ForFirstController(step)));
      }
    }
  }
}

class FaultTable : public testing::TestWithParam<FaultScenario> {};

TEST_P(FaultTable, NamesTheStepsOfAFullRun) {
  EXPECT_THAT(RunWhole(GetParam()).steps, ElementsAreArray(StepsOf(GetParam())));
}

TEST_P(FaultTable, MeetsFailedStarts) { MeetFault(GetParam(), Fault::kStartFails, Lines::kExact); }

TEST_P(FaultTable, MeetsFailedPipes) { MeetFault(GetParam(), Fault::kPipeFails, Lines::kExact); }

TEST_P(FaultTable, MeetsUnreadableExitCodes) {
  MeetFault(GetParam(), Fault::kExitCodeUnreadable, Lines::kExact);
}

TEST_P(FaultTable, MeetsReportsThatCannotBeCreated) {
  MeetFault(GetParam(), Fault::kReportNotCreated, Lines::kExact);
}

TEST_P(FaultTable, MeetsMissingTools) {
  MeetFault(GetParam(), Fault::kToolMissing, Lines::kContain);
}

TEST_P(FaultTable, MeetsToolsThatPrintNothing) {
  MeetFault(GetParam(), Fault::kNothingPrinted, Lines::kContain);
}

TEST_P(FaultTable, MeetsBinaryOutput) {
  MeetFault(GetParam(), Fault::kBinaryPrinted, Lines::kContain);
}

TEST_P(FaultTable, MeetsAFloodFromEveryTool) {
  const FaultScenario& scenario = GetParam();
  const FaultRun whole = RunWhole(scenario);
  std::vector<std::string> together;
  for (std::size_t row = 0; row < scenario.rows.size(); ++row) {
    const FaultRow& step = scenario.rows[row];
    if (!CanMeet(step.kind, Fault::kHugePrinted)) continue;
    if (!step.decides) {
      together.push_back(step.commandLine);
      continue;
    }
    SCOPED_TRACE(step.commandLine);
    const FaultOutcome outcome = OutcomeOf(step, Fault::kHugePrinted);
    const FaultRun run = RunFlooded(scenario, {step.commandLine});
    ExpectFollowingSteps(scenario, run, row, true, outcome);
    ExpectWholeAndClean(scenario, whole, run, outcome.leftOpen);
  }
  int leftOpen = 0;
  for (const FaultRow& step : scenario.rows) {
    if (!step.decides) leftOpen += OutcomeOf(step, Fault::kHugePrinted).leftOpen;
  }
  const FaultRun run = RunFlooded(scenario, together);
  EXPECT_THAT(run.steps, ElementsAreArray(StepsOf(scenario)));
  ExpectWholeAndClean(scenario, whole, run, leftOpen);
}

TEST_P(FaultTable, MeetsALogFolderThatCannotBeWritten) {
  const FaultScenario& scenario = GetParam();
  const FaultRun whole = RunWhole(scenario);
  const FaultRun run = RunWithoutLogFolder(scenario);
  const auto firstDeciding =
      std::find_if(scenario.rows.begin(), scenario.rows.end(), [](const FaultRow& row) {
        return row.decides && CanMeet(row.kind, Fault::kReportNotCreated);
      });
  const std::vector<std::string> all = StepsOf(scenario);
  const bool isSame = firstDeciding == scenario.rows.end();
  const std::ptrdiff_t common =
      isSame ? static_cast<std::ptrdiff_t>(all.size()) : firstDeciding - scenario.rows.begin() + 1;
  ASSERT_GE(run.steps.size(), static_cast<std::size_t>(common));
  EXPECT_TRUE(std::equal(all.begin(), all.begin() + common, run.steps.begin()));
  if (isSame) {
    EXPECT_EQ(run.steps.size(), all.size());
  }
  EXPECT_EQ(run.lines.back(), whole.lines.back());
  EXPECT_EQ(run.instancesBuilt, run.instancesReleased);
  // What was never opened cannot stay open.
  EXPECT_LE(run.openHandles, scenario.leftOpen);
}

INSTANTIATE_TEST_SUITE_P(Modules, FaultTable, testing::ValuesIn(GetFaultScenarios()),
                         [](const testing::TestParamInfo<FaultScenario>& info) {
                           return info.param.name;
                         });

}  // namespace

/// How a scenario shows in a failed test.
void PrintTo(const FaultScenario& scenario, std::ostream* out) { *out << scenario.name; }

}  // namespace test
