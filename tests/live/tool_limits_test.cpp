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

}  // namespace
}  // namespace host
