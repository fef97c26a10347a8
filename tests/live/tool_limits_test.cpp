#include "host/live/tool_limits.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(ToolLimits, HoldMoreThanFourGibibytes) {
  EXPECT_EQ(GetMemoryLimit({std::nullopt, 8192}), std::uint64_t{1} << 33);
  EXPECT_EQ(GetMemoryLimit({30, std::nullopt}), std::nullopt);
}

TEST(ToolLimits, AreMetWhenTheSystemSaysSoOrTheMemoryIsUsedUp) {
  const ToolLimits limits{std::nullopt, 64};
  const std::uint64_t all = std::uint64_t{64} << 20;
  EXPECT_FALSE(HasMetMemoryLimit(limits, false, all - 1));
  EXPECT_TRUE(HasMetMemoryLimit(limits, false, all));
  EXPECT_TRUE(HasMetMemoryLimit(limits, true, 0));
  EXPECT_FALSE(HasMetMemoryLimit({}, true, all));
}

TEST(ToolLimits, EndWithTheCollection) {
  const std::chrono::steady_clock::time_point now{std::chrono::seconds(1000)};
  const auto in = [&](int milliseconds) { return now + std::chrono::milliseconds(milliseconds); };
  EXPECT_EQ(GetSeconds({}, now), std::nullopt);
  EXPECT_EQ(GetSeconds({30, std::nullopt}, now), 30U);
  EXPECT_EQ(GetSeconds({30, std::nullopt, in(29'001)}, now), 30U);
  EXPECT_EQ(GetSeconds({30, std::nullopt, in(28'001)}, now), 29U);
  EXPECT_EQ(GetSeconds({std::nullopt, std::nullopt, in(60'000)}, now), 60U);
  // The next tool is refused; this one was about to start.
  EXPECT_EQ(GetSeconds({30, std::nullopt, in(-5'000)}, now), 1U);
}

}  // namespace
}  // namespace host
