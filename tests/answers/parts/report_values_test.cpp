#include "host/answers/parts/report_values.h"

#include <gtest/gtest.h>

namespace {

using host::Integer;
using host::ReadHex;
using host::ReadInteger;
using host::ReadLeadingInteger;
using host::ReadLeadingReal;
using host::ReadSize;
using host::ReadTime;
using host::Real;

TEST(ReportValues, AreWholeNumbersOrNone) {
  EXPECT_EQ(ReadInteger(" 42 "), Integer(42));
  EXPECT_EQ(ReadInteger("-1"), Integer(-1));
  for (const char* text : {"", " ", "N/A", "4 2", "4.2", "0x4", "99999999999999999999"}) {
    EXPECT_EQ(ReadInteger(text), Integer()) << text;
  }
}

TEST(ReportValues, AreHexadecimalWithAndWithoutPrefix) {
  EXPECT_EQ(ReadHex("0x0000cf1a"), Integer(0xcf1a));
  EXPECT_EQ(ReadHex("1F"), Integer(0x1f));
  for (const char* text : {"", "0x", "-1", "0x-1", "xyz"}) EXPECT_EQ(ReadHex(text), Integer());
}

TEST(ReportValues, BeginWithTheirNumber) {
  EXPECT_EQ(ReadLeadingReal("  22C (71.60 F)"), Real(22));
  EXPECT_EQ(ReadLeadingReal("12.0Gb/s"), Real(12));
  EXPECT_EQ(ReadLeadingReal("-5.5 V"), Real(-5.5));
  EXPECT_EQ(ReadLeadingReal("3."), Real(3));
  EXPECT_EQ(ReadLeadingReal("N/A"), Real());
  EXPECT_EQ(ReadLeadingReal("-"), Real());
  EXPECT_EQ(ReadLeadingInteger("98 %"), Integer(98));
  EXPECT_EQ(ReadLeadingInteger("% 98"), Integer());
}

TEST(ReportValues, GiveSizesInBytes) {
  EXPECT_EQ(ReadSize("1.5 TB"), Integer(1649267441664));
  EXPECT_EQ(ReadSize("1.5 TiB [0x1000 Sectors]"), Integer(1649267441664));
  EXPECT_EQ(ReadSize("512B"), Integer(512));
  EXPECT_EQ(ReadSize("4 KB"), Integer(4096));
  EXPECT_EQ(ReadSize("0 KB"), Integer(0));
  EXPECT_EQ(ReadSize("1907729 MB"), Integer(2000398843904));
  for (const char* text : {"", "-", "4", "4 Gb/s", "TB", "N/A", "-1 TB", "99999999 EB"}) {
    EXPECT_EQ(ReadSize(text), Integer()) << text;
  }
}

TEST(ReportValues, GiveTimesOfEveryTool) {
  EXPECT_EQ(ReadTime("Tue Jun  2 18:02:08 2015"), "2015-06-02T18:02:08");
  EXPECT_EQ(ReadTime("06/02/2015, 18:03:22"), "2015-06-02T18:03:22");
  EXPECT_EQ(ReadTime("11/18/2026 09:41:07"), "2026-11-18T09:41:07");
  EXPECT_EQ(ReadTime("12/30/19 10:13:10: C0:EVT#87008"), "2019-12-30T10:13:10");
  EXPECT_EQ(ReadTime("12/30/70 10:13:10"), "1970-12-30T10:13:10");
  EXPECT_EQ(ReadTime("2026/08/14 18:20:59"), "2026-08-14T18:20:59");
  EXPECT_EQ(ReadTime("2026-08-14T18:20:59"), "2026-08-14T18:20:59");
}

TEST(ReportValues, KnowTheLastDayOfEveryMonth) {
  constexpr int kLast[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  for (int month = 1; month <= 12; ++month) {
    const auto on = [&](int day) {
      return std::to_string(month) + "/" + std::to_string(day) + "/2024 01:02:03";
    };
    EXPECT_NE(ReadTime(on(kLast[month - 1])), "") << month;
    EXPECT_EQ(ReadTime(on(kLast[month - 1] + 1)), "") << month;
  }
}

TEST(ReportValues, GiveNoTimeThatCannotBe) {
  for (const char* text :
       {"", "T28", "00/00/00", "13/01/2026 00:00:00", "02/30/2026 00:00:00", "01/01/2026 24:00:00",
        "01/01/2026", "Tue Jan 2015", "2026-01/02 00:00:00", "1/1/1 0:0:", "01/01/2026 00:60:00",
        "01/01/2026 00:00:61", "01/01/2026 001:02:03", "01/01/2026 01:002:03",
        "01/002/2026 01:02:03", "2026/001/02 01:02:03", "2026/01/002 01:02:03",
        "Fri Jan 002 01:02:03 2026"}) {
    EXPECT_EQ(ReadTime(text), "") << text;
  }
}

}  // namespace
