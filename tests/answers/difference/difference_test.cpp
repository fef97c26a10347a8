// Cases that no sample has.
#include "host/answers/difference/difference.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "host/text/usage_error.h"
#include "tests/answers/difference/compared_machines.h"
#include "tests/answers/health/judged.h"

namespace {

using host::Difference;
using host::PartChange;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A machine that is made of parts alone.
struct MadeMachine {
  MadeMachine() {
    for (const char* source : {"lsi", "sensors", "sel"}) {
      test::AddSource(assessment.parts, source, "read");
    }
    assessment.health.asOf = "2026-11-20T12:00:00";
  }

  host::Drive& AddDrive(const std::string& id, const std::string& serial) {
    host::Drive& drive = test::AddDrive(assessment.parts, id, "Onln");
    drive.serial = serial;
    drive.readAt = {};  // There is no table that it could be looked up in.
    return drive;
  }

  host::Controller& AddController(const std::string& id, const std::string& serial) {
    host::Controller& one = test::AddController(assessment.parts, id);
    one.serial = serial;
    return one;
  }

  void AddEntry(std::int64_t number, const std::string& text, std::int64_t level = 0) {
    host::Event event;
    event.id = "sel " + std::to_string(number);
    event.source = "SEL";
    event.number = number;
    event.text = text;
    event.level = level;
    assessment.parts.events.push_back(event);
  }

