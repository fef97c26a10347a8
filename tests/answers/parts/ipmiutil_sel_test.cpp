#include "host/answers/parts/ipmiutil_sel.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using host::Event;
using host::Integer;
using host::ReadSelRecord;

Event ReadRecord(const std::string& line) {
  const auto event = ReadSelRecord(line, {"SELINFO", 7, "SELINFO", 0, "ipmiutil sel"});
  EXPECT_TRUE(event) << line;
  return event.value_or(Event());
}

TEST(SelRecord, HasNumberTimeSeverityAndSensor) {
  const Event event =
      ReadRecord("000a 05/30/26 03:06:02 MAJ Sms  Drive Slot #4b  Drive fault 6f [01 ff ff]\r");
  EXPECT_EQ(event.id, "sel 000a");
  EXPECT_EQ(event.source, "SEL");
  EXPECT_EQ(event.number, Integer(10));
  EXPECT_EQ(event.time, "2026-05-30T03:06:02");
  EXPECT_EQ(event.level, Integer(2));
  EXPECT_EQ(event.kind, "Drive Slot");
  EXPECT_EQ(event.code, Integer(0x0d));
  EXPECT_EQ(event.sensor, Integer(0x4b));
  EXPECT_EQ(event.eventType, Integer(0x6f));
  EXPECT_EQ(event.offset, Integer(1));
  EXPECT_EQ(event.asserted, Integer(1));
  EXPECT_EQ(event.text, "Drive fault");
  EXPECT_EQ(event.readAt.row, 7);
}

TEST(SelRecord, TakesTheLowHalfOfTheFirstByteAsOffset) {
  EXPECT_EQ(
      ReadRecord("0011 11/11/26 18:08:27 CRT BMC  Watchdog_2 #46  Hard Reset 6f [c1 01 ff]").offset,
      Integer(1));
}

TEST(SelRecord, IsDeassertedByTheTriggersHighBit) {
  const Event event =
      ReadRecord("000f 08/21/26 11:52:08 INF Sms  Power Supply #43  AC Regained ef [03 ff ff]");
  EXPECT_EQ(event.asserted, Integer(0));
  EXPECT_EQ(event.eventType, Integer(0x6f));
  EXPECT_EQ(event.offset, Integer(3));
}

TEST(SelRecord, IsDeassertedByFullRedundancy) {
  EXPECT_EQ(ReadRecord("0001 08/21/26 11:52:08 INF Sms  Fan #45  Redundant 0b [00 ff ff]").asserted,
            Integer(0));
  EXPECT_EQ(ReadRecord("0001 08/21/26 11:52:08 MAJ Sms  Fan #45  Lost 0b [01 ff ff]").asserted,
            Integer(1));
}

TEST(SelRecord, KnowsThresholdsByTheirWords) {
  const auto offset = [](const std::string& words) {
    const Event event =
        ReadRecord("0006 04/17/26 22:40:09 MIN BMC  Temperature #02  " + words + " act=58 thr=55");
    EXPECT_EQ(event.eventType, Integer(1)) << words;
    return event.offset;
  };
  EXPECT_EQ(offset("Lo Noncrit thresh"), Integer(0));
  EXPECT_EQ(offset("Lo Crit thresh"), Integer(2));
  EXPECT_EQ(offset("Lo Unrec thresh"), Integer(4));
  EXPECT_EQ(offset("Hi Noncrit thresh"), Integer(7));
  EXPECT_EQ(offset("Hi Crit thresh"), Integer(9));
  EXPECT_EQ(offset("HiU thresh"), Integer(11));
  const Event over = ReadRecord(
      "0007 04/17/26 22:46:55 INF BMC  Temperature #02  HiN thresh OK now act=53 thr=55");
  EXPECT_EQ(over.offset, Integer(7));
  EXPECT_EQ(over.asserted, Integer(0));
  EXPECT_EQ(over.text, "HiN thresh OK now act=53 thr=55");
}

TEST(SelRecord, MayHaveNoTimeAndNoSensor) {
  Event event = ReadRecord("0018 INF e0 OEM Event 41 43 4d 45 20 6e 6f 74 65 20 31 2e 30 ");
  EXPECT_EQ(event.time, "");
  EXPECT_EQ(event.kind, "OEM");
  EXPECT_EQ(event.text, "e0 OEM Event 41 43 4d 45 20 6e 6f 74 65 20 31 2e 30");
  EXPECT_EQ(event.sensor, Integer());
  event = ReadRecord("0017 11/13/26 10:00:09 INF c0 00c0de OEM Event 01 02 03 04 05 06 ");
  EXPECT_EQ(event.time, "2026-11-13T10:00:09");
  EXPECT_EQ(event.level, Integer(0));
}

TEST(SelRecord, HasNoTimeOfAClockThatWasNeverSet) {
  EXPECT_EQ(ReadRecord("0001 01/01/70 00:00:12 INF BMC  Fan #45  Lost 0b [01 ff ff]").time, "");
  EXPECT_EQ(ReadRecord("0001 01/01/98 00:00:12 INF BMC  Fan #45  Lost 0b [01 ff ff]").time,
            "1998-01-01T00:00:12");
  EXPECT_EQ(ReadRecord("0001 13/41/26 00:00:12 INF BMC  Fan #45  Lost 0b [01 ff ff]").time, "");
}

TEST(SelRecord, IsNoOtherLine) {
  for (const char* line : {"", "RecId Date/Time_______ SEV Src_ Evt_Type___ Sens# Evt_detail",
                           "ipmiutil sel, completed successfully", "LANPLUS error in RAKP1"}) {
    EXPECT_FALSE(host::LooksLikeSelRecord(line)) << line;
    EXPECT_FALSE(ReadSelRecord(line, {})) << line;
  }
  for (const char* line : {"0001 03/02/26 07:1", "0001 03/02/26 07:11:04 INF", "0001 x y z BMC"}) {
    EXPECT_TRUE(host::LooksLikeSelRecord(line)) << line;
    EXPECT_FALSE(ReadSelRecord(line, {})) << line;
  }
}

TEST(SelRecord, TellsHowFullTheLogIs) {
  const auto size =
      host::ReadSelSize("SEL Ver 51 Support 0a, Size = 512 records (Used=26, Free=486)");
  ASSERT_TRUE(size);
  EXPECT_EQ(size->used, 26);
  EXPECT_EQ(size->capacity, 512);
  EXPECT_FALSE(host::ReadSelSize("SEL Ver 51 Support 0a"));
  EXPECT_FALSE(host::ReadSelSize("Size = 512 records (Used=26, Free=486)"));
}

}  // namespace
