#include "host/database/database_cuts.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/database/query_guard.h"
#include "host/text/decoder.h"

namespace host {

std::size_t FindMostValueBytes(const Row& row) {
  // What a row has beside its values: the number, and a few bytes for each value.
  constexpr std::size_t kMost = kMostRowBytes - (std::size_t{1} << 16);
  constexpr std::size_t kWidestByte = 3;  // of a code page, in UTF-8
  std::size_t bytes = 0;
  for (const std::string_view value : row.Values()) bytes += value.size();
  if (bytes > kMost / kWidestByte) {
    for (const std::string_view value : row.Values()) {
      bytes += (kWidestByte - 1) * static_cast<std::size_t>(std::ranges::count_if(
                                       value, [](char c) { return (c & 0x80) != 0; }));
    }
  }
  return bytes <= kMost ? kMostRowBytes : kMost / row.ValueCount();
}

std::vector<std::string> DescribeDatabaseCuts(const Collection& collection) {
  const TextDecoder decode(collection.machine.codePage);
  std::vector<std::string> lines;
  for (const CollectedTable& table : collection.tables) {
    if (table.rows == nullptr) continue;
    for (std::size_t i = 0; i < table.RowCount(); ++i) {
      const Row row = table.rows->rows[i];
      const std::size_t most = FindMostValueBytes(row);
      if (most == kMostRowBytes) continue;
      lines.push_back(
          fmt::format("{}: row {} is too large for a database, which has of each value "
                      "the last {} bytes; other formats have all of it",
                      decode(table.className), i + 1, most));
    }
  }
  return lines;
}

}  // namespace host