  host::Collection collection;
  host::Assessment assessment;
};

Difference Compare(const MadeMachine& before, const MadeMachine& after) {
  return host::FindDifference({before.collection, before.assessment},
                              {after.collection, after.assessment});
}

std::vector<std::string> ListLines(const MadeMachine& before, const MadeMachine& after) {
  return test::ListLines(Compare(before, after));
}

// The serial number is of two drives, and so of none.
TEST(ComparedDrives, AreNotMatchedByASerialNumberThatIsThereTwice) {
  MadeMachine before;
  before.AddDrive("lsi0 1:0", "SAME0001");
  before.AddDrive("lsi0 1:1", "SAME0001");
  MadeMachine after;
  after.AddDrive("lsi0 1:0", "SAME0001");
  after.AddDrive("lsi0 1:1", "SAME0001").mediaErrors = 1;
  before.assessment.parts.drives[1].mediaErrors = 0;
  EXPECT_THAT(ListLines(before, after),
              ElementsAre("~ drive lsi0 1:1 (SAME0001) media_errors 0 -> 1"));
}

TEST(ComparedDrives, AreNotReplacedByMaskedSerialNumbers) {
  for (const char* serial : {"", "ABC", "AB*****", "XXXXXXXX", "0000000000"}) {
    MadeMachine before;
    before.AddDrive("lsi0 1:0", "REAL0001");
    MadeMachine after;
    after.AddDrive("lsi0 1:0", serial);
    for (const host::PartDifference& part : Compare(before, after).parts) {
      EXPECT_EQ(part.change, PartChange::kChanged) << serial;
    }
  }
}

TEST(ComparedDrives, AreReplacedByThoseOfAnotherModel) {
  MadeMachine before;
  before.AddDrive("lsi0 1:0", "").model = "ST4000NM";
  MadeMachine after;
  after.AddDrive("lsi0 1:0", "").model = "ST8000NM";
  before.assessment.parts.drives[0].mediaErrors = 50;
  after.assessment.parts.drives[0].mediaErrors = 0;
  EXPECT_THAT(ListLines(before, after), ElementsAre("= drive lsi0 1:0 model ST4000NM -> ST8000NM"));
}

// A counter that nobody tells has not changed.
TEST(ComparedDrives, AreNotComparedByWhatOneSideDoesNotTell) {
  MadeMachine before;
  before.AddDrive("lsi0 1:0", "REAL0001").mediaErrors = 3;
  MadeMachine after;
  after.AddDrive("lsi0 1:0", "REAL0001").model = "ST4000NM";
  EXPECT_THAT(ListLines(before, after), IsEmpty());
}

TEST(ComparedDrives, MayLeaveTheirGroup) {
  MadeMachine before;
  before.AddDrive("lsi0 1:0", "REAL0001").group = "lsi0 g1";
  MadeMachine after;
  after.AddDrive("lsi0 1:0", "REAL0001");
  EXPECT_THAT(ListLines(before, after),
              ElementsAre("~ drive lsi0 1:0 (REAL0001) grp lsi0 g1 -> nothing"));
  after.assessment.parts.sources[0].state = "failed";
  EXPECT_THAT(ListLines(before, after), IsEmpty());
}

// lsi0 became lsi1; what was lsi1 is gone, and its volumes are not those of the new lsi1.
TEST(ComparedControllers, LeaveTheirNameToOthers) {
  MadeMachine before;
  before.AddController("lsi0", "KEPT0001");
  before.AddController("lsi1", "GONE0001");
  before.AddDrive("lsi0 1:0", "");
  test::AddVolume(before.assessment.parts, "lsi0 v0", "Optl").readAt = {};
  test::AddVolume(before.assessment.parts, "lsi1 v0", "Dgrd").readAt = {};
  MadeMachine after;
  after.AddController("lsi1", "KEPT0001");
  after.AddDrive("lsi1 1:0", "");
  test::AddVolume(after.assessment.parts, "lsi1 v0", "Optl").readAt = {};
  EXPECT_THAT(ListLines(before, after),
              ElementsAre("- controller former lsi1 (GONE0001)", "- volume former lsi1 v0 Dgrd"));
}

TEST(ComparedLogs, TellTheSerious) {
  MadeMachine before;
  before.AddEntry(1, "known");
  MadeMachine after;
  after.AddEntry(1, "known");
  for (int number = 2; number < 40; ++number) {
    after.AddEntry(number, "entry " + std::to_string(number), number < 37 ? 1 : 0);
  }
  const std::vector<std::string> lines = ListLines(before, after);
  EXPECT_EQ(lines.front(), "log SEL: 38 new, 35 of them warnings or worse:");
  EXPECT_EQ(lines[1], "#17 entry 17");
  EXPECT_EQ(lines.back(), "and 15 before them (--all)");
  EXPECT_EQ(lines.size(), 22U);
}

TEST(ComparedLogs, AreNotComparedWithEmptyOnes) {
  const MadeMachine before;
  MadeMachine after;
  after.AddEntry(1, "first");
  EXPECT_THAT(ListLines(before, after),
              ElementsAre("? not compared: log SEL: not read in the first: it shows no entry"));
}

TEST(ComparedLogs, MayHaveAHundredThousandEntries) {
  constexpr int kEntries = 100'000;
  MadeMachine before;
  MadeMachine after;
  for (int number = 0; number < kEntries; ++number) {
    before.AddEntry(number, "text");
    after.AddEntry(number + kEntries / 2, "text");
  }
  EXPECT_EQ(host::CountNewEntries(Compare(before, after)), kEntries / 2);
}

/// What is wrong with what a user names; empty: nothing.
std::string Complaint(void (*take)(std::string_view, host::DifferenceOptions&),
                      std::string_view text) {
  host::DifferenceOptions options;
  try {
    take(text, options);
  } catch (const host::UsageError& error) {
    return error.what();
  }
  return {};
}

TEST(DifferenceOptions, NameWhatThereIs) {
  EXPECT_EQ(Complaint(host::TakePart, "drives"), "");
  EXPECT_EQ(Complaint(host::TakePart, "events"), "");
  EXPECT_THAT(Complaint(host::TakePart, "drive"), HasSubstr("did you mean drives?"));
  EXPECT_EQ(Complaint(host::TakeTable, "PINFO"), "");
  EXPECT_EQ(Complaint(host::TakeTable, "pinfo"), "");
  EXPECT_THAT(Complaint(host::TakeTable, "PINFOS"), HasSubstr("did you mean PINFO?"));
  EXPECT_THAT(Complaint(host::TakeTable, "NETSTATINFO"), HasSubstr("connections come and go"));
}

TEST(DifferenceOptions, IgnoreColumnsThatAreCompared) {
  for (const char* right : {"drives.*", "drives.media_errors", "fruinfo.[Baseboard] Board Mfg."}) {
    EXPECT_EQ(Complaint(host::TakeIgnored, right), "");
  }
  for (const char* wrong : {"drives", "drives.", ".state", "drivs.state", "drives.temperature",
                            "NETSTATINFO.item1", "events.text"}) {
    EXPECT_NE(Complaint(host::TakeIgnored, wrong), "") << wrong;
  }
}

}  // namespace
