// The order in which every step of every module works: when it logs, waits, closes what it has
// open, and lets go of its rows. The lists are in tests/data/order, a heading (#) for each step.

#include <gmock/gmock.h>

#include <string>

#include "tests/support/event_list.h"
#include "tests/support/step_scenarios.h"

namespace {

using test::StepScenario;

class Order : public testing::TestWithParam<StepScenario> {};

TEST_P(Order, IsThatOfTheList) {
  const StepScenario& scenario = GetParam();
  test::EventList events(scenario.recording());
  for (int i = 0; i < scenario.enumerations; ++i) {
    events.Enumerate(scenario.module, scenario.table);
  }
  EXPECT_EQ(events.Text(), test::ReadList("order/" + scenario.name + ".txt"));
}

INSTANTIATE_TEST_SUITE_P(Modules, Order, testing::ValuesIn(test::ListStepScenarios()),
                         [](const testing::TestParamInfo<StepScenario>& info) {
                           return info.param.name;
                         });

}  // namespace
