#include "host/text/time_text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(TimeText, IsUtcToTheSecond) {
  const auto time = std::chrono::sys_days{std::chrono::year{2026} / 2 / 3} + std::chrono::hours(4) +
                    std::chrono::milliseconds(5999);
  EXPECT_EQ(FormatIsoTime(time), "2026-02-03T04:00:05Z");
  EXPECT_EQ(FormatTimeForPeople(time), "2026-02-03 04:00:05 UTC");
}

}  // namespace
}  // namespace host
