#include "host/formats/column_widths.h"

#include <algorithm>
#include <numeric>

#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr std::size_t kWidestWord = 20;  ///< a longer one may be broken

/// The width of the widest piece of `text` between two of the characters `separators`.
std::size_t MeasureWidestPiece(std::string_view text, const char* separators) {
  std::size_t widest = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(separators), text.size());
    widest = std::max(widest, MeasureWidth(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return widest;
}

/// Deals out the `spare` columns of the screen: first to those that lack fewest.
void Widen(std::vector<std::size_t>& widths, const std::vector<ColumnNeed>& needs,
           std::size_t spare) {
  const auto missing = [&](std::size_t i) { return needs[i].Whole() - widths[i]; };
  while (spare > 0) {
    std::size_t next = widths.size();
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const bool isFirst = next == widths.size();
      if (missing(i) > 0 && (isFirst || missing(i) < missing(next))) next = i;
    }
    if (next == widths.size()) return;
    const std::size_t given = std::min(spare, missing(next));
    widths[next] += given;
    spare -= given;
  }
}

}  // namespace

void ColumnNeed::Add(std::string_view shown) {
  whole = std::max(whole, MeasureWidestPiece(shown, "\n"));
  if (longestWord < kWidestWord) {
    longestWord = std::max(longestWord, MeasureWidestPiece(shown, " \n"));
  }
}

std::size_t ColumnNeed::WidthAt(std::size_t most) const {
  return std::min(whole, std::max(most, std::min(longestWord, kWidestWord)));
}

std::vector<std::size_t> FitColumns(const std::vector<ColumnNeed>& needs, std::size_t screenWidth) {
  if (needs.empty()) return {};
  const std::size_t gaps = kColumnGap * (needs.size() - 1);
  for (std::size_t most = screenWidth; most > 0; --most) {
    std::vector<std::size_t> widths;
    for (const ColumnNeed& need : needs) widths.push_back(need.WidthAt(most));
    const std::size_t total = std::accumulate(widths.begin(), widths.end(), gaps);
    if (total > screenWidth) continue;
    Widen(widths, needs, screenWidth - total);
    return widths;
  }
  return {};
}

}  // namespace host
