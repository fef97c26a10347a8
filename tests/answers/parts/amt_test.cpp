#include "host/answers/parts/amt.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"

namespace {

using host::Integer;
using host::Parts;
using testing::IsEmpty;

host::Recording MakeMachine(const std::string& log) {
  host::Recording machine;
  machine.console = "192.0.2.1 admin secret\n";
  machine.commands.push_back({"check_amt_bmc.exe", "amt", "", "", 1});
  machine.commands.push_back({"amt_log.exe", "192.0.2.1 admin secret", log, ""});
  return machine;
}

Parts ReadAmt(const host::Recording& machine) {
  return host::ReadParts(host::Collect(machine, host::Selection{{"AMT_Info"}, {}}));
}

std::string FindAmtSource(const Parts& parts) {
  const auto source = std::find_if(parts.sources.begin(), parts.sources.end(),
                                   [](const auto& one) { return one.id == "amt"; });
  return source == parts.sources.end() ? "" : source->state + ": " + source->observed;
}

TEST(AmtParts, AreEntriesWithDeviceAndText) {
  const Parts parts = ReadAmt(
      MakeMachine("AMT event log of 192.0.2.1, 3 records\n\n"
                  "  1  2022-03-07 06:58:11  Informational  System firmware    Starting  to boot\n"
                  "  2  2022-03-08 06:56:20  Critical       Watchdog           Agent stopped\n"
                  "  3  2022-03-08 06:56\n"
                  "\nEnd of log.\n"));
  EXPECT_EQ(FindAmtSource(parts), "read: ");
  ASSERT_EQ(parts.events.size(), 2U);
  const host::Event& event = parts.events[1];
  EXPECT_EQ(event.id, "amt 2");
  EXPECT_EQ(event.source, "AMT");
  EXPECT_EQ(event.number, Integer(2));
  EXPECT_EQ(event.time, "2022-03-08T06:56:20");
  EXPECT_EQ(event.level, Integer(2));
  EXPECT_EQ(event.kind, "Watchdog");
  EXPECT_EQ(event.text, "Agent stopped");
  EXPECT_EQ(event.readAt.row, 4);
  EXPECT_EQ(parts.events[0].text, "Starting  to boot");
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].text, "3  2022-03-08 06:56");
}

TEST(AmtParts, AreEntriesOfOneWordToo) {
  const Parts parts =
      ReadAmt(MakeMachine("AMT event log of 192.0.2.1, 2 records\n\n"
                          "  1  2022-03-07 06:58:11  Critical  Overheated\n"
                          "  2  2022-03-07 06:58:12  Critical\n"
                          "\nEnd of log.\n"));
  ASSERT_EQ(parts.events.size(), 1U);
  EXPECT_EQ(parts.events[0].kind, "");
  EXPECT_EQ(parts.events[0].text, "Overheated");
  ASSERT_EQ(parts.unread.size(), 1U);
  EXPECT_EQ(parts.unread[0].text, "2  2022-03-07 06:58:12  Critical");
}

TEST(AmtSource, IsReadWithAnEmptyLog) {
  EXPECT_EQ(
      FindAmtSource(ReadAmt(MakeMachine("AMT event log of 192.0.2.1, 0 records\n\nEnd of log.\n"))),
      "read: ");
}

TEST(AmtSource, FailsWhenTheLogBreaksOff) {
  const Parts parts = ReadAmt(MakeMachine(
      "AMT event log of 192.0.2.1, 3 records\n\n"
      "  1  2022-03-07 06:58:11  Informational  System firmware    Starting to boot\n"));
  EXPECT_EQ(FindAmtSource(parts), "failed: the log breaks off: 1 of 3 records");
  EXPECT_EQ(parts.events.size(), 1U);
}

TEST(AmtSource, FailsWithTextThatIsNoLog) {
  const Parts parts = ReadAmt(MakeMachine("Error: cannot connect\n"));
  EXPECT_EQ(FindAmtSource(parts), "failed: no entry in the log");
  EXPECT_THAT(parts.events, IsEmpty());
}

TEST(AmtSource, FailsWithTheTool) {
  host::Recording machine = MakeMachine("");
  EXPECT_EQ(FindAmtSource(ReadAmt(machine)), "failed: amt_log.exe printed nothing");
  machine.commands.back().exitCode = 5;
  EXPECT_EQ(FindAmtSource(ReadAmt(machine)), "failed: amt_log.exe ended with code 5");
}

TEST(AmtSource, IsNoneWithoutALogin) {
  host::Recording machine = MakeMachine("");
  machine.console = "\n";
  EXPECT_EQ(FindAmtSource(ReadAmt(machine)), "none: no AMT address and credentials were given");
}

}  // namespace
