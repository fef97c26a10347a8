// A collection that takes longer than --time-limit says.
#include <gmock/gmock.h>

#include <chrono>
#include <sstream>
#include <thread>

#include "host/pqhost/gather.h"
#include "tests/support/program/host_run.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Takes two seconds for its first tool.
class Slow final : public CollectionListener {
 public:
  void OnProcessEnd(std::uint32_t /*exitCode*/) override {
    if (++ended == 1) std::this_thread::sleep_for(std::chrono::seconds(2));
  }
  int ended = 0;
};

Gathered Collect(std::optional<unsigned> seconds, Slow& slow) {
  std::ostringstream out;
  std::ostringstream error;
  const Console console{.programName = "pqhost", .out = out, .error = error};
  SourceOptions source;
  source.replay = test::Sample("two-socket-server");
  source.seconds = seconds;
  return Gather(source, {{}, {"ARPINFO", "NETSTATINFO"}}, console, KeepLog::kNo,
                [&](CollectionListeners& all) { all.Add(slow); });
}

TEST(OverdueCollection, RunsNoFurtherToolAndSaysSo) {
  Slow slow;
  const Gathered gathered = Collect(1, slow);
  EXPECT_EQ(slow.ended, 1);
  EXPECT_THAT(gathered.collection.problems,
              ElementsAre(HasSubstr("interrupted"),
                          "the collection took longer than 1 second (--time-limit)"));
}

TEST(OverdueCollection, IsNoneWithinItsTime) {
  Slow slow;
  EXPECT_THAT(Collect(100, slow).collection.problems, ElementsAre());
  EXPECT_GT(slow.ended, 1);
}

}  // namespace
}  // namespace host
