#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/parts.h"

namespace {

using host::Event;
using host::EventColumn;
using host::Events;
using host::Parts;

const host::PartTable& GetEventTable() {
  return *std::ranges::find(host::GetPartTables(), "events", &host::PartTable::name);
}

Event MakeEvent(std::int64_t number) {
  Event event;
  event.id = "sel " + std::to_string(number);
  event.readAt = {"SELINFO", number + 1, "SELINFO", 0, "ipmiutil sel"};
  event.source = "SEL";
  event.number = number;
  event.time = "2026-11-18T06:00:" + std::to_string(number);
  event.code = -number;
  event.level = 1;
  event.text = number % 2 == 0 ? std::string(100'000, 'x') : "entry";
  return event;
}

std::vector<host::PartValue> ListValues(const host::Part& event) {
  std::vector<host::PartValue> values;
  for (const host::PartColumn& column : GetEventTable().columns) {
    values.push_back(column.get(event));
  }
  return values;
}

TEST(Events, AreUnpackedAsTheyWere) {
  Parts parts;
  std::vector<Event> events;
  for (int i = 0; i < 3000; ++i) events.push_back(MakeEvent(i % 40));
  Event extremes;
  extremes.number = std::numeric_limits<std::int64_t>::min();
  extremes.code = std::numeric_limits<std::int64_t>::max();
  extremes.text = std::string("a\0b", 3);
  events.push_back(extremes);
  for (const Event& event : events) parts.events.push_back(event);
  ASSERT_EQ(parts.events.size(), events.size());
  for (std::size_t row = 0; row < events.size(); ++row) {
    const std::vector<host::PartValue> values = ListValues(events[row]);
    ASSERT_EQ(ListValues(parts.events[row]), values) << row;
    for (std::size_t column = 0; column < values.size(); ++column) {
      ASSERT_EQ(GetEventTable().Get(parts, row, column), values[column]) << row << ' ' << column;
    }
  }
}

TEST(Events, KnowTheirColumnsByName) {
  const auto name = [](EventColumn column) {
    return GetEventTable().columns[static_cast<std::size_t>(column)].name;
  };
  EXPECT_EQ(name(EventColumn::kId), "id");
  EXPECT_EQ(name(EventColumn::kSource), "source");
  EXPECT_EQ(name(EventColumn::kController), "controller");
  EXPECT_EQ(name(EventColumn::kNumber), "number");
  EXPECT_EQ(name(EventColumn::kTime), "time");
  EXPECT_EQ(name(EventColumn::kCode), "code");
  EXPECT_EQ(name(EventColumn::kLevel), "level");
  EXPECT_EQ(name(EventColumn::kKind), "kind");
  EXPECT_EQ(name(EventColumn::kSensor), "sensor");
  EXPECT_EQ(name(EventColumn::kEventType), "event_type");
  EXPECT_EQ(name(EventColumn::kOffset), "offset");
  EXPECT_EQ(name(EventColumn::kAsserted), "asserted");
  EXPECT_EQ(name(EventColumn::kText), "text");
  EXPECT_EQ(name(EventColumn::kSense), "sense");
  EXPECT_EQ(name(EventColumn::kPart), "part");
  EXPECT_EQ(name(EventColumn::kPartId), "part_id");
}

TEST(Events, OfOneIdAreNumbered) {
  Events events;
  for (const char* id : {"a", "a #2", "a", "b", "a"}) {
    Event event;
    event.id = id;
    event.text = "entry";
    events.push_back(event);
  }
  events.MakeIdsUnique();
  std::vector<std::string> ids;
  for (const Event& event : events) {
    ids.push_back(event.id);
    EXPECT_EQ(event.text, "entry");
  }
  EXPECT_EQ(ids, (std::vector<std::string>{"a", "a #2", "a #3", "b", "a #4"}));
}

// A copy shares what is there, and goes on by itself.
TEST(Events, OfACopyAreItsOwn) {
  Events one;
  one.push_back(MakeEvent(1));
  Events other = one;
  one.push_back(MakeEvent(3));
  other.push_back(MakeEvent(5));
  other.SetId(0, "other");
  EXPECT_EQ(one[0].id, "sel 1");
  EXPECT_EQ(one[1].id, "sel 3");
  EXPECT_EQ(other[0].id, "other");
  EXPECT_EQ(other[1].id, "sel 5");
  one = {};
  EXPECT_EQ(other[0].text, "entry");
}

TEST(Events, ThatWereMovedAwayAreAsNew) {
  Events one;
  one.push_back(MakeEvent(1));
  {
    const Events other = std::move(one);
    EXPECT_EQ(other[0].id, "sel 1");
  }
  one.push_back(MakeEvent(3));  // NOLINT(bugprone-use-after-move): that is what is tried
  ASSERT_EQ(one.size(), 1U);
  EXPECT_EQ(one[0].id, "sel 3");
}

}  // namespace
