#include "pqmodules/rsamplemodule1/demonstration.h"

#include <span>

#include "frame/row_buffer.h"
#include "pqmodules/rsamplemodule1/tables.h"

namespace pq {
namespace {

constexpr Column kColumns1[] = {
    {"S1T1PRO1", "S1T1 PRO 1", "a fixed text, the same in all columns of the row"},
    {"S1T1PRO2", "S1T1 PRO 2", "the same text"},
    {"S1T1PRO3", "S1T1 PRO 3", "the same text"},
    {"S1T1PRO4", "S1T1 PRO 4", "the same text"},
};
constexpr Column kColumns2[] = {
    {"S1T2PRO1", "S1T2 PRO 1", "a fixed text, the same in all columns"},
    {"S1T2PRO2", "S1T2 PRO 2", "the same text"},
    {"S1T2PRO3", "S1T2 PRO 3", "the same text"},
    {"S1T2PRO4", "S1T2 PRO 4", "the same text"},
};

struct DemonstrationRow {
  const char* className;
  const char* title;
  const char* value;  ///< of each of its properties
  std::span<const Column> columns;
};
// The two rows of the first table share one title.
constexpr DemonstrationRow kRows[] = {
    {kSample1Table1, "sample 1 - table 1", "VALUE1", kColumns1},
    {kSample1Table1, "sample 1 - table 1", "VALUE2", kColumns1},
    {kSample1Table2, "sample 1 - table 2", "VALUE1", kColumns2},
};

// Reserved for the rows of kJunAddTable, which has none so far.
[[maybe_unused]] constexpr const char* kJunAddNames[] = {"junadd1", "junadd2", "junadd3",
                                                         "junadd4"};

}  // namespace

void AddDemonstrationRows(const RaidInventoryCollection& collection) {
  for (const DemonstrationRow& demonstration : kRows) {
    RowBuffer row(collection.repo, demonstration.className, demonstration.title);
    for (const Column& column : demonstration.columns) row.Set(column, demonstration.value);
    row.Commit();
  }
}

void DescribeInventoryDemonstration(ModuleDescription& module) {
  TableDescription table1{.className = kSample1Table1, .title = "Sample 1, table 1"};
  table1.AddColumns(kColumns1);
  TableDescription table2{.className = kSample1Table2, .title = "Sample 1, table 2"};
  table2.AddColumns(kColumns2);
  module.tables.push_back(table1);
  module.tables.push_back(table2);
  module.tables.push_back({.className = kJunAddTable,
                           .title = "Additional sample table",
                           .whyAlwaysEmpty = "nothing fills this table so far"});
}

}  // namespace pq
