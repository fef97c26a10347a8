#include "host/database/database_writer.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/program/filled_database.h"
#include "tests/support/program/made_collection.h"
#include "tests/support/program/made_database.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using halyard::repository::RInstance;
using test::MadeCollection;
using testing::ElementsAre;
using testing::IsEmpty;

/// Adds a row of `className`.
void AddRow(MadeCollection& made, const std::string& className,
            const std::vector<std::pair<std::string, std::string>>& keysAndValues) {
  RInstance instance(className, "made", -1);
  for (const auto& [key, value] : keysAndValues) instance.AddProperty(key, key, value, false);
  instance.AddToRepository(made.Repository());
}

/// Values with their types, in SQL's notation.
std::vector<std::string> AskWritten(Database& database, const std::string& sql) {
  std::vector<std::string> lines;
  database.Query(
      sql, [](const Database::Names&) {},
      [&](const Database::Values& values) {
        std::string line;
        for (const Database::Value& value : values) {
          const std::string text = value.kind == CellKind::kNothing ? "NULL"
                                   : value.kind == CellKind::kText  ? "'" + value.text + "'"
                                                                    : value.text;
          line += (line.empty() ? "" : " ") + text;
        }
        lines.push_back(line);
      });
  return lines;
}

TEST(DatabaseWriter, HasEveryDescribedClassWithItsColumns) {
  Database database;
  test::FillDatabase(database, {});
  EXPECT_THAT(AskWritten(database, "SELECT seqNum, EventDescription FROM EVENTLOG2"), IsEmpty());
  EXPECT_THAT(AskWritten(database, "SELECT seq_num, event_description FROM v_eventlog2"),
              IsEmpty());
  EXPECT_THAT(AskWritten(database, "SELECT LANINFO.LAN12, v_laninfo.lan12 FROM LANINFO, v_laninfo"),
              IsEmpty());
}

TEST(DatabaseWriter, MakesViewsOfTrimmedTextsAndOfNumbers) {
  MadeCollection made;
  made.Table("SENSORINFO");
  AddRow(made, "SENSORINFO",
         {{"item1", " 007\r\n"},
          {"item2", " 47.50\t"},
          {"item5", "-3"},
          {"item6", "na"},
          {"item7", " \n"},
          {"item8",
           "\xa0"
           "0012"},
          {"item9", "1e5"},
          {"item10", "1.2.3"}});
  Database database;
  test::FillDatabase(database, made.Get());
  EXPECT_THAT(AskWritten(database, "SELECT * FROM v_sensorinfo"),
              ElementsAre("1 '007' 47.5 NULL NULL -3 'na' NULL '0012' '1e5' '1.2.3'"));
}

TEST(DatabaseWriter, NamesColumnsOfAViewByLabelOrElseByKey) {
  MadeCollection made;
  made.Table("T");
  RInstance row("T", "made", -1);
  row.AddProperty("a", "Row", std::string("1"), false);
  row.AddProperty("b", "-", std::string("2"), false);
  row.AddProperty("c", "Row ", 3, false);
  row.AddToRepository(made.Repository());
  Database database;
  test::FillDatabase(database, made.Get());
  EXPECT_THAT(AskWritten(database, "SELECT row, row_2, b, row_3 FROM v_t"),
              ElementsAre("1 '1' '2' 3"));
}

TEST(DatabaseWriter, TellsProblems) {
  MadeCollection made;
  made.Get().problems = {"one", "two"};
  Database database;
  test::FillDatabase(database, made.Get());
  EXPECT_THAT(AskWritten(database, "SELECT * FROM problems"), ElementsAre("1 'one'", "2 'two'"));
}

TEST(DatabaseWriter, TellsSeveralMachinesApart) {
  Database database;
  DatabaseWriter writer(database, Machines::kSeveral);
  for (const char* machine : {"a", "b"}) {
    MadeCollection made;
    made.Table("T");
    AddRow(made, "T", {{"x", machine}});
    if (*machine == 'b') AddRow(made, "T", {{"only b", "1"}});
    made.Get().machine.name = std::string("NODE-") + machine;
    writer.Add(CollectionView(made.Get()), {}, machine);
  }
  writer.Complete();
  EXPECT_THAT(AskWritten(database, "SELECT * FROM T"),
              ElementsAre("'a' 1 'a' NULL", "'b' 1 'b' NULL", "'b' 2 NULL '1'"));
  EXPECT_THAT(AskWritten(database, "SELECT machine, row, only_b FROM v_t WHERE only_b IS NOT NULL"),
              ElementsAre("'b' 2 '1'"));
  EXPECT_THAT(AskWritten(database, "SELECT machine, value FROM machine WHERE name = 'name'"),
              ElementsAre("'a' 'NODE-a'", "'b' 'NODE-b'"));
  EXPECT_THAT(AskWritten(database, "SELECT machine, class, rows FROM tables"),
              ElementsAre("'a' 'T' 1", "'b' 'T' 2"));
}

TEST(DatabaseWriter, CopiesDatabasesAndTakesThemOutAgain) {
  const test::TemporaryFolder folder;
  test::MakeDatabase(folder / "a.db",
                     "CREATE TABLE machine (name, value); INSERT INTO machine VALUES ('name', 'A');"
                     "CREATE TABLE SENSORINFO (row, item2, other);"
                     "INSERT INTO SENSORINFO VALUES (1, ' 5.5 ', x'41'), (2, 7, NULL);"
                     "CREATE TABLE own (machine, n); INSERT INTO own VALUES ('m', 1.5);"
                     "CREATE VIEW v_own AS SELECT * FROM no_such_table");
  Database database;
  DatabaseWriter writer(database, Machines::kSeveral);
  for (const char* machine : {"one", "two"}) {
    Database from(std::filesystem::path(folder / "a.db"));
    writer.Copy(from, machine);
  }
  writer.Remove("two");
  writer.Complete();
  EXPECT_THAT(AskWritten(database, "SELECT machine, row, reading, other FROM v_sensorinfo"),
              ElementsAre("'one' 1 5.5 'A'", "'one' 2 7 NULL"));
  EXPECT_THAT(AskWritten(database, "SELECT * FROM machine"), ElementsAre("'one' 'name' 'A'"));
  EXPECT_THAT(AskWritten(database, "SELECT machine, machine_2, n FROM own"),
              ElementsAre("'one' 'm' 1.5"));
}

}  // namespace
}  // namespace host
