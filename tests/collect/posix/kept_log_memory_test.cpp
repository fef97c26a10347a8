// How much memory a kept log takes.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "host/collect/kept_log.h"
#include "tests/support/allocated_bytes.h"

namespace host {
namespace {

/// What a log takes of which lines were logged word by word.
std::size_t MeasureWords(int count) {
  const std::size_t before = test::CountAllocatedBytes();
  KeptLog log;
  for (int i = 0; i < count; ++i) {
    log.Add({4, "pqmodules/a", 80, "[repo] client-" + std::to_string(1'000'000 + i) + ":50112"});
  }
  return test::CountAllocatedBytes() - before;
}

TEST(KeptLogMemory, IsAFractionOfTheWords) {
  constexpr int kLines = 200'000;
  constexpr std::size_t kLineBytes = 27;  // of text; where it came from is kept as well
  EXPECT_LT(MeasureWords(2 * kLines) - MeasureWords(kLines), kLines * kLineBytes / 2);
}

TEST(KeptLogMemory, IsAFractionOfALongLine) {
  const std::size_t before = test::CountAllocatedBytes();
  KeptLog log;
  log.Add({4, "pqmodules/a", 80, std::string(3'000'000, 'x')});
  EXPECT_LT(test::CountAllocatedBytes() - before, 300'000U);
}

}  // namespace
}  // namespace host
