#include "pqmodules/rsamplemodule2/demonstration.h"

#include <iterator>

#include "frame/row_buffer.h"
#include "pqmodules/rsamplemodule2/tables.h"

namespace pq {
namespace {

constexpr Column kReadings[] = {
    {"item1", "Name", "a fixed number: that of the row, from 0", ValueKind::kNumber},
    {"item2", "Reading", "a fixed number, one more than the column before", ValueKind::kNumber},
    {"item3", "Status", "a fixed number, one more than the column before", ValueKind::kNumber},
    {"item4", "LCR", "a fixed number, one more than the column before", ValueKind::kNumber},
    {"item5", "LNR", "a fixed number, one more than the column before", ValueKind::kNumber},
    {"item6", "UCR", "a fixed number, one more than the column before", ValueKind::kNumber},
};
constexpr int kReadingRows = std::size(kReadings);  // As many as columns.

constexpr Column kTexts[] = {
    {"S2T2PRO1", "S2T2 PRO 1", "a fixed text, the same in all columns"},
    {"S2T2PRO2", "S2T2 PRO 2", "the same text"},
    {"S2T2PRO3", "S2T2 PRO 3", "the same text"},
    {"S2T2PRO4", "S2T2 PRO 4", "the same text"},
};

void AddReadings(RRepository& repo) {
  for (int row = 0; row < kReadingRows; ++row) {
    RInstance instance(kSample2Table1, "sample 2 - table 1", kInstanceNumber);
    int value = row;
    for (const Column& column : kReadings) {
      instance.AddProperty(std::string(column.key), std::string(column.label), value++,
                           kPropertyFlag);
    }
    instance.AddToRepository(repo);
  }
}

/// All four texts are the same.
void AddTexts(RRepository& repo) {
  RowBuffer row(repo, kSample2Table2, "sample 2 - table 2");
  for (const Column& column : kTexts) row.Set(column, "VALUE1");
  row.Commit();
}

}  // namespace

void AddDemonstrationRows(const RaidLogsCollection& collection) {
  AddReadings(collection.repo);
  AddTexts(collection.repo);
}

void DescribeLogsDemonstration(ModuleDescription& module) {
  TableDescription readings{.className = kSample2Table1, .title = "Sample 2, table 1"};
  readings.AddColumns(kReadings);
  TableDescription texts{.className = kSample2Table2, .title = "Sample 2, table 2"};
  texts.AddColumns(kTexts);
  module.tables.push_back(readings);
  module.tables.push_back(texts);
}

}  // namespace pq
