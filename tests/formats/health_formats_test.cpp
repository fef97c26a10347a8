#include "host/formats/health_formats.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include "tests/support/collected.h"

namespace {

using host::HealthHit;
using host::Severity;

/// A machine with findings of one hit each.
host::Health MakeHealth(const std::vector<HealthHit>& hits) {
  host::Health health;
  health.asOf = "2026-11-18T09:41:12";
  health.asOfFrom = "the collection";
  for (const HealthHit& hit : hits) {
    health.findings.push_back({hit.rule + " " + hit.id, hit.severity, {hit}});
  }
  if (!hits.empty()) health.worst = hits.front().severity;
  return health;
}

HealthHit MakeHit(Severity severity, const std::string& id, const std::string& text) {
  HealthHit hit;
  hit.rule = "drive.any";
  hit.severity = severity;
  hit.part = "drives";
  hit.id = id;
  hit.observed = "seen";
  hit.text = text;
  return hit;
}

TEST(HealthDocument, IsTheOneInDocs) {
  std::ifstream file(test::SamplesFolder() + "/../docs/health.md", std::ios::binary);
  const std::string written{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(host::WriteHealthDocument(), written)
      << "docs/health.md is stale: pqhost health --list-rules > docs/health.md";
}

TEST(HealthTable, ObeysNothingThatAToolPrinted) {
  std::ostringstream out;
  host::WriteHealthTable(MakeHealth({MakeHit(Severity::kCritical, "x", "bad \x1b[2J\nword")}),
                         /*isBrief=*/false, {}, out);
  EXPECT_EQ(out.str().find('\x1b'), std::string::npos);
  EXPECT_NE(out.str().find("bad \\x1b[2J\\nword"), std::string::npos);
}

TEST(HealthTable, PutsNoticesOfOneRuleIntoOneLine) {
  std::ostringstream out;
  host::WriteHealthTable(
      MakeHealth({MakeHit(Severity::kNotice, "one", "a"), MakeHit(Severity::kNotice, "two", "b")}),
      /*isBrief=*/true, {}, out);
  EXPECT_NE(out.str().find("notice    drive.any, 2 drives: one (seen), two (seen)\n"),
            std::string::npos)
      << out.str();
}

TEST(HealthNagios, KeepsTextsApartFromItsOwnSigns) {
  std::ostringstream out;
  host::WriteHealthNagios(MakeHealth({MakeHit(Severity::kWarning, "x", "a | b\nc")}), out);
  EXPECT_EQ(out.str(),
            "WARNING - a / b\\nc | critical=0 warning=1 unknown=0 notice=0\n"
            "warning: a / b\\nc\n  drive.any, x: seen\n");
}

}  // namespace
