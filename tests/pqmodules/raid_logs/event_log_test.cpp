#include "pqmodules/rsamplemodule2/event_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "frame/bound/machine_in_use.h"
#include "host/recorded/recorded_machine.h"
#include "tests/support/fake_platform.h"
#include "tests/support/log_lines.h"
#include "tests/support/raid_tools.h"

namespace {

using test::Collected;
using test::RaidTools;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// What happened to the pages: "2 Time=08:00\n" when a column was set on page 2, "2 row" when it
/// was committed.
class ListedPages : public pq::EventPages {
 public:
  std::vector<std::string> steps;
  void Set(std::size_t page, const pq::Column& column, std::string_view value) override {
    steps.push_back(std::to_string(page + 1) + " " + std::string(column.key) + "=" +
                    std::string(value));
  }
  void Commit(std::size_t page) override { steps.push_back(std::to_string(page + 1) + " row"); }
};

/// A dump that is read line by line, with event data of its own.
struct Dump {
  ListedPages pages;
  pq::EventData data;
  pq::EventDump dump{pages, data};

  Dump& Take(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size()) {
      const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
      dump.Take(text.substr(at, end - at));
      at = end;
    }
    return *this;
  }
  /// Records that hold nothing but their number, counted from `first`.
  Dump& TakeRecords(int first, int count) {
    for (int i = first; i < first + count; ++i) Take("seqNum: " + std::to_string(i) + "\n");
    return *this;
  }
  Dump& Forget() {
    pages.steps.clear();
    return *this;
  }
};

std::vector<std::string> Steps(const std::string& text) { return Dump().Take(text).pages.steps; }

const std::string kThirteenLines = "\n\n\n\n\n\n\n\n\n\n\n\n\n";

TEST(EventDump, BeginsARecordWithItsNumber) {
  EXPECT_THAT(Steps("seqNum: 0x0000a1f4\n"), ElementsAre("1 seqNum=0x0000a1f4\n"));
}

TEST(EventDump, FlushesNothingAmongTheFirstThirteenLines) {
  EXPECT_THAT(Steps("\n\n\n\n\n\n\n\n\n\n\n\nseqNum: 1\n"), ElementsAre("1 seqNum=1\n"));
}

TEST(EventDump, FlushesPageOneBeforeAFirstRecordBehindLineThirteen) {
  EXPECT_THAT(Steps("a\nb\n=======\n\n\n\n\n\n\n\n\n\nhead\nseqNum: 1\n"),
              ElementsAre("1 EventData=\n\n\n\n\n\n\n\n\nhead\n", "1 row", "1 seqNum=1\n"));
}

TEST(EventDump, FlushesARecordWhereTheNextOneBegins) {
  EXPECT_THAT(Dump()
                  .Take(kThirteenLines + "seqNum: 1\n")
                  .Forget()
                  .Take("===========\nNone\n\nseqNum: 2\n")
                  .pages.steps,
              ElementsAre("1 EventData=None\n\n", "1 row", "1 seqNum=2\n"));
}

TEST(EventDump, LeavesTheLastRecordUnflushed) {
  Dump dump;
  dump.Take(kThirteenLines + "seqNum: 1\n").Forget().Take("Code: 0x15\n=======\nNone\n");
  EXPECT_THAT(dump.pages.steps, ElementsAre("1 Code=0x15\n"));
}

TEST(EventDump, FlushesTheLastRecordAtALaterControllerLine) {
  EXPECT_THAT(Steps("seqNum: 1\n=======\nNone\nController = 0\n"),
              ElementsAre("1 seqNum=1\n", "1 EventData=None\n", "1 row"));
}

TEST(EventDump, KeepsAControllerLineBeforeTheFirstRecordAsEventData) {
  Dump dump;
  dump.Take("Controller = 0\n");
  EXPECT_THAT(dump.pages.steps, IsEmpty());
  EXPECT_EQ(dump.data.Text(), "Controller = 0\n");
}

TEST(EventDump, TestsForAControllerBeforeAnythingElse) {
  EXPECT_THAT(Dump().TakeRecords(1, 1).Forget().Take("Controller = seqNum: 7\n").pages.steps,
              ElementsAre("1 EventData=", "1 row"));
}

TEST(EventDump, ReadsEveryColumnFromItsOffset) {
  EXPECT_THAT(Steps("Seconds since last reboot: 42\n"), ElementsAre("1 Time=42\n"));
  EXPECT_THAT(Steps("Time: Wed Jan 14 07:02:11 2026\n"),
              ElementsAre("1 Time=Wed Jan 14 07:02:11 2026\n"));
  EXPECT_THAT(Steps("Code: 0x00000015\n"), ElementsAre("1 Code=0x00000015\n"));
  EXPECT_THAT(Steps("Class: -1\n"), ElementsAre("1 Class=-1\n"));
  EXPECT_THAT(Steps("Locale: 0x20\n"), ElementsAre("1 Locale=0x20\n"));
  EXPECT_THAT(Steps("Event Description: Boot complete\n"),
              ElementsAre("1 EventDescription=Boot complete\n"));
}

