// The event log of the first controller, in five pages of 3,000 records.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "frame/row_buffer.h"
#include "pqmodules/rsamplemodule2/collection.h"
#include "pqmodules/rsamplemodule2/event_data.h"

namespace pq {

inline constexpr std::size_t kEventPageCount = 5;

/// The page, from 0, on which things go while `recordCount` records have begun.
std::size_t FindEventPage(std::int32_t recordCount);

/// Where the lines of an event dump lead: columns are set on pages, pages are committed as rows.
class EventPages {
 public:
  virtual ~EventPages() = default;
  virtual void Set(std::size_t page, const Column& column, std::string_view value) = 0;
  virtual void Commit(std::size_t page) = 0;
};

/// Reads an event dump, one line after the other.
class EventDump {
 public:
  /// Both outlive the object. `data` may hold text already; only a "=======" line clears it.
  EventDump(EventPages& pages, EventData& data) : pages(pages), data(data) {}

  /// The next line, zero-terminated, its line end included.
  void Take(std::string_view line);
  bool HasRecords() const { return hasRecords; }

 private:
  void BeginRecord(std::string_view sequenceNumber);
  void EndRecord(std::size_t page);

  EventPages& pages;
  EventData& data;
  std::int32_t recordCount = 0;
  std::int64_t lineNumber = 0;
  bool hasRecords = false;
};

/// Adds the rows of "EVENTLOG1" to "EVENTLOG5". Changes the event data of `collection`.
void CollectEventLog(RaidLogsCollection& collection);

void DescribeEventLog(ModuleDescription& module);

}  // namespace pq
