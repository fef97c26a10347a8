// What holds for every machine, on machines made at random.
#include <gmock/gmock.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "host/collect/collect.h"
#include "tests/support/random_recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace host {
namespace {

using test::MakeRandomRecording;
using testing::ElementsAre;

constexpr std::uint64_t kSeeds = PQ_HAS_ADDRESS_SANITIZER ? 50 : 150;

TEST(RandomRecordings, GiveTheSameTracesInAnyOrder) {
  constexpr std::uint64_t kTwice = PQ_HAS_ADDRESS_SANITIZER ? 10 : kSeeds;
  std::map<std::uint64_t, std::string> traces;
  for (std::uint64_t seed = 0; seed < kTwice; ++seed) {
    traces[seed] = test::CollectTrace(MakeRandomRecording(seed));
  }
  for (std::uint64_t seed = kTwice; seed-- > 0;) {
    EXPECT_EQ(test::CollectTrace(MakeRandomRecording(seed)) == traces[seed], true) << seed;
  }
}

TEST(RandomRecordings, HaveARowForEveryTable) {
  std::set<std::string> empty;
  for (const CollectedTable& table : Collect(Recording()).tables) empty.insert(table.className);
  for (std::uint64_t seed = 0; seed < kSeeds && empty.size() > 1; ++seed) {
    for (const CollectedTable& table : Collect(MakeRandomRecording(seed)).tables) {
      if (table.RowCount() > 0) empty.erase(table.className);
    }
  }
  EXPECT_THAT(empty, ElementsAre("JUNADDTABLE"));  // never has any
}

TEST(RandomRecordings, LeaveNoTableWithoutAReason) {
  for (std::uint64_t seed = 0; seed < kSeeds; ++seed) {
    const Collection collection = Collect(MakeRandomRecording(seed));
    for (const CollectedTable& table : collection.tables) {
      EXPECT_EQ(table.status.outcome == "rows", table.RowCount() > 0) << seed << table.className;
      EXPECT_NE(table.status.text, "") << seed << table.className;
    }
    for (const CollectedAnswer& answer : collection.answers) {
      EXPECT_NE(answer.commandLine, "") << seed;
      EXPECT_NE(answer.module, "") << seed << answer.commandLine;
    }
  }
}

}  // namespace
}  // namespace host
