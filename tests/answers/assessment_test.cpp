#include "host/answers/assessment.h"

#include <gtest/gtest.h>

#include <string>

#include "host/answers/health/rule_file.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

/// Options with one rule that SQLite refuses, as it does one that takes too long.
HealthOptions MakeRefusedRule(const std::string& file) {
  Rule rule;
  rule.id = "drive.any";
  rule.part = "drives";
  rule.sql = "SELECT nonsense";
  rule.file = file;
  rule.line = 7;
  HealthOptions options;
  options.rules = {rule};
  return options;
}

// A result has to be written also when the machine is more than its judge can bear.
TEST(Assessment, IsUnknownWhenTheProgramsOwnRulesCannotBeAsked) {
  test::MadeCollection made;
  HealthJudge judge(MakeRefusedRule(""));
  const Health health = Assess(made.Get(), judge).health;
  EXPECT_EQ(GetExitCode(health), 3);
  ASSERT_EQ(health.findings.size(), 1U);
  EXPECT_EQ(health.findings[0].key, "collection.not-judged all");
  EXPECT_EQ(health.findings[0].hits[0].observed,
            "rules.sql:7: drive.any: no such column: nonsense");
}

TEST(Assessment, IsNoneWhenARuleOfTheUsersCannotBeAsked) {
  test::MadeCollection made;
  HealthJudge judge(MakeRefusedRule("house.sql"));
  try {
    Assess(made.Get(), judge);
    FAIL();
  } catch (const HealthFileError& error) {
    EXPECT_STREQ(error.what(), "house.sql:7: drive.any: no such column: nonsense");
  }
}

}  // namespace
}  // namespace host
