#include "fleet/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "fleet/row_tables.h"
#include "host/text/usage_error.h"

namespace {

using fleet::ReadSettingsText;
using host::UsageError;
using testing::Contains;
using testing::HasSubstr;
using testing::Pair;
using testing::ThrowsMessage;

TEST(FleetSettings, AreLinesOfAFile) {
  const fleet::Settings settings = ReadSettingsText(
      "# where it is\n\nstore = /srv/fleet \r\nstore-certificate = /k.pem\n"
      "database = host=db1 dbname=fleet\n",
      "f");
  EXPECT_EQ(settings.store.address, "/srv/fleet");
  EXPECT_EQ(settings.store.certificate, "/k.pem");
  EXPECT_THAT(settings.database, Contains(Pair("host", "db1")));
  EXPECT_THAT(settings.database, Contains(Pair("dbname", "fleet")));
}

TEST(FleetSettings, TakeAnAddress) {
  EXPECT_THAT(ReadSettingsText("database=postgresql://db2/x", "f").database,
              Contains(Pair("host", "db2")));
}

TEST(FleetSettings, SayWhichLineIsNone) {
  EXPECT_THAT([] { ReadSettingsText("store = x\nstroe = y\n", "f.conf"); },
              ThrowsMessage<UsageError>(HasSubstr("f.conf:2: it takes lines such as")));
  EXPECT_THAT([] { ReadSettingsText("store =\n", "f.conf"); },
              ThrowsMessage<UsageError>(HasSubstr("f.conf:1")));
  EXPECT_THAT([] { ReadSettingsText("database = hots=db\n", "f.conf"); },
              ThrowsMessage<UsageError>(HasSubstr("f.conf:1: invalid connection option \"hots\"")));
}

TEST(RowTables, HaveEachClassAndEachPartOnce) {
  const fleet::RowTables tables;
  for (std::size_t i = 0; i < tables.All().size(); ++i) {
    EXPECT_EQ(tables.Find(tables.At(i).name), i);
    EXPECT_FALSE(tables.At(i).columns.empty()) << tables.At(i).name;
  }
  EXPECT_TRUE(tables.Find("class_pdlist"));
  EXPECT_TRUE(tables.Find("part_findings"));
  EXPECT_FALSE(tables.Find("part_nothing"));
}

TEST(RowTables, AreShownByViewsOfPartsAlone) {
  const fleet::RowTables tables;
  EXPECT_EQ(tables.At(*tables.Find("class_pdlist")).view, "");
  const fleet::RowTable& drives = tables.At(*tables.Find("part_drives"));
  EXPECT_EQ(drives.view, "drives");
  const auto errors =
      std::find_if(drives.columns.begin(), drives.columns.end(),
                   [](const auto& column) { return column.name == "media_errors"; });
  ASSERT_NE(errors, drives.columns.end());
  EXPECT_EQ(errors->type, "bigint");
  EXPECT_TRUE(tables.At(*tables.Find("part_events")).isLog);
}

}  // namespace
