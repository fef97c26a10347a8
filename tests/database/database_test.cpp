#include "host/database/database.h"

#include <gtest/gtest.h>

#include "frame/halyard/repository.h"
#include "host/database/database_cuts.h"
#include "tests/support/program/filled_database.h"
#include "tests/support/program/made_collection.h"

namespace {

using halyard::repository::RInstance;
using halyard::repository::RRepository;
using host::Collection;
using host::Database;
using host::DatabaseError;

/// One table, "CLASS", whose rows have the properties `Key` and `key`, which SQL takes for one
/// name.
Collection MakeCollection() {
  Collection collection;
  collection.repository = std::make_unique<RRepository>();
  for (const char* value : {"one", "t\xE4st'); DROP TABLE log;--"}) {
    RInstance row("CLASS", "instance", -1);
    row.AddProperty("Key", "A \"label\"", value, false);
    row.AddProperty("key", "Another", 7, false);
    row.AddPropertyAttr("Key", "raw", "true");
    row.AddPropertyAttr("Key", "filename", "report");
    row.AddToRepository(*collection.repository);
  }
  collection.modules.push_back({"module", "A module"});
  collection.tables.push_back({"CLASS",
                               "module",
                               {},
                               &host::TablesOf(*collection.repository).at("CLASS"),
                               {"rows", "2 rows", {"one is left out"}}});
  collection.log.Add({4, "pqmodules/x", 12, "[repo] a line"});
  return collection;
}

class FilledDatabase : public testing::Test {
 protected:
  FilledDatabase() { test::FillDatabase(database, MakeCollection()); }
  Database database;
};

using Texts = std::vector<std::string>;

TEST_F(FilledDatabase, SaysWhichMachineItIsAndWhenItWasRecorded) {
  Collection collection = MakeCollection();
  collection.machine.recordedAt = host::ParseIsoTime("2026-02-03T04:05:06+01:00");
  collection.machine.system = "Windows";
  collection.machine.contentKey = "abc";
  Database other;
  test::FillDatabase(other, collection);
  EXPECT_EQ(test::AskRows(other,
                          "SELECT name, value FROM machine "
                          "WHERE name IN ('recordedAt', 'system', 'contentKey')"),
            (Texts{"recordedAt|2026-02-03T04:05:06+01:00", "system|Windows", "contentKey|abc"}));
}

TEST_F(FilledDatabase, HasTheNotesOfTables) {
  EXPECT_EQ(test::AskRows(database, "SELECT class, text FROM notes"),
            Texts{"CLASS|one is left out"});
}

TEST_F(FilledDatabase, HasATablePerClassWithTextsAsCollected) {
  EXPECT_EQ(test::AskRows(database, "SELECT row, Key FROM CLASS"),
            (Texts{"1|one", "2|t\xC3\xA4st'); DROP TABLE log;--"}));
}

TEST_F(FilledDatabase, NamesColumnsApartThatDifferInCaseAlone) {
  EXPECT_EQ(test::AskRows(database, "SELECT key, name, label FROM columns WHERE class = 'CLASS'"),
            (Texts{"Key|Key|A \"label\"", "key|key_2|Another"}));
  EXPECT_EQ(test::AskRows(database, "SELECT sum(key_2) FROM CLASS"), Texts{"14"});
}

TEST_F(FilledDatabase, TellsModulesTablesAttachmentsAndLog) {
  EXPECT_EQ(test::AskRows(database, "SELECT name, description FROM modules"),
            Texts{"module|A module"});
  EXPECT_EQ(test::AskRows(database, "SELECT class, name, rows, outcome, status FROM tables"),
            Texts{"CLASS|CLASS|2|rows|2 rows"});
  EXPECT_EQ(test::AskRows(database, "SELECT row, key, filename, text FROM attachments LIMIT 1"),
            Texts{"1|Key|report|one"});
  EXPECT_EQ(test::AskRows(database, "SELECT level, file, line, text FROM log"),
            Texts{"4|pqmodules/x|12|[repo] a line"});
}

TEST_F(FilledDatabase, RefusesToWrite) {
  EXPECT_THROW(test::AskRows(database, "DELETE FROM CLASS"), DatabaseError);
  EXPECT_EQ(test::AskRows(database, "SELECT count(*) FROM CLASS"), Texts{"2"});
}

TEST_F(FilledDatabase, RefusesASecondStatement) {
  EXPECT_THROW(test::AskRows(database, "SELECT 1; SELECT 2"), DatabaseError);
  EXPECT_EQ(test::AskRows(database, "SELECT 1 ; "), Texts{"1"});
}

TEST_F(FilledDatabase, SaysWhatIsWrongInOneLine) {
  try {
    test::AskRows(database, "SELECT * FROM NOWHERE");
    FAIL();
  } catch (const DatabaseError& error) {
    EXPECT_STREQ(error.what(), "no such table: NOWHERE");
  }
}

TEST(Database, TellsOfARowThatSqliteWouldNotGiveBack) {
  test::MadeCollection made;
  made.Table("A").Row({{"Line", "small"}});
  const std::string half(std::size_t{45} << 20, '\xE4');  // three bytes each in UTF-8, at most
  made.Row({{"One", half}});
  EXPECT_TRUE(host::DescribeDatabaseCuts(made.Get()).empty());
  made.Row({{"One", half}, {"Two", half}});
  EXPECT_EQ(host::DescribeDatabaseCuts(made.Get()),
            std::vector<std::string>{
                "A: row 3 is too large for a database, which has of each value the last 134184960 "
                "bytes; other formats have all of it"});
}

TEST(Database, RefusesAFileThatIsNotThere) {
  EXPECT_THROW(Database(std::filesystem::path("no-such-folder") / "x.db"), DatabaseError);
}

TEST(Database, NamesAClassApartThatIsCalledLikeItsOwnTables) {
  Collection collection;
  collection.repository = std::make_unique<RRepository>();
  RInstance row("LOG", "", -1);
  row.AddProperty("row", "Row", "x", false);
  row.AddToRepository(*collection.repository);
  collection.tables.push_back(
      {"LOG", "module", {}, &host::TablesOf(*collection.repository).at("LOG"), {"rows", "1 row"}});
  Database database;
  test::FillDatabase(database, collection);
  EXPECT_EQ(test::AskRows(database, "SELECT row, row_2 FROM LOG_2"), Texts{"1|x"});
}

}  // namespace