TEST(EventDump, TakesOffsetsFromTheLabelInsideALine) {
  EXPECT_THAT(Steps("  Code:x0x15 \n"), ElementsAre("1 Code=0x15 \n"));
}

TEST(EventDump, TakesATimeInsideADescriptionAsTheTime) {
  EXPECT_THAT(Steps("Event Description: Time: 12 behind\n"), ElementsAre("1 Time=12 behind\n"));
}

TEST(EventDump, TakesATimeInsideEventDataAsTheTime) {
  Dump dump;
  dump.Take("=======\nElapsed Time: 9s\n");
  EXPECT_THAT(dump.pages.steps, ElementsAre("1 Time=9s\n"));
  EXPECT_EQ(dump.data.Text(), "");
}

TEST(EventDump, TestsLabelsInTheirOrder) {
  EXPECT_THAT(Steps("Time: seqNum: 4\n"), ElementsAre("1 seqNum=4\n"));
  EXPECT_THAT(Steps("Time: 1 Seconds since last reboot: 4\n"), ElementsAre("1 Time=4\n"));
  EXPECT_THAT(Steps("Class: Code: 4\n"), ElementsAre("1 Code=4\n"));
  EXPECT_THAT(Steps("Locale: Class: 4\n"), ElementsAre("1 Class=4\n"));
  EXPECT_THAT(Steps("Event Description: Locale: 4\n"), ElementsAre("1 Locale=4\n"));
  EXPECT_THAT(Steps("======= Event Description: 4\n"), ElementsAre("1 EventDescription=4\n"));
}

TEST(EventDump, IgnoresTheTitleOfEventDataEvenBesideARule) {
  Dump dump;
  dump.Take("before\nEvent Data: =======\n");
  EXPECT_THAT(dump.pages.steps, IsEmpty());
  EXPECT_EQ(dump.data.Text(), "before\n");
}

TEST(EventDump, ClearsEventDataAtARule) {
  Dump dump;
  dump.Take("before\n===========\nafter\n");
  EXPECT_EQ(dump.data.Text(), "after\n");
}

TEST(EventDump, DoesNotTakeAShorterRule) {
  Dump dump;
  dump.Take("======\n");
  EXPECT_EQ(dump.data.Text(), "======\n");
}

TEST(EventDump, KeepsEventDataOfManyLinesWithTheirLineEnds) {
  Dump dump;
  dump.Take("=======\nDevice ID: 14\n\n  Slot Number: 6\n70 00 03\n");
  EXPECT_EQ(dump.data.Text(), "Device ID: 14\n\n  Slot Number: 6\n70 00 03\n");
}

TEST(EventDump, TruncatesEventDataAt2047Characters) {
  Dump dump;
  dump.Take("=======\n");
  for (int i = 0; i < 30; ++i)
    dump.Take(std::string(99, "abcdefghijklmnopqrstuvwxyz"[i % 26]) + "\n");
  EXPECT_THAT(dump.data.Text(), SizeIs(2047));
  EXPECT_EQ(dump.data.Text().substr(2000), std::string(47, 'u'));
}

TEST(EventDump, StartsWithTheEventDataOfBefore) {
  ListedPages pages;
  pq::EventData data;
  data.Append("left over\n");
  pq::EventDump dump(pages, data);
  dump.Take("seqNum: 1\n");
  dump.Take("Controller = 0\n");
  EXPECT_THAT(pages.steps, ElementsAre("1 seqNum=1\n", "1 EventData=left over\n", "1 row"));
}

TEST(EventDump, GivesAnEmptyValueWhereTheLineEndsBeforeIt) {
  EXPECT_THAT(Steps("seqNum:"), ElementsAre("1 seqNum="));
  EXPECT_THAT(Steps("Seconds since last reboot:"), ElementsAre("1 Time="));
  EXPECT_THAT(Steps("Event Description:"), ElementsAre("1 EventDescription="));
}

TEST(EventDump, LeavesOutTheLineEndRightBehindALabel) {
  EXPECT_THAT(Steps("Code:\n"), ElementsAre("1 Code="));
}

TEST(EventDump, PutsLinesBeforeTheFirstRecordOnPageOne) {
  EXPECT_THAT(Steps("Locale: 0x20\n"), ElementsAre("1 Locale=0x20\n"));
}

