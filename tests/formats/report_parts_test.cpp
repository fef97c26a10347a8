// Which parts the report's joined tables show of a machine that has more than a page takes.
#include "host/formats/report_parts.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/collect/collection.h"
#include "host/formats/report_areas.h"
#include "tests/answers/health/judged.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

TEST(ReportParts, ShowPartsWithFindingsBeforeOthers) {
  Parts parts;
  for (int slot = 0; slot < 250; ++slot) {
    test::AddDrive(parts, "lsi0 1:" + std::to_string(slot), slot == 249 ? "Failed" : "Onln");
  }
  Health health;
  health.findings.emplace_back().hits.emplace_back();
  health.findings[0].hits[0].part = "drives";
  health.findings[0].hits[0].id = "lsi0 1:249";
  const Assessment assessment{std::move(parts), std::move(health)};
  test::MadeCollection made;
  const std::vector<ReportArea> areas = ListReportAreas(made.Get(), assessment);
  const ReportParts shown(assessment, areas, nullptr);
  EXPECT_EQ(shown.FindRowId("drives", "lsi0 1:249"), "part-drives-250");
  EXPECT_EQ(shown.FindRowId("drives", "lsi0 1:198"), "part-drives-199");
  EXPECT_EQ(shown.FindRowId("drives", "lsi0 1:199"), "");
  EXPECT_EQ(shown.ListPlaces().size(), 200U);
}

}  // namespace
}  // namespace host
