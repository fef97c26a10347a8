#include "host/text/nearest_name.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(NearestName, IsTheOneWithTheFewestSlips) {
  EXPECT_EQ(FindNearestName("ARPINF", {"NETSTATINFO", "ARPINFO", "ARRAY"}), "ARPINFO");
  EXPECT_EQ(FindNearestName("SELFINF", {"SELINFO", "SELFINFO"}), "SELFINFO");
}

TEST(NearestName, DoesNotMindCase) {
  EXPECT_EQ(FindNearestName("bmc_info", {"AMT_Info", "BMC_Info"}), "BMC_Info");
}

TEST(NearestName, IsNoneWhenNothingIsNear) {
  EXPECT_EQ(FindNearestName("frobnicate", {"ARPINFO", "VOLUME"}), "");
  EXPECT_EQ(FindNearestName("x", {"A", "B"}), "");
  EXPECT_EQ(FindNearestName("", {"A"}), "");
  EXPECT_EQ(FindNearestName("ARPINFO", {}), "");
}

TEST(NearestName, IsSuggestedAsAQuestion) {
  EXPECT_EQ(SuggestName("jsn", {"csv", "json"}), "; did you mean json?");
  EXPECT_EQ(SuggestName("zzzzzz", {"csv", "json"}), "");
}

}  // namespace
}  // namespace host