TEST(EventDump, KnowsWhetherThereWereRecords) {
  EXPECT_FALSE(Dump().Take("Code: 1\nController = 0\n").dump.HasRecords());
  EXPECT_TRUE(Dump().Take("x seqNum:").dump.HasRecords());
}

TEST(EventDump, ShowsTheNumberOfACrossingRecordOnBothPages) {
  Dump dump;
  dump.TakeRecords(0, 2999).Forget().Take("seqNum: last\nTime: now\n");
  EXPECT_THAT(dump.pages.steps, ElementsAre("1 EventData=", "1 row", "1 seqNum=last\n",
                                            "2 seqNum=last\n", "2 Time=now\n"));
}

TEST(EventDump, FlushesACrossingRecordOnItsNewPage) {
  Dump dump;
  dump.TakeRecords(0, 3000).Forget().Take("seqNum: next\n");
  EXPECT_THAT(dump.pages.steps, ElementsAre("2 EventData=", "2 row", "2 seqNum=next\n"));
}

TEST(EventDump, CrossesAtEveryPageEnd) {
  for (const auto& [count, page] : {std::pair{6000, 2}, {9000, 3}, {12000, 4}}) {
    Dump dump;
    dump.TakeRecords(0, count - 1).Forget().TakeRecords(7, 1);
    const std::string old = std::to_string(page);
    EXPECT_THAT(dump.pages.steps,
                ElementsAre(old + " EventData=", old + " row", old + " seqNum=7\n",
                            std::to_string(page + 1) + " seqNum=7\n"));
  }
}

TEST(EventDump, PutsAllFurtherRecordsOnPageFive) {
  Dump dump;
  dump.TakeRecords(0, 12000).Forget().TakeRecords(0, 4000);
  EXPECT_THAT(dump.pages.steps, SizeIs(3 * 4000));
  EXPECT_THAT(dump.pages.steps, Each(::testing::StartsWith("5 ")));
}

TEST(EventDump, ClosesTheRunOnThePageOfTheCurrentRecord) {
  Dump dump;
  dump.TakeRecords(0, 3000).Forget().Take("Controller = 0\n");
  EXPECT_THAT(dump.pages.steps, ElementsAre("2 EventData=", "2 row"));
}

// A record as storcli prints it, ten lines long.
std::string Record(int number) {
  const std::string n = std::to_string(number);
  return "seqNum: " + n + "\nTime: t" + n + "\n\nCode: c" + n + "\nClass: 0\nLocale: 0x20\n" +
         "Event Description: d" + n + "\nEvent Data:\n===========\ne" + n + "\n";
}

std::vector<std::string> RowOf(int number) {
  const std::string n = std::to_string(number);
  return {"seqNum=" + n + "\n",
          "EventData=e" + n + "\n",
          "Time=t" + n + "\n",
          "Code=c" + n + "\n",
          "Class=0\n",
          "Locale=0x20\n",
          "EventDescription=d" + n + "\n"};
}

TEST(EventLog, CommitsOneRowPerRecordButTheLast) {
  RaidTools tools;
  tools.Storcli("/c0 show events",
                "CLI Version = 1\nController = 0\n\n\n\n" + Record(1) + Record(2) + Record(3));
  EXPECT_THAT(tools.Collect().Rows("EVENTLOG1"), ElementsAre(RowOf(1), RowOf(2)));
}

TEST(EventLog, LosesAFirstRecordThatTheSecondFollowsWithinThirteenLines) {
  RaidTools tools;
  tools.Storcli("/c0 show events", Record(1) + Record(2) + Record(3));
  EXPECT_THAT(tools.Collect().Rows("EVENTLOG1"), ElementsAre(RowOf(2)));
}

TEST(EventLog, FillsFivePagesFromOneLongDump) {
  std::string dump = "CLI Version = 1\nController = 0\n\n\n\n";
  for (int number = 0; number < 12500; ++number) dump += Record(number);
  RaidTools tools;
  tools.Storcli("/c0 show events", dump);
  const Collected collected = tools.Collect();
  const auto page1 = collected.Rows("EVENTLOG1");
  ASSERT_THAT(page1, SizeIs(2999));
  EXPECT_EQ(page1.front(), RowOf(0));
  EXPECT_EQ(page1.back(), RowOf(2998));
  const auto page2 = collected.Rows("EVENTLOG2");
  ASSERT_THAT(page2, SizeIs(3000));
  EXPECT_EQ(page2.front(), RowOf(2999));
  EXPECT_EQ(page2.back(), RowOf(5998));
  EXPECT_THAT(collected.Rows("EVENTLOG3"), SizeIs(3000));
  EXPECT_THAT(collected.Rows("EVENTLOG4"), SizeIs(3000));
  const auto page5 = collected.Rows("EVENTLOG5");
  ASSERT_THAT(page5, SizeIs(500));
  EXPECT_EQ(page5.front(), RowOf(11999));
  EXPECT_EQ(page5.back(), RowOf(12498));
}

