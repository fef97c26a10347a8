// The three tables of the first controller's summary: topology, virtual drives, physical drives.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "frame/row_buffer.h"
#include "frame/tokens.h"
#include "pqmodules/rsamplemodule2/collection.h"

namespace pq {

inline constexpr std::size_t kDriveListCount = 3;

/// Tells which lines of a summary are data rows, and of which list: topology, virtual drives,
/// physical drives, in this order.
class DriveListScan {
 public:
  /// Per list, whether `line` is one of its rows. A line can be a row of several lists: a title
  /// that comes before the rule that ends the list before it leaves both open.
  std::array<bool, kDriveListCount> Take(std::string_view line);

 private:
  std::array<bool, kDriveListCount> inList{};
  int headLines = 0;  // One count for all lists.
};

/// A size from its number and its unit, as far as it fits the room of a size.
std::string JoinSize(std::string_view number, std::string_view unit);

/// Which blank-separated token of a data row fills a column.
struct TokenColumn {
  std::size_t token;  ///< from 1
  Column column;
  bool isSize = false;  ///< the token is the number and the next one is the unit
};

/// Takes a data row apart: onValue(column, value) for each of `columns` (by rising token) up to the
/// first one that the row lacks. True when it lacks none.
template <typename OnValue>
bool ReadDriveRow(std::string_view line, std::span<const TokenColumn> columns,
                  const OnValue& onValue) {
  TokenScan tokens(line, " ");
  std::size_t count = 0;
  for (const TokenColumn& column : columns) {
    std::string_view token;
    for (; count < column.token; ++count) token = tokens.Next();
    const std::string_view unit = column.isSize ? tokens.Next() : token;
    if (unit.empty()) return false;
    if (column.isSize) {
      ++count;
      onValue(column.column, JoinSize(token, unit));
    } else {
      onValue(column.column, token);
    }
  }
  return true;
}

/// Adds the rows of "TINFO", "VINFO" and "PINFO".
void CollectDriveLists(const RaidLogsCollection& collection);

void DescribeDriveLists(ModuleDescription& module);

}  // namespace pq
