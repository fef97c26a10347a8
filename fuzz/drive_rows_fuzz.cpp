// The lists of a controller's summary: the lines of the input are scanned for data rows and the
// rows are taken apart. A plainer reading foretells which rows come of it, and no value is longer
// than its line or, for a size, than 19 characters.
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/checks.h"
#include "pqmodules/rsamplemodule2/drive_lists.h"
#include "tests/support/raid_reference.h"

namespace {

using fuzz::Require;

/// The columns refer to `list`.
std::vector<pq::TokenColumn> ListColumns(const test::PlainList& list) {
  std::vector<pq::TokenColumn> columns;
  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    const std::string& key = list.keys[i];
    if (key.empty() || (key == "Size" && list.keys[i - 1] == "Size")) continue;
    columns.push_back({i + 1, {.key = key, .label = key}, key == "Size"});
  }
  return columns;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::vector<std::string> lines =
      test::ReadLinesPlainly(std::string(reinterpret_cast<const char*>(data), size));
  const std::vector<test::PlainList>& lists = test::GetPlainDriveLists();
  std::vector<test::PlainRows> rows(lists.size());
  std::vector<test::PlainRow> current(lists.size());
  pq::DriveListScan scan;
  for (const std::string& line : lines) {
    const auto isRow = scan.Take(line);
    for (std::size_t i = 0; i < lists.size(); ++i) {
      if (!isRow[i]) continue;
      const std::vector<pq::TokenColumn> columns = ListColumns(lists[i]);
      std::size_t count = 0;
      const bool isWhole =
          pq::ReadDriveRow(line, columns, [&](const pq::Column& column, std::string_view value) {
            Require(count < columns.size() && column.key == columns[count].column.key);
            Require(!value.empty() && value.size() <= line.size());
            Require(!columns[count].isSize || value.size() <= 19);
            current[i].Set(std::string(column.key), std::string(value));
            ++count;
          });
      Require(isWhole == (count == columns.size()));
      if (isWhole) rows[i].push_back(current[i].Texts());
    }
  }
  Require(rows == test::ReadDriveListsPlainly(lines));
  return 0;
}
