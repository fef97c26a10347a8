#include "host/formats/report_size.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

#include "host/text/decoder.h"

namespace host {
namespace {

/// A value takes room even if it is empty.
constexpr std::size_t kBytesBesideValue = 4;
/// The most bytes that a report takes for a byte of a value, as \u003c.
constexpr std::size_t kWidestByte = 6;

/// By byte of a value, how many a report takes for it, at most.
constexpr std::array<std::uint8_t, 256> kWidths = [] {
  std::array<std::uint8_t, 256> widths{};
  for (std::size_t byte = 0; byte < widths.size(); ++byte) {
    const bool isEscaped = byte < 0x20 || byte == '<' || byte == '>' || byte == 0x7F;
    // Beyond ASCII, a code page's byte may be three in UTF-8.
    widths[byte] = isEscaped ? kWidestByte : byte >= 0x80 ? 3 : byte == '"' || byte == '\\' ? 2 : 1;
  }
  return widths;
}();

std::size_t MeasureValue(std::string_view value) {
  std::size_t bytes = kBytesBesideValue;
  for (const char c : value) bytes += kWidths[static_cast<unsigned char>(c)];
  return bytes;
}

std::size_t MeasureRow(const Row& row) {
  std::size_t bytes = 0;
  for (const std::string_view value : row.Values()) bytes += MeasureValue(value);
  return bytes;
}

std::size_t MeasureTable(const CollectedTable& table) {
  std::size_t bytes = 0;
  if (table.rows == nullptr) return bytes;
  for (const Row& row : table.rows->rows) bytes += MeasureRow(row);
  return bytes;
}

/// The most bytes that any of several things may have, so that all of them have `most` together.
std::size_t ShareOut(std::vector<std::size_t> sizes, std::size_t most) {
  std::ranges::sort(sizes);
  std::size_t left = most;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const std::size_t share = left / (sizes.size() - i);
    if (sizes[i] > share) return share;
    left -= sizes[i];
  }
  return std::numeric_limits<std::size_t>::max();
}

/// Of many rows the last, of a few whole files the end of each.
ShownPart FitTable(const Table& table, std::size_t most) {
  constexpr std::size_t kFewRows = 100;
  if (table.rows.size() <= kFewRows) {
    std::vector<std::size_t> sizes;
    for (const Row& row : table.rows) {
      for (const std::string_view value : row.Values()) sizes.push_back(MeasureValue(value));
    }
    return {0, ShareOut(std::move(sizes), most)};
  }
  std::size_t bytes = 0;
  std::size_t first = table.rows.size();
  while (first > 0 && bytes <= most) bytes += MeasureRow(table.rows[--first]);
  // The row that was too much is left out, unless it is the last.
  first = std::min(first + 1, table.rows.size() - 1);
  return {first, most};
}

}  // namespace

std::string_view CutToEnd(std::string_view text, std::size_t most) {
  if (text.size() <= most / kWidestByte) return text;
  std::size_t bytes = 0;
  std::size_t begin = text.size();
  while (begin > 0 && bytes <= most) {
    const auto byte = static_cast<unsigned char>(text[--begin]);
    bytes += byte >= 0x80 ? 1 : kWidths[byte];
  }
  if (bytes <= most) return text;
  return KeepEnd(text, text.size() - begin - 1);
}

std::vector<ShownPart> FitIntoReport(const Collection& collection, std::size_t most) {
  std::vector<std::size_t> sizes;
  for (const CollectedTable& table : collection.tables) sizes.push_back(MeasureTable(table));
  const std::size_t share = ShareOut(sizes, most);
  std::vector<ShownPart> parts(sizes.size());
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (sizes[i] > share) parts[i] = FitTable(*collection.tables[i].rows, share);
  }
  return parts;
}

std::vector<std::string> DescribeReportCuts(const Collection& collection) {
  const TextDecoder decode(collection.machine.codePage);
  const std::vector<ShownPart> parts = FitIntoReport(collection);
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i] == ShownPart()) continue;
    const CollectedTable& table = collection.tables[i];
    std::string line = fmt::format("{}: the report, which would be too large for a browser, shows ",
                                   decode(table.className));
    if (parts[i].firstRow > 0) {
      line += fmt::format("the last {} of {} rows", table.RowCount() - parts[i].firstRow,
                          table.RowCount());
    } else {
      line += fmt::format("of each value the last {} bytes", parts[i].mostValueBytes);
    }
    lines.push_back(line + "; other formats have all of it");
  }
  return lines;
}

}  // namespace host
