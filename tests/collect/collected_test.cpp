#include "tests/support/collected.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "frame/logkit/log.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"

namespace test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;

host::Recording ArpRecording() {
  host::Recording recording;
  host::RecordedCommand arp;
  arp.tool = "arp.exe";
  arp.arguments = "-a";
  arp.standardOutput =
      "\r\nInterface: 10.1.0.7 --- 0x6\r\n"
      "  Internet Address      Physical Address      Type\r\n"
      "  10.1.0.1              02-00-5e-00-53-01     dynamic   \r\n";
  recording.commands.push_back(arp);
  return recording;
}

/// The event and the table (where it has one) of every line of a trace.
std::vector<std::string> Events(const std::string& trace) {
  std::vector<std::string> events;
  std::istringstream lines(trace);
  for (std::string line; std::getline(lines, line);) {
    const auto event = nlohmann::json::parse(line);
    events.push_back(event["event"].get<std::string>() + " " + event.value("table", ""));
  }
  return events;
}

TEST(Collected, HoldsRowsLogCommandLinesAndFiles) {
  const Collected collected = Collect(ArpRecording(), "Windows_Related_Info", {"ARPINFO"});
  EXPECT_THAT(
      collected.Rows("ARPINFO"),
      ElementsAre(ElementsAre("item1=10.1.0.1", "item2=02-00-5e-00-53-01", "item3=dynamic")));
  EXPECT_THAT(collected.LogTexts().front(), "3 Enter EnumWINInstances");
  EXPECT_THAT(collected.commandLines, Contains("/c arp.exe -a"));
  EXPECT_THAT(collected.files, Contains(Key("C:\\Halyard\\logs\\route.txt")));
  EXPECT_EQ(collected.openHandles, 0);
}

TEST(Collected, HasNoRowsOfATableThatStayedEmpty) {
  EXPECT_THAT(Collect(ArpRecording(), "Windows_Related_Info").Rows("NETSTATINFO"), IsEmpty());
}

TEST(Collected, LaysOutAndEnumeratesTheTablesInTheirOrder) {
  const std::vector<std::string> events =
      Events(Collect(ArpRecording(), "Windows_Related_Info", {"NETSTATINFO", "ARPINFO"}).trace);
  std::vector<std::string> steps;
  for (const std::string& event : events) {
    if (event == "module " || event.starts_with("layout") || event.starts_with("enumerate")) {
      steps.push_back(event);
    }
  }
  EXPECT_THAT(steps, ElementsAre("module ", "layout NETSTATINFO", "enumerate NETSTATINFO",
                                 "layout ARPINFO", "enumerate ARPINFO"));
}

TEST(Collected, EnumeratesEveryTableWithoutNames) {
  EXPECT_THAT(Events(Collect(ArpRecording(), "Windows_Related_Info").trace),
              testing::IsSupersetOf({"enumerate ARPINFO", "enumerate NETSTATINFO"}));
}

TEST(Collected, GivesTheSameTraceTwice) {
  EXPECT_EQ(Collect(ArpRecording(), "Windows_Related_Info").trace,
            Collect(ArpRecording(), "Windows_Related_Info").trace);
}

TEST(Collected, SeesNothingOfACollectionBefore) {
  const auto load = [](const char* sample) {
    return host::LoadRecording(SamplesFolder() + "/" + sample);
  };
  const host::Recording server = load("two-socket-server");
  for (const char* module :
       {"sampleModule1", "sampleModule2", "BMC_Info", "AMT_Info", "Windows_Related_Info"}) {
    const std::string alone = Collect(server, module).trace;
    for (const char* sample : {"hostile", "vroc", "blade", "amt-desktop"}) {
      Collect(load(sample), module);
      EXPECT_EQ(Collect(server, module).trace, alone) << module << " after " << sample;
    }
  }
}

TEST(Collected, ListensToNothingAfterwards) {
  const Collected collected = Collect(ArpRecording(), "Windows_Related_Info");
  const std::size_t lines = collected.log.size();
  LogKit::Log(3, "tests", 1).Stream() << "later";
  EXPECT_EQ(collected.log.size(), lines);
}

TEST(Collected, RefusesAModuleThatIsNotThere) {
  EXPECT_THROW(Collect({}, "Windows"), host::UsageError);
}

TEST(Collected, RefusesATableThatIsNotThere) {
  EXPECT_THROW(Collect({}, "Windows_Related_Info", {"ARP"}), host::UsageError);
}

}  // namespace
}  // namespace test
