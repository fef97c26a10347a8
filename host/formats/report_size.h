// How much a report shows of a collection that is larger than what a browser opens.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "host/collect/collection.h"

namespace host {

/// Bytes of values in the report. Browsers give a page up that is a few times as large, and show
/// nothing of it.
inline constexpr std::size_t kMostReportBytes = std::size_t{128} << 20;

/// A sentence of the report, in columns of a screen; the rest is cut.
inline constexpr std::size_t kWidestReportText = 400;

/// What a report shows of a table: the newest, which tools print last.
struct ShownPart {
  std::size_t firstRow = 0;  ///< rows before it are left out
  /// Bytes that the end of any value may take in the report.
  std::size_t mostValueBytes = std::numeric_limits<std::size_t>::max();

  bool operator==(const ShownPart&) const = default;
};

/// One for each table of the collection. The largest tables lose what is too much for all of them
/// together.
std::vector<ShownPart> FitIntoReport(const Collection& collection,
                                     std::size_t most = kMostReportBytes);

/// The end of `text`, which is UTF-8, from a whole character on, that takes at most `most` bytes in
/// the report.
std::string_view CutToEnd(std::string_view text, std::size_t most);

/// A line of UTF-8 for each table that is not shown whole.
std::vector<std::string> DescribeReportCuts(const Collection& collection);

}  // namespace host
