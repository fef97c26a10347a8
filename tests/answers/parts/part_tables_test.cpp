#include "host/answers/parts/part_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <variant>

#include "host/answers/parts/condition_words.h"

namespace {

using host::PartColumn;
using host::PartTable;
using host::PartType;
using host::PartValue;

const PartTable& FindTable(std::string_view name) {
  const auto tables = host::GetPartTables();
  return *std::find_if(tables.begin(), tables.end(),
                       [&](const PartTable& table) { return table.name == name; });
}

PartValue Get(const PartTable& table, const host::Parts& parts, std::string_view column) {
  const auto found = std::find_if(table.columns.begin(), table.columns.end(),
                                  [&](const PartColumn& c) { return c.name == column; });
  return found == table.columns.end() ? PartValue() : found->get(*table.at(parts, 0));
}

TEST(PartTables, GiveEachValueInItsType) {
  host::Parts parts;
  host::Drive drive;
  drive.id = "lsi0 69:9";
  drive.readAt = {"LSILINK", 1, "lsishowall", 131, "storcli /c0 show"};
  drive.mediaErrors = 0;
  drive.temperature = 31.5;
  drive.group = "lsi0 g1";
  parts.drives.push_back(drive);
  const PartTable& table = FindTable("drives");
  EXPECT_EQ(table.count(parts), 1U);
  EXPECT_EQ(Get(table, parts, "id"), PartValue("lsi0 69:9"));
  EXPECT_EQ(Get(table, parts, "media_errors"), PartValue(std::int64_t{0}));
  EXPECT_EQ(Get(table, parts, "temperature"), PartValue(31.5));
  EXPECT_EQ(Get(table, parts, "grp"), PartValue("lsi0 g1"));
  EXPECT_EQ(Get(table, parts, "serial"), PartValue());
  EXPECT_EQ(Get(table, parts, "shield"), PartValue());
  EXPECT_EQ(Get(table, parts, "class"), PartValue("LSILINK"));
  EXPECT_EQ(Get(table, parts, "row"), PartValue(std::int64_t{1}));
  EXPECT_EQ(Get(table, parts, "line"), PartValue(std::int64_t{131}));
  EXPECT_EQ(Get(table, parts, "tool"), PartValue("storcli /c0 show"));
}

TEST(PartTables, HaveNamesForDatabases) {
  std::set<std::string_view> tables;
  for (const PartTable& table : host::GetPartTables()) {
    EXPECT_TRUE(tables.insert(table.name).second) << table.name;
    std::set<std::string_view> columns;
    EXPECT_EQ(table.columns.front().name, "id") << table.name;
    EXPECT_FALSE(table.description.empty()) << table.name;
    for (const PartColumn& column : table.columns) {
      EXPECT_TRUE(columns.insert(column.name).second) << table.name << " " << column.name;
      EXPECT_FALSE(column.description.empty()) << table.name << " " << column.name;
      EXPECT_EQ(column.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"),
                std::string_view::npos)
          << column.name;
    }
    for (const char* place : {"class", "row", "key", "line", "tool"}) {
      EXPECT_TRUE(columns.contains(place)) << table.name << " " << place;
    }
  }
  EXPECT_EQ(tables.size(), 14U);
}

TEST(PartTables, KnowWhereAColumnWasRead) {
  host::Drive drive;
  drive.readAt.line = 7;
  drive.columnPlaces.push_back({"serial", {"LSILINK", 1, "pdlist", 31, {}}});
  EXPECT_EQ(host::FindPlace(drive, "state").line, 7);
  EXPECT_EQ(host::FindPlace(drive, "serial").line, 31);
}

TEST(Conditions, AreOneForAllTools) {
  for (const char* word : {"Onln", "ONLINE", "Conf/Online", "Normal"}) {
    EXPECT_EQ(host::FindDriveCondition(word), "online") << word;
  }
  EXPECT_EQ(host::FindDriveCondition("Online (JBOD)"), "jbod");
  EXPECT_EQ(host::FindDriveCondition("Rebuilding ( 42 % )"), "rebuilding");
  EXPECT_EQ(host::FindVolumeCondition("Impacted ( Build/Verify with fix : 90 % )"), "recovering");
  EXPECT_EQ(host::FindVolumeCondition("OfLn"), "offline");
  EXPECT_EQ(host::FindCacheBackupCondition("Dgd (Needs Attention)"), "bad");
}

TEST(Conditions, OfCacheBackupsAreFoundWithinTheirWords) {
  EXPECT_EQ(host::FindCacheBackupCondition("Degraded, charging"), "bad");
  EXPECT_EQ(host::FindCacheBackupCondition("Not charging"), "bad");
  EXPECT_EQ(host::FindCacheBackupCondition("Fast charging"), "passing");
  EXPECT_EQ(host::FindCacheBackupCondition("Failed: over-voltage"), "failed");
  EXPECT_EQ(host::FindCacheBackupCondition("Not Optimal"), "unknown");
}

TEST(Conditions, AreUnknownOrUntoldRatherThanWell) {
  EXPECT_EQ(host::FindDriveCondition("Wxyz"), "unknown");
  EXPECT_EQ(host::FindDriveCondition(" "), "untold");
  EXPECT_EQ(host::FindVolumeCondition("(Optimal)"), "unknown");
}

}  // namespace
