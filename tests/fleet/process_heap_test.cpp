#include "fleet/process_heap.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "fleet/isolation.h"

namespace {

/// In a process that uses it; what it throws or does otherwise is told by the answer.
std::string RunWithHeap(const std::function<std::string()>& work) {
  fleet::IsolationLimits limits;
  limits.memory = std::uint64_t{8} << 30;  // more than the whole test program has already
  const fleet::IsolatedAnswer answer = fleet::RunIsolated(work, limits, fleet::Sandbox::kStrict);
  return answer.failure.empty() ? answer.answer : answer.failure;
}

TEST(ProcessHeap, GivesEachPieceItsOwnRoom) {
  const std::string told = RunWithHeap([] {
    std::vector<std::string> texts;
    for (int round = 0; round < 3; ++round) {
      for (std::size_t size = 1; size < std::size_t{3} << 20; size += size / 7 + 1) {
        texts.emplace_back(size, static_cast<char>('a' + texts.size() % 26));
        if (reinterpret_cast<std::uintptr_t>(std::make_unique<long double>().get()) % 16 != 0) {
          return "not aligned";
        }
      }
      // Every other one is given back, and its room is used by the next round.
      for (std::size_t i = 0; i < texts.size(); i += 2) texts[i] = {};
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
      const auto own = static_cast<char>('a' + i % 26);
      if (texts[i].find_first_not_of(own) != std::string::npos) return "another has written there";
    }
    return "kept";
  });
  EXPECT_EQ(told, "kept");
}

TEST(ProcessHeap, TakesBackWhatWasThereBefore) {
  auto before = std::make_unique<std::string>(100, 'b');
  const std::string told = RunWithHeap([&] {
    for (int i = 0; i < 100; ++i) *before = std::string(static_cast<std::size_t>(i) * 1000, 'x');
    before.reset();
    return "taken";
  });
  EXPECT_EQ(told, "taken");
  EXPECT_EQ(*before, std::string(100, 'b'));
}

TEST(ProcessHeap, GoesOnWithoutRoom) {
  const std::string told = RunWithHeap([] {
    std::vector<std::string> texts;
    while (texts.size() < 1000) texts.emplace_back(100'000, 'x');
    return std::to_string(texts.size());
  });
  EXPECT_EQ(told, "1000");
}

}  // namespace
