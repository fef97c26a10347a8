#include "host/pqhost/submission.h"

#include <gmock/gmock.h>

#include "host/text/version.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(Submission, SaysWhatTheCollectionKnowsOfTheMachine) {
  test::MadeCollection made;
  MachineFacts& machine = made.Get().machine;
  machine.codePage = 850;
  machine.name = "NODE31";
  machine.system = "Windows Server 2022 Standard, build 20348";
  machine.recordedAt = ParseIsoTime("2026-11-18T10:41:07+01:00");
  made.Table("FRUINFO").Row({{"A", "ipmiutil fru version 3.18\x81\r\n"},
                             {"B", "[Baseboard,20,00] Product Serial Num  : P\x84"}});
  const Submission submission = DescribeSubmission(made.Get());
  EXPECT_EQ(submission.name, "NODE31");
  EXPECT_EQ(submission.system, "Windows Server 2022 Standard, build 20348");
  EXPECT_EQ(submission.recordedAt, machine.recordedAt);
  EXPECT_THAT(submission.serials, ElementsAre("Pä"));
  EXPECT_EQ(submission.program, std::string("pqhost ") + kVersion);
  EXPECT_THAT(submission.tools, ElementsAre(Pair("ipmiutil", "3.18ü")));
  EXPECT_FALSE(submission.redacted);
}

}  // namespace
}  // namespace host
