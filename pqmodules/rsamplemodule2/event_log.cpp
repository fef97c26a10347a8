// storcli /c0 show events:
//
//   seqNum: 0x00000002
//   Time: Wed Jun  3 20:34:02 2020
//
//   Code: 0x00000015
//   Class: 0
//   Locale: 0x20
//   Event Description: Enclosure discovery complete
//   Event Data:
//   ===========
//   None
//
// A record ends where the next one begins.

#include "pqmodules/rsamplemodule2/event_log.h"

#include <algorithm>

#include "frame/labelled_columns.h"
#include "frame/report_file.h"
#include "frame/tool_runner.h"

namespace pq {
namespace {

constexpr StorcliReport kReport{"/c0 show events", "raidevents.txt", "raidevent raw path:"};

constexpr std::int32_t kRecordsPerPage = 3000;
/// Lines at the top of a dump among which the first record begins, behind the tool's head.
constexpr std::int64_t kHeadLines = 13;

const Column kSequenceNumber{"seqNum", "seqNum"};
const Column kEventData{"EventData", "Event Data"};
const Column kTime{"Time", "Time"};
const Column kCode{"Code", "Code"};
const Column kClass{"Class", "Class"};
const Column kLocale{"Locale", "Locale"};
const Column kDescription{"EventDescription", "Event Description"};

// In the order of the layout's widths.
const std::array<const Column*, 7> kColumns{&kSequenceNumber, &kEventData, &kTime,       &kCode,
                                            &kClass,          &kLocale,    &kDescription};

struct EventPage {
  const std::string& className;
  const char* key;
};
const std::array<EventPage, kEventPageCount> kPages{{
    {kEventLog1, "LSI Controller 0 event log page1"},
    {kEventLog2, "LSI Controller 0 event log page2"},
    {kEventLog3, "LSI Controller 0 event log page3"},
    {kEventLog4, "LSI Controller 0 event log page4"},
    {kEventLog5, "LSI Controller 0 event log page5"},
}};

// What ends a run of records, once one has begun.
constexpr std::string_view kNextController = "Controller =";
constexpr std::string_view kRecordStart = "seqNum:";
constexpr std::string_view kDataTitle = "Event Data:";
constexpr std::string_view kDataStart = "=======";

// In the order in which a line is tested. The last two fill no column.
const LabelledColumns kFacts{
    {kRecordStart, 8, kSequenceNumber},
    {"Seconds since last reboot:", 27, kTime},
    {"Time:", 6, kTime},
    {"Code:", 6, kCode},
    {"Class:", 7, kClass},
    {"Locale:", 8, kLocale},
    {"Event Description:", 19, kDescription},
    {kDataTitle, 0, {}},
    {kDataStart, 0, {}},
};

/// Event data outlive the dump that they come from: until a "=======" line clears them, the next
/// dump's first row can still show them.
EventData& ModuleEventData() {
  static EventData data;
  return data;
}

/// The page instances, as rows.
class PageRows : public EventPages {
 public:
  explicit PageRows(RRepository& repo)
      : rows{{{repo, kPages[0].className, kPages[0].key},
              {repo, kPages[1].className, kPages[1].key},
              {repo, kPages[2].className, kPages[2].key},
              {repo, kPages[3].className, kPages[3].key},
              {repo, kPages[4].className, kPages[4].key}}} {
    for (RowBuffer& row : rows) {
      for (const Column* column : kColumns) row.Set(*column, "");
    }
  }
  void Set(std::size_t page, const Column& column, std::string_view value) override {
    rows[page].Set(column, value);
  }
  void Commit(std::size_t page) override { rows[page].Commit(); }

 private:
  std::array<RowBuffer, kEventPageCount> rows;
};

/// Leaves eventslog_convert.txt in the log folder for the host.
void ConvertDump(const RaidLogsCollection& collection) {
  const std::string logFolder = GetLogFolder();
  const std::string command = ReportCommand(
      collection.hostFolder + "\\pq_tools\\eventslog_convert.exe",
      "\"" + logFolder + kReport.fileName + "\"", logFolder + "eventslog_convert.txt");
  collection.log(kDetail, "eventslog_convert raw path:", command);
  RunLogged(collection.log, command);
}

}  // namespace

std::size_t EventPageOf(std::int32_t recordCount) {
  return std::min(static_cast<std::size_t>(recordCount / kRecordsPerPage), kEventPageCount - 1);
}

void EventData::Append(std::string_view line) {
  length += line.copy(text.data() + length, text.size() - length);
}

void EventDump::Take(std::string_view line) {
  ++lineNumber;
  if (recordCount > 0 && Holds(line, kNextController)) {
    EndRecord(EventPageOf(recordCount));
    return;
  }
  const LabelledFact fact = kFacts.FindIn(line);
  if (!fact) {
    data.Append(line);
  } else if (fact.source->label == kRecordStart) {
    BeginRecord(fact.value);
  } else if (fact.source->label == kDataStart) {
    data.Clear();
  } else if (fact.source->label != kDataTitle) {
    pages.Set(EventPageOf(recordCount), fact.source->column, fact.value);
  }
}

void EventDump::BeginRecord(std::string_view sequenceNumber) {
  hasRecords = true;
  const std::size_t page = EventPageOf(recordCount);
  if (lineNumber > kHeadLines) EndRecord(page);
  pages.Set(page, kSequenceNumber, sequenceNumber);
  ++recordCount;
  // A record that crosses to the next page shows its number on both and goes on on the new one.
  const std::size_t nextPage = EventPageOf(recordCount);
  if (nextPage != page) pages.Set(nextPage, kSequenceNumber, sequenceNumber);
}

void EventDump::EndRecord(std::size_t page) {
  pages.Set(page, kEventData, data.Text());
  pages.Commit(page);
}

void CollectEventLog(const RaidLogsCollection& collection) {
  auto file = RunStorcli(collection, kReport);
  if (!file) return;
  PageRows pages(collection.repo);
  EventDump dump(pages, ModuleEventData());
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) dump.Take(line);
  file.reset();
  if (dump.HasRecords()) ConvertDump(collection);
}

TableSources DescribeEventLog() {
  TableSources sources;
  for (const EventPage& page : kPages) {
    TableSource source{page.className, {CommandOf(kReport)}, {}};
    for (const Column* column : kColumns) source.columns.push_back(*column);
    sources.push_back(std::move(source));
  }
  return sources;
}

}  // namespace pq
