#include "host/answers/collection_database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/answers/health/unjudged.h"
#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "host/recording/recording_reader.h"
#include "tests/support/program/filled_database.h"
#include "tests/support/program/host_run.h"
#include "tests/support/program/made_collection.h"

namespace host {
namespace {

using Texts = std::vector<std::string>;

class CollectionDatabase : public testing::Test {
 protected:
  CollectionDatabase() : collection(Collect(LoadRecording(test::Sample("two-socket-server")))) {
    FillDatabase(database, CollectionView(collection));
  }
  Collection collection;
  Database database;
};

TEST_F(CollectionDatabase, HasAllPartsWithTheirColumns) {
  const Parts parts = ReadParts(collection);
  for (const PartTable& table : GetPartTables()) {
    std::string columns;
    for (const PartColumn& column : table.columns) {
      columns += (columns.empty() ? "\"" : ", \"") + std::string(column.name) + '"';
    }
    const std::string name(table.name);
    EXPECT_EQ(
        test::AskRows(database, "SELECT count(*) FROM (SELECT " + columns + " FROM " + name + ")"),
        Texts{std::to_string(table.count(parts))})
        << name;
  }
}

TEST_F(CollectionDatabase, HasNumbersAsNumbersAndNothingAsNull) {
  EXPECT_EQ(test::AskRows(database,
                          "SELECT size, typeof(size), temperature, typeof(temperature), "
                          "failure_reason FROM drives WHERE id = 'lsi0 69:9'"),
            Texts{"8000046603698|integer|43.0|real|NULL"});
}

TEST_F(CollectionDatabase, TellsTheMachineBySerialNumber) {
  EXPECT_EQ(test::AskRows(database, "SELECT value FROM machine WHERE name IN ('maker', 'serial')"),
            (Texts{"Northgate", "NGR208-0031"}));
}

TEST_F(CollectionDatabase, HasTheVerdictWithItsFindingsAndEvidence) {
  const Health health = Assess(collection).health;
  EXPECT_EQ(test::AskRows(database,
                          "SELECT value FROM machine WHERE name LIKE 'verdict' "
                          "OR name LIKE 'asOf%'"),
            (Texts{"warning", "2026-11-18T09:41:12+01:00", "the collection"}));
  EXPECT_EQ(
      test::AskRows(database, "SELECT count(*), max(position) FROM findings"),
      Texts{std::to_string(health.findings.size()) + "|" + std::to_string(health.findings.size())});
  EXPECT_EQ(test::AskRows(database,
                          "SELECT severity, area, part, id, serial, rule, observed FROM findings "
                          "WHERE finding = 'drive.predicted lsi0 69:9'"),
            Texts{"warning|drives|drives|lsi0 69:9|Z4K002C9144|drive.predicted|"
                  "S.M.A.R.T. alert, predictive failures 3"});
  EXPECT_EQ(test::AskRows(database,
                          "SELECT e.position, e.rule, e.severity, e.class, e.row, e.key, "
                          "typeof(e.line) FROM findings f JOIN evidence e USING (finding) "
                          "WHERE f.id = 'lsi0 v3' ORDER BY e.position LIMIT 2"),
            (Texts{"1|volume.degraded|warning|LSILINK|1|lsishowall|integer",
                   "2|drive.rebuilding|warning|LSILINK|1|lsishowall|integer"}));
}

// Evidence names the cell that it was read from: it can be joined to it.
TEST_F(CollectionDatabase, HasTheCellsOfItsEvidence) {
  EXPECT_EQ(test::AskRows(database,
                          "SELECT s.name, s.status FROM evidence e JOIN v_sensorinfo s "
                          "ON e.class = 'SENSORINFO' AND s.row = e.row"),
            Texts{"Fan 5|nc"});
}

TEST_F(CollectionDatabase, IsTheSameOfACollectionThatLetsGoOfTheAnswers) {
  const std::string tables = "SELECT name FROM sqlite_master WHERE type = 'table'";
  Database other;
  FillDatabase(other, collection, Assess(collection));
  EXPECT_TRUE(collection.answers.empty());
  EXPECT_TRUE(collection.files.empty());
  EXPECT_EQ(test::AskRows(other, tables), test::AskRows(database, tables));
  for (const std::string& name : test::AskRows(database, tables)) {
    const std::string rows = "SELECT * FROM \"" + name + '"';
    EXPECT_EQ(test::AskRows(other, rows), test::AskRows(database, rows)) << name;
  }
}

TEST(CollectionDatabaseOfSeveral, HasEachMachinesFindings) {
  Database database;
  DatabaseWriter writer(database, Machines::kSeveral);
  const Collection first = Collect(LoadRecording(test::Sample("vroc")));
  const Collection second = Collect(LoadRecording(test::Sample("hba-only")));
  AddCollection(writer, CollectionView(first), "first");
  AddCollection(writer, CollectionView(second), "second");
  AddVerdict(writer, MakeUnjudged("cannot be read"), "third");
  writer.Complete();
  EXPECT_EQ(test::AskRows(database, "SELECT machine, value FROM machine WHERE name = 'verdict'"),
            (Texts{"first|critical", "second|ok", "third|unknown"}));
  EXPECT_EQ(test::AskRows(database, "SELECT machine, id, severity FROM findings"),
            (Texts{"first|intel 2-4-0-0|critical", "third|all|unknown"}));
  EXPECT_EQ(test::AskRows(database, "SELECT DISTINCT machine FROM evidence"),
            (Texts{"first", "third"}));
}

TEST(CollectionDatabaseOfSeveral, HasTheTablesOfPartsAlsoOfWhatCannotBeRead) {
  Database database;
  DatabaseWriter writer(database, Machines::kSeveral);
  AddVerdict(writer, MakeUnjudged("cannot be read"), "one");
  writer.Complete();
  EXPECT_EQ(test::AskRows(database, "SELECT count(*) FROM drives"), Texts{"0"});
}

// Another host's modules may call their classes as they like.
TEST(CollectionDatabaseNames, AreNotTakenByClasses) {
  test::MadeCollection made;
  made.Table("Findings").Row({{"A", "1"}}).Table("DRIVES").Row({{"A", "2"}});
  Database database;
  FillDatabase(database, CollectionView(made.Get()));
  EXPECT_EQ(test::AskRows(database, "SELECT class, name FROM tables"),
            (Texts{"Findings|Findings_2", "DRIVES|DRIVES_2"}));
  EXPECT_EQ(test::AskRows(database, "SELECT rule FROM findings"), Texts{"collection.nothing"});
  EXPECT_EQ(test::AskRows(database, "SELECT count(*) FROM drives"), Texts{"0"});
}

TEST(CollectionDatabaseOfAnAnswer, HasNoParts) {
  Collection answer;
  answer.machineIsKnown = false;
  answer.repository = std::make_unique<halyard::repository::RRepository>();
  Database database;
  FillDatabase(database, CollectionView(answer));
  EXPECT_EQ(test::AskRows(database,
                          "SELECT name FROM sqlite_schema WHERE name IN ('drives', 'findings')"),
            Texts{});
}

}  // namespace
}  // namespace host
