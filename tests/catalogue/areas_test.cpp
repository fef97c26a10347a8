#include "host/catalogue/areas.h"

#include <gmock/gmock.h>

#include "host/catalogue/table_sources.h"
#include "host/collect/selection.h"

namespace host {
namespace {

using testing::ElementsAre;

TEST(Areas, AreInTheOrderOfTheModulesWithTheSamplesLast) {
  EXPECT_THAT(ListAreas(), ElementsAre("LSI RAID", "Intel RAID", "Microchip RAID", "LSI SAS2",
                                       "BMC", "Intel AMT", "Network", "SMBIOS", "Samples"));
}

TEST(Areas, HoldEveryTableAndToolThatModulesDescribe) {
  for (const pq::ModuleDescription& module : GetModuleDescriptions()) {
    for (const pq::TableDescription& table : module.tables) EXPECT_NE(table.area, "");
    for (const pq::ToolDescription& tool : module.tools) EXPECT_NE(tool.area, "");
  }
}

TEST(Areas, OfSampleTablesAreTheSamples) {
  for (const char* name : {"JUNADDTABLE", "S1TABLE1", "S1TABLE2", "S2TABLE1", "S2TABLE2"}) {
    EXPECT_EQ(FindTableDescription(name)->area, "Samples") << name;
  }
}

TEST(Areas, GroupTablesOfSeveralModulesInTheirOrder) {
  const std::vector<TableGroup> groups = GroupByArea({{"S1TABLE1", "one", "One"},
                                                      {"VOLUME", "one", "One"},
                                                      {"VINFO", "two", "Two"},
                                                      {"RAIDINFO", "one", "One"},
                                                      {"PINFO", "two", "Two"}});
  ASSERT_EQ(groups.size(), 3U);
  EXPECT_EQ(groups[0].area, "LSI RAID");
  EXPECT_THAT(groups[0].modules, ElementsAre("two", "one"));
  EXPECT_THAT(groups[0].tables, ElementsAre(2, 3, 4));
  EXPECT_EQ(groups[1].area, "Intel RAID");
  EXPECT_EQ(groups[2].area, "Samples");
}

TEST(Areas, OfUnknownTablesAreTheirModulesBeforeTheSamples) {
  const std::vector<TableGroup> groups = GroupByArea(
      {{"S1TABLE1", "one", "One"}, {"NEW", "two", "Two"}, {"ARPINFO", "w", "W"}, {"T", "x", "X"}});
  ASSERT_EQ(groups.size(), 4U);
  EXPECT_EQ(groups[0].area, "Network");
  EXPECT_EQ(groups[1].area, "Two");
  EXPECT_EQ(groups[2].area, "X");
  EXPECT_EQ(groups[3].area, "Samples");
}

}  // namespace
}  // namespace host
