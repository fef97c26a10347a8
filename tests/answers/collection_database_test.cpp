#include "host/answers/collection_database.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "host/recording/recording_reader.h"
#include "tests/support/program/filled_database.h"
#include "tests/support/program/host_run.h"

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

TEST(CollectionDatabaseOfAnAnswer, HasNoParts) {
  Collection answer;
  answer.machineIsKnown = false;
  answer.repository = std::make_unique<halyard::repository::RRepository>();
  Database database;
  FillDatabase(database, CollectionView(answer));
  EXPECT_EQ(test::AskRows(database, "SELECT name FROM sqlite_schema WHERE name = 'drives'"),
            Texts{});
}

}  // namespace
}  // namespace host
