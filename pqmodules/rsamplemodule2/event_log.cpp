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
#include <array>
#include <string>

#include "frame/labelled_columns.h"
#include "frame/report_file.h"
#include "frame/tool_runner.h"
#include "pqmodules/raid/reports.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

constexpr StorcliReport kEventsReport{"/c0 show events", "raidevents.txt", "raidevent raw path:"};

constexpr char kConverter[] = "\\pq_tools\\eventslog_convert.exe";

constexpr std::int32_t kThousandsPerPage = 3;
constexpr std::int32_t kRecordsPerPage = kThousandsPerPage * 1000;
/// Lines at the top of a dump among which the first record begins, after the tool's head.
constexpr std::int64_t kDumpHeadLines = 13;

constexpr Column kSequenceNumber{"seqNum", "seqNum",
                                 "number of the event, in hexadecimal, counted by the controller"};
constexpr Column kEventData{"EventData", "Event Data", "details of the event, in several lines"};
constexpr Column kTime{"Time", "Time",
                       "when it happened: a date, or seconds since the controller started"};
constexpr Column kCode{"Code", "Code", "what kind of event it is, in hexadecimal"};
constexpr Column kClass{"Class", "Class",
                        "how grave it is: -1 progress, 0 information, 1 warning, 2 critical, "
                        "3 fatal, 4 dead",
                        ValueKind::kNumber};
constexpr Column kLocale{"Locale", "Locale",
                         "what it concerns, such as drives or enclosures, as bits"};
constexpr Column kDescription{"EventDescription", "Event Description", "the event in words"};

// In the order of the layout's widths.
constexpr Column kColumns[] = {kSequenceNumber, kEventData, kTime,       kCode,
                               kClass,          kLocale,    kDescription};

struct EventPage {
  const char* className;
  const char* key;
  const char* title;
};
constexpr std::array<EventPage, kEventPageCount> kPages{{
    {kEventLog1, "LSI Controller 0 event log page1", "LSI controller events, page 1"},
    {kEventLog2, "LSI Controller 0 event log page2", "LSI controller events, page 2"},
    {kEventLog3, "LSI Controller 0 event log page3", "LSI controller events, page 3"},
    {kEventLog4, "LSI Controller 0 event log page4", "LSI controller events, page 4"},
    {kEventLog5, "LSI Controller 0 event log page5", "LSI controller events, page 5"},
}};

// Ends a run of records, once one has begun.
constexpr std::string_view kNextController = "Controller =";
constexpr std::string_view kRecordStart = "seqNum:";
constexpr std::string_view kDataTitle = "Event Data:";
constexpr std::string_view kDataStart = "=======";

// In the order in which a line is tested. The last two fill no column.
constexpr LabelledColumn kLabelledColumns[] = {
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
const LabelledColumns kEventFacts(kLabelledColumns);

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
      for (const Column& column : kColumns) row.Set(column, "");
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
  const std::string command = BuildReportCommand(collection.hostFolder + kConverter,
                                                 "\"" + logFolder + kEventsReport.fileName + "\"",
                                                 logFolder + "eventslog_convert.txt");
  collection.log(kDetail, "eventslog_convert raw path:", command);
  RunLogged(collection.log, command);
}

}  // namespace

std::size_t FindEventPage(std::int32_t recordCount) {
  return std::min(static_cast<std::size_t>(recordCount / kRecordsPerPage), kEventPageCount - 1);
}

void EventDump::Take(std::string_view line) {
  ++lineNumber;
  if (recordCount > 0 && Contains(line, kNextController)) {
    EndRecord(FindEventPage(recordCount));
    return;
  }
  const LabelledFact fact = kEventFacts.FindIn(line);
  if (!fact) {
    data.Append(line);
  } else if (fact.source->label == kRecordStart) {
    BeginRecord(fact.value);
  } else if (fact.source->label == kDataStart) {
    data.Clear();
  } else if (fact.source->label != kDataTitle) {
    pages.Set(FindEventPage(recordCount), fact.source->column, fact.value);
  }
}

void EventDump::BeginRecord(std::string_view sequenceNumber) {
  hasRecords = true;
  const std::size_t page = FindEventPage(recordCount);
  if (lineNumber > kDumpHeadLines) EndRecord(page);
  pages.Set(page, kSequenceNumber, sequenceNumber);
  ++recordCount;
  // A record that crosses to the next page shows its number on both and goes on on the new one.
  const std::size_t nextPage = FindEventPage(recordCount);
  if (nextPage != page) pages.Set(nextPage, kSequenceNumber, sequenceNumber);
}

void EventDump::EndRecord(std::size_t page) {
  pages.Set(page, kEventData, data.Text());
  pages.Commit(page);
}

void CollectEventLog(RaidLogsCollection& collection) {
  auto file = RunStorcli(collection.log, collection.hostFolder, kEventsReport);
  if (!file) return;
  PageRows pages(collection.repo);
  EventDump dump(pages, collection.eventData);
  std::string_view line;
  for (LineReader lines(file.get()); lines.Next(line);) dump.Take(line);
  file.reset();
  if (dump.HasRecords()) ConvertDump(collection);
}

void DescribeEventLog(ModuleDescription& module) {
  std::int32_t thousandsBefore = 0;  // Of records on the pages before.
  for (const EventPage& page : kPages) {
    TableDescription table{.className = page.className,
                           .title = page.title,
                           .commands = {DescribeReport(kEventsReport)}};
    table.isLog = true;
    table.AddColumns(kColumns);
    table.leavesOut = {LeaveOutOtherLsiControllers(),
                       {.text = "The last event of the dump is on no page.",
                        .note = "the last event of the dump, with the number {}, is on no page",
                        .sign = OmissionSign::kOpenRecord,
                        .command = DescribeReport(kEventsReport),
                        .label = std::string(kRecordStart),
                        .end = std::string(kNextController)}};
    if (thousandsBefore > 0) {
      table.whyNoRow = "fewer than " + std::to_string(thousandsBefore) + ",000 events were read";
    }
    thousandsBefore += kThousandsPerPage;
    module.tables.push_back(table);
  }
  module.tools.push_back({kConverter, {}, {}});
}

}  // namespace pq
