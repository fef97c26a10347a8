// Threads of one process collect side by side, and none of them sees another.
#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <vector>

#include "host/recorded/recording.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace host {
namespace {

// Each thread begins with another sample, so that different ones run side by side.
TEST(SeveralThreads, GiveTheSameTracesAsOne) {
  constexpr std::size_t kThreads = 8;
  constexpr std::size_t kCollections = PQ_HAS_ADDRESS_SANITIZER ? 20 : 200;
  std::vector<Recording> recordings;
  std::vector<std::string> alone;
  for (const auto& [name, recording] : test::LoadSamples()) {
    recordings.push_back(recording);
    alone.push_back(test::CollectTrace(recording));
  }
  std::vector<std::size_t> different(kThreads, 0);
  std::vector<std::thread> threads;
  for (std::size_t thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (std::size_t i = 0; i < kCollections; ++i) {
        const std::size_t sample = (thread + i) % recordings.size();
        if (test::CollectTrace(recordings[sample]) != alone[sample]) ++different[thread];
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(different, testing::Each(0U));
}

}  // namespace
}  // namespace host