// A process may collect from many recordings; the data of one machine's last event are not the
// next machine's.
TEST(EventLog, BeginsEveryCollectionWithoutEventData) {
  RaidTools first;
  first.Storcli("/c0 show events", "=======\nleft over\n");
  first.Collect();
  RaidTools second;
  second.Storcli("/c0 show events", "seqNum: 1\nController = 0\n=======\n");
  EXPECT_THAT(second.Collect().Rows("EVENTLOG1").front(), Contains("EventData="));
}

TEST(EventLog, ConvertsADumpWithRecords) {
  RaidTools tools;
  tools.Storcli("/c0 show events", "seqNum: 1\n");
  const Collected collected = tools.Collect();
  const std::string command =
      R"(/c ""C:\Halyard\pq_tools\eventslog_convert.exe" "C:\Halyard\logs\raidevents.txt" > "C:\Halyard\logs\eventslog_convert.txt"")";
  EXPECT_THAT(collected.commandLines, Contains(command));
  EXPECT_THAT(collected.LogTexts(), Contains("4 eventslog_convert raw path:" + command));
}

// The converter is given the file to itself.
TEST(EventLog, ClosesTheDumpBeforeItIsConverted) {
  class OneRecord final : public test::FakePlatform {
   public:
    std::unique_ptr<pq::TextFile> OpenText(const std::string& /*path*/) override {
      class Dump final : public pq::TextFile {
       public:
        explicit Dump(std::vector<std::string>& calls) : calls(calls) {}
        ~Dump() override { calls.push_back("close file"); }
        bool ReadLine(char* buffer, std::size_t /*size*/) override {
          if (isAtEnd) return false;
          isAtEnd = true;
          constexpr char kLine[] = "seqNum: 1\n";
          std::memcpy(buffer, kLine, sizeof(kLine));
          return true;
        }
        void Rewind() override {}
        std::uint64_t SizeAndRewind() override { return 0; }

       private:
        std::vector<std::string>& calls;
        bool isAtEnd = false;
      };
      return std::make_unique<Dump>(calls);
    }
  } machine;
  const pq::MachineInUse inUse(machine);
  const test::LogLines log;
  halyard::repository::RRepository repository;
  constexpr pq::ModuleLog kLog("pqmodules/rsamplemodule2");
  pq::RaidLogsCollection collection{repository, kLog, "C:\\Halyard"};
  pq::CollectEventLog(collection);
  EXPECT_THAT(machine.calls,
              ElementsAre(HasSubstr("storcli.exe"), "wait", "close process", "close file",
                          HasSubstr("eventslog_convert.exe"), "wait", "close process"));
}

TEST(EventLog, NeitherCommitsNorConvertsADumpWithoutRecords) {
  RaidTools tools;
  tools.Storcli("/c0 show events", kThirteenLines + "Time: now\nController = 0\n");
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.Rows("EVENTLOG1"), IsEmpty());
  EXPECT_THAT(collected.commandLines, Not(Contains(HasSubstr("eventslog_convert"))));
}

TEST(EventLog, LogsAConverterThatCannotStart) {
  RaidTools tools;
  tools.Storcli("/c0 show events", "seqNum: 1\n");
  tools.RefuseStart("eventslog_convert.exe", R"("C:\Halyard\logs\raidevents.txt")", 8);
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (8)"));
  EXPECT_THAT(collected.LogTexts(), Contains("3 Exit CollectData"));
}

TEST(EventLog, AddsNothingWhenStorcliCannotStart) {
  RaidTools tools;
  tools.RefuseStart("storcli.exe", "/c0 show events", 5);
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 CreateProcess failed (5)"));
  EXPECT_THAT(collected.trace, Not(HasSubstr("\"EVENTLOG")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("/c0 show termlog")));
}

TEST(EventLog, AddsNothingWhenTheDumpCannotBeOpened) {
  RaidTools tools;
  tools.Storcli("/c0 show events", "seqNum: 1\n").RefuseReport("raidevents.txt");
  const Collected collected = tools.Collect();
  EXPECT_THAT(collected.LogTexts(), Contains("4 Failed to open raid log file"));
  EXPECT_THAT(collected.trace, Not(HasSubstr("\"EVENTLOG")));
  EXPECT_THAT(collected.commandLines, Contains(HasSubstr("/c0 show termlog")));
}

}  // namespace
