// What the built library asks Windows for: every argument of every call, and the order in which it
// closes what it was given. The lists are in tests/data/calls, a heading (#) for each step.

#include "tests/support/program/windows/library_calls.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/live/windows/module_image.h"
#include "tests/support/bmc_machine.h"
#include "tests/support/step_scenarios.h"

namespace test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Calls : public testing::TestWithParam<StepScenario> {};

/// What a collection leaves open on purpose: the report that counts controllers, and of a query
/// that meets an error the tool, which is not waited for.
const std::map<std::string, std::vector<std::string>> kLeftOpen = {
    {"bmc_ailing", {"process", "thread"}},
    {"raid_inventory", {"ctrlcount.txt"}},
    {"raid_inventory_bare", {"ctrlcount.txt"}},
};

TEST_P(Calls, AreThoseOfTheList) {
  const StepScenario& scenario = GetParam();
  LibraryCalls calls(scenario.recording());
  // Of a machine that records an error for it, the query of versions.
  if (scenario.name == "bmc_ailing") calls.FailPipe(3, 8);
  calls.Collect(scenario.module, scenario.table, scenario.enumerations);
  EXPECT_EQ(calls.Text(), ReadList("calls/" + scenario.name + ".txt"));
  const auto left = kLeftOpen.find(scenario.name);
  EXPECT_EQ(calls.ListOpen(), left == kLeftOpen.end() ? std::vector<std::string>() : left->second);
}

INSTANTIATE_TEST_SUITE_P(Modules, Calls, testing::ValuesIn(ListStepScenarios()),
                         [](const testing::TestParamInfo<StepScenario>& info) {
                           return info.param.name;
                         });

TEST(LibraryCalls, AreTheSameWithRealTools) {
  LibraryCalls calls(MakeBmcMachine(5), Tools::kReal);
  calls.Collect("BMC_Info", "MCINFO", 2);
  EXPECT_EQ(calls.Text(), ReadList("calls/bmc_family_5.txt"));
  EXPECT_THAT(calls.ListOpen(), IsEmpty());
  const std::size_t before = CountHandles();
  calls.Collect("BMC_Info", "MCINFO");
  EXPECT_EQ(CountHandles(), before);
}

// A thousand collections with real processes would take an hour, so here the recording answers;
// pipes, events and files are the system's.
TEST(LibraryCalls, LeaveAsManyHandlesAfterAThousandCollections) {
  const std::set<std::string> kAllKindsOfSteps = {"windows_us_english", "amt", "bmc_family_5",
                                                  "raid_logs_bare"};
  for (const StepScenario& scenario : ListStepScenarios()) {
    if (!kAllKindsOfSteps.contains(scenario.name)) continue;
    LibraryCalls calls(scenario.recording());
    calls.Collect(scenario.module, scenario.table);
    const std::size_t before = CountHandles();
    for (std::size_t i = 0; i < 1000 / kAllKindsOfSteps.size(); ++i) {
      calls.ForgetCalls();
      calls.Collect(scenario.module, scenario.table);
    }
    EXPECT_EQ(CountHandles(), before) << scenario.name;
    EXPECT_THAT(calls.ListOpen(), IsEmpty()) << scenario.name;
  }
}

TEST(LibraryCalls, AreAllWatched) {
  HMODULE library = LoadLibraryA("repository_pqmodule.dll");
  ASSERT_NE(library, nullptr);
  // What the compiler's runtime asks for, in its own affairs.
  const std::set<std::string> kRuntime = {"DeleteCriticalSection",
                                          "EnterCriticalSection",
                                          "InitializeCriticalSection",
                                          "IsDBCSLeadByteEx",
                                          "LeaveCriticalSection",
                                          "MultiByteToWideChar",
                                          "Sleep",
                                          "TlsGetValue",
                                          "VirtualProtect",
                                          "VirtualQuery",
                                          "WideCharToMultiByte"};
  const std::vector<std::string> watched = ListWatchedImports();
  std::vector<std::string> others;
  for (const host::Import& import : host::ListImports(library)) {
    if (_stricmp(import.library.c_str(), "kernel32.dll") != 0) continue;
    if (kRuntime.contains(import.function)) continue;
    if (std::ranges::find(watched, import.function) == watched.end()) {
      others.push_back(import.function);
    }
  }
  // An error is read, and a process ended, without an argument that matters.
  EXPECT_THAT(others, ElementsAre("GetLastError", "RaiseFailFastException"));
}

}  // namespace
}  // namespace test
