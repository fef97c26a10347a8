#include "pqmodules/rwininfo/net_table.h"

#include <algorithm>

namespace pq {

ArpScan ScanArpLines(std::string_view text) {
  const std::string_view scanned = text.substr(0, kScanLimit);
  ArpScan scan;
  scan.end = scanned.size();
  std::size_t start = 0;
  for (std::size_t lineEnd = 0; (lineEnd = scanned.find('\n', start)) != std::string_view::npos;
       start = lineEnd + 1) {
    const std::size_t length = std::min(lineEnd + 1 - start, kArpLineLimit);
    const std::string_view line = scanned.substr(start, length);
    scan.lines.push_back(line);
    if (line.size() > kArpTitleLength) scan.rows += line;
  }
  return scan;
}

std::optional<std::size_t> FindConnectionRows(std::string_view text) {
  const std::string_view scanned = text.substr(0, kScanLimit);
  std::size_t rows = 0;
  std::size_t next = 0;
  for (std::size_t lineEnds = 1; lineEnds <= kConnectionMinLineEnds; ++lineEnds) {
    const std::size_t lineEnd = scanned.find('\n', next);
    if (lineEnd == std::string_view::npos) return std::nullopt;
    if (lineEnds == kConnectionHeadLineEnds) rows = lineEnd;
    next = lineEnd + 1;
  }
  return rows;
}

}  // namespace pq
