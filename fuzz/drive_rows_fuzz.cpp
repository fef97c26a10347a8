// The lists of a controller's summary: the lines of the input are scanned for data rows and the
// rows are taken apart. A plainer reading foretells which rows come of it, and no value is longer
// than its line or, for a size, than 19 characters.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "pqmodules/rsamplemodule2/drive_lists.h"
#include "tests/support/raid_reference.h"

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

std::vector<pq::TokenColumn> ColumnsOf(const test::PlainList& list) {
  std::vector<pq::TokenColumn> columns;
  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    const std::string& key = list.keys[i];
    if (key.empty() || (key == "Size" && list.keys[i - 1] == "Size")) continue;
    columns.push_back({i + 1, {key, key}, key == "Size"});
  }
  return columns;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> lines =
      test::ReadLinesPlainly(std::string(reinterpret_cast<const char*>(data), size));
  const std::vector<test::PlainList>& lists = test::PlainDriveLists();
  std::vector<test::PlainRows> rows(lists.size());
  std::vector<test::PlainRow> current(lists.size());
  pq::DriveListScan scan;
  for (const std::string& line : lines) {
    const auto isRow = scan.Take(line);
    for (std::size_t i = 0; i < lists.size(); ++i) {
      if (!isRow[i]) continue;
      const std::vector<pq::TokenColumn> columns = ColumnsOf(lists[i]);
      const std::vector<std::string> values = pq::ReadDriveRow(line, columns);
      Require(values.size() <= columns.size());
      for (std::size_t column = 0; column < values.size(); ++column) {
        Require(!values[column].empty() && values[column].size() <= line.size());
        Require(!columns[column].isSize || values[column].size() <= 19);
        current[i].Set(columns[column].column.key, values[column]);
      }
      if (values.size() == columns.size()) rows[i].push_back(current[i].Texts());
    }
  }
  Require(rows == test::ReadDriveListsPlainly(lines));
  return 0;
}
