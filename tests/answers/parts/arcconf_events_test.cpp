#include "host/answers/parts/arcconf_events.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using host::Integer;
using host::Parts;
using testing::IsEmpty;

Parts ReadArcconf(const std::string& text) {
  Parts parts;
  host::ReadArcconfEvents({text, {"PMCLINK", 1, "Controller_Event_Log", 0, "arcconf"}, "mchp1"},
                          parts);
  return parts;
}

TEST(ArcconfEvents, HaveTimeSeverityAndText) {
  const Parts parts = ReadArcconf(
      "Event Log for Controller 1\r\n-----------------------------\r\n"
      "2026-11-14 17:22:08  WARNING  Write cache disabled: charge low\r\n"
      "2026-11-14 17:23:40  INFO     Write cache enabled\r\n"
      "2026-11-14 17:24:00  ERROR    Drive failed\r\n");
  ASSERT_EQ(parts.events.size(), 3U);
  EXPECT_THAT(parts.unread, IsEmpty());
  const host::Event& event = parts.events[0];
  EXPECT_EQ(event.id, "mchp1 2026-11-14T17:22:08");
  EXPECT_EQ(event.source, "Microchip");
  EXPECT_EQ(event.controller, "mchp1");
  EXPECT_EQ(event.number, Integer(1));
  EXPECT_EQ(event.time, "2026-11-14T17:22:08");
  EXPECT_EQ(event.level, Integer(1));
  EXPECT_EQ(event.asserted, Integer(1));
  EXPECT_EQ(event.text, "Write cache disabled: charge low");
  EXPECT_EQ(event.part, "controllers");
  EXPECT_EQ(event.partId, "mchp1");
  EXPECT_EQ(event.readAt.line, 3);
  EXPECT_EQ(parts.events[1].level, Integer(0));
  EXPECT_EQ(parts.events[2].level, Integer(2));
}

TEST(ArcconfEvents, AreUnreadOnceForLinesInARow) {
  const Parts parts = ReadArcconf(
      "<event seq=\"1\"/>\n<event seq=\"2\"/>\n"
      "2026-11-14 17:23:40  INFO     Write cache enabled\n"
      "2026-11-14 17:23:40  WORSE    than that\n");
  EXPECT_EQ(parts.events.size(), 1U);
  ASSERT_EQ(parts.unread.size(), 2U);
  EXPECT_EQ(parts.unread[0].text, "<event seq=\"1\"/>");
  EXPECT_EQ(parts.unread[1].readAt.line, 4);
}

}  // namespace
