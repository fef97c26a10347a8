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

TEST(TimeText, TellsTheClockOnTheMachinesWall) {
  const LocalTime time{std::chrono::sys_days{std::chrono::year{2026} / 2 / 3} +
                           std::chrono::hours(23) + std::chrono::minutes(30),
                       std::chrono::minutes(330)};
  EXPECT_EQ(FormatIsoTime(time), "2026-02-04T05:00:00+05:30");
  EXPECT_EQ(FormatTimeForPeople(time), "2026-02-04 05:00:00 UTC+05:30");
  EXPECT_EQ(FormatIsoTime(LocalTime{time.time, std::chrono::minutes(-210)}),
            "2026-02-03T20:00:00-03:30");
}

TEST(TimeText, IsReadAsItIsWritten) {
  for (const char* text :
       {"2026-02-04T05:00:00+05:30", "2026-02-28T23:59:59-11:00", "2024-02-29T00:00:00+00:00",
        "1970-01-01T00:00:00+14:00", "2261-12-31T23:59:59-14:00"}) {
    const auto time = ParseIsoTime(text);
    ASSERT_TRUE(time) << text;
    EXPECT_EQ(FormatIsoTime(*time), text);
  }
  EXPECT_EQ(ParseIsoTime("2026-02-04T05:00:00Z"), ParseIsoTime("2026-02-04T05:00:00+00:00"));
}

TEST(TimeText, IsReadAtItsMomentWhateverTheOffset) {
  EXPECT_EQ(ParseIsoTime("2026-02-04T05:00:00+05:30")->time,
            ParseIsoTime("2026-02-03T23:30:00Z")->time);
}

TEST(TimeText, IsNotGuessedFromAnythingElse) {
  for (const char* text : {"",
                           "2026-02-04",
                           "2026-02-04T05:00:00",
                           "2026-02-04 05:00:00Z",
                           "2026-02-30T05:00:00Z",
                           "2026-13-04T05:00:00Z",
                           "2026-00-04T05:00:00Z",
                           "2026-02-04T24:00:00Z",
                           "2026-02-04T05:60:00Z",
                           "2026-02-04T05:00:60Z",
                           "2026-02-04T05:00:00.5Z",
                           "2026-02-04T05:00:00+5:30",
                           "2026-02-04T05:00:00+14:01",
                           "2026-02-04T05:00:00+01:60",
                           "2026-02-04T05:00:00ZZ",
                           "2o26-02-04T05:00:00Z",
                           "+026-02-04T05:00:00Z",
                           "1969-12-31T23:59:59Z",
                           "2262-01-01T00:00:00Z",
                           "9999-12-31T23:59:59Z"}) {
    EXPECT_FALSE(ParseIsoTime(text)) << text;
  }
}

}  // namespace
}  // namespace host
