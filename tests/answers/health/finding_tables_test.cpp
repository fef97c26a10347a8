#include "host/answers/health/finding_tables.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "host/answers/health/findings.h"

namespace host {
namespace {

HealthHit MakeHit(const std::string& rule, Severity severity) {
  HealthHit hit;
  hit.rule = rule;
  hit.severity = severity;
  hit.part = "drives";
  hit.id = "lsi0 69:9";
  hit.place = {"LSILINK", 2, "pdlist", 0, "storcli"};
  return hit;
}

Health MakeHealth() {
  HealthHit known = MakeHit("drive.known", Severity::kNotice);
  known.suppressed = Severity::kCritical;
  known.reason = "ordered";
  Health health;
  health.findings = JoinFindings({known, MakeHit("drive.bad", Severity::kWarning)});
  return health;
}

std::string Get(const FindingTable& table, const FindingRow& row, std::string_view name) {
  for (const FindingColumn& column : table.columns) {
    if (column.name == name) return FormatPartValue(column.get(row), "NULL");
  }
  throw std::runtime_error("no column " + std::string(name));
}

TEST(FindingTables, HaveARowForAFindingAndOneForEachHit) {
  const Health health = MakeHealth();
  const auto tables = GetFindingTables();
  ASSERT_EQ(tables.size(), 2U);
  EXPECT_EQ(tables[0].name, "findings");
  EXPECT_EQ(ListRows(tables[0], health).size(), 1U);
  EXPECT_EQ(tables[1].name, "evidence");
  EXPECT_EQ(ListRows(tables[1], health).size(), 2U);
}

TEST(FindingTables, TellTitleAndEvidenceApart) {
  const Health health = MakeHealth();
  const FindingTable& findings = GetFindingTables()[0];
  const FindingTable& evidence = GetFindingTables()[1];
  const FindingRow title = ListRows(findings, health)[0];
  EXPECT_EQ(Get(findings, title, "position"), "1");
  EXPECT_EQ(Get(findings, title, "finding"), "drive.bad lsi0 69:9");
  EXPECT_EQ(Get(findings, title, "severity"), "warning");
  EXPECT_EQ(Get(findings, title, "suppressed"), "NULL");
  const FindingRow second = ListRows(evidence, health)[1];
  EXPECT_EQ(Get(evidence, second, "position"), "2");
  EXPECT_EQ(Get(evidence, second, "finding"), "drive.bad lsi0 69:9");
  EXPECT_EQ(Get(evidence, second, "severity"), "notice");
  EXPECT_EQ(Get(evidence, second, "suppressed"), "critical");
  EXPECT_EQ(Get(evidence, second, "reason"), "ordered");
}

TEST(FindingTables, TellWhereEvidenceWasRead) {
  const Health health = MakeHealth();
  const FindingTable& evidence = GetFindingTables()[1];
  const FindingRow row = ListRows(evidence, health)[0];
  EXPECT_EQ(Get(evidence, row, "class"), "LSILINK");
  EXPECT_EQ(Get(evidence, row, "row"), "2");
  EXPECT_EQ(Get(evidence, row, "key"), "pdlist");
  EXPECT_EQ(Get(evidence, row, "line"), "NULL");  // of the property as a whole
  EXPECT_EQ(Get(evidence, row, "tool"), "storcli");
}

TEST(FindingTables, HaveColumnsOfDifferentNames) {
  for (const FindingTable& table : GetFindingTables()) {
    std::set<std::string_view> names;
    for (const FindingColumn& column : table.columns) {
      EXPECT_TRUE(names.insert(column.name).second) << column.name;
      EXPECT_NE(column.description, "") << column.name;
    }
  }
}

}  // namespace
}  // namespace host
