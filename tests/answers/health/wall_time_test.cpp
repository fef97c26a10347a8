#include "host/answers/health/wall_time.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(WallTime, IsThatOfTheClockWhateverTheZone) {
  EXPECT_EQ(ReadWallTime("1970-01-02"), 86'400);
  for (const char* text : {"1970-01-02T00:00:01", "1970-01-02 00:00:01", "1970-01-02T00:00:01Z",
                           "1970-01-02T00:00:01+05:30"}) {
    EXPECT_EQ(ReadWallTime(text), 86'401) << text;
  }
}

TEST(WallTime, IsNotGuessed) {
  for (const char* text : {"", "1970-01", "1970-01-02T", "1970-01-02T00:00", "1970-02-30",
                           "1970-01-02x00:00:01", "1970-01-02T24:00:00", "9999-01-01", "T123:"}) {
    EXPECT_FALSE(ReadWallTime(text)) << text;
  }
}

}  // namespace
}  // namespace host
