// Ctrl-C during a collection.

#include <gmock/gmock.h>
#include <signal.h>

#include <sstream>
#include <stdexcept>

#include "host/pqhost/gather.h"
#include "host/program/interruption.h"
#include "tests/support/posix/heard_signals.h"
#include "tests/support/program/host_run.h"

namespace host {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// Presses Ctrl-C while the tool `number`, counted from 1, is running, and counts what runs.
class PressesAt final : public CollectionListener {
 public:
  explicit PressesAt(int number) : number(number) {}
  void OnProcess(const std::string& /*application*/, const std::string& /*commandLine*/,
                 bool /*inheritHandles*/, bool /*pipe*/) override {
    ++started;
  }
  void OnProcessEnd(std::uint32_t /*exitCode*/) override {
    if (++ended == number) raise(SIGINT);
  }
  void Module(const std::string& /*name*/, const std::string& /*description*/) override {}
  void Enumerate(const std::string& /*module*/, const std::string& table) override {
    enumerated.push_back(table);
  }
  int started = 0;
  int ended = 0;
  std::vector<std::string> enumerated;

 private:
  int number;
};

class InterruptedCollection : public testing::Test {
 protected:
  InterruptedCollection() : gathered(Collect()) {}

  Gathered Collect() {
    EndCleanlyWhenAsked(7);
    SourceOptions source;
    source.replay = test::Sample("two-socket-server");
    const Console console{.programName = "pqhost", .out = out, .error = error};
    return Gather(source, {}, console, KeepLog::kNo,
                  [&](CollectionListeners& all) { all.Add(listener); });
  }

  const CollectedTable& Table(const std::string& className) {
    for (const CollectedTable& table : gathered.collection.tables) {
      if (table.className == className) return table;
    }
    throw std::runtime_error("no table " + className);
  }

  const test::HeardSignals signals;
  std::ostringstream out;
  std::ostringstream error;
  PressesAt listener{3};
  Gathered gathered;
};

TEST_F(InterruptedCollection, RunsNoFurtherTool) { EXPECT_EQ(listener.ended, 3); }

TEST_F(InterruptedCollection, EnumeratesNoFurtherTable) {
  EXPECT_THAT(listener.enumerated, SizeIs(1));
}

TEST_F(InterruptedCollection, SaysSoAndNothingElse) {
  ASSERT_THAT(gathered.collection.problems, SizeIs(1));
  EXPECT_THAT(gathered.collection.problems[0], HasSubstr("interrupted"));
}

TEST_F(InterruptedCollection, TellsOfEveryTableThatItWasInterrupted) {
  for (const char* className : {"ARPINFO", "NETSTATINFO", "SENSORINFO", "MCINFO"}) {
    EXPECT_EQ(Table(className).status.outcome, "interrupted") << className;
  }
}

}  // namespace
}  // namespace host
