#include "host/answers/parts/header_table.h"

#include <algorithm>
#include <utility>

#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// Heads of two words.
constexpr std::string_view kLongHeads[] = {"LU/NS Count", "Next Learn"};

constexpr std::size_t kShortestRule = 10;

/// Tables have some 15. Every row is compared with all heads, so that a line of any number of words
/// must not become as many.
constexpr std::size_t kMostHeads = 64;

/// From the first of `words` to the end of the last.
std::string_view Join(const std::vector<std::string_view>& words, std::size_t first,
                      std::size_t count) {
  if (count == 0) return {};
  const char* begin = words[first].data();
  const std::string_view last = words[first + count - 1];
  return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
}

bool IsLetter(char c) { return LowerCase(c) >= 'a' && LowerCase(c) <= 'z'; }

bool IsSizeOfTwoWords(std::string_view number, std::string_view unit) {
  return IsSizeUnit(unit) && ReadLeadingReal(number) && !ReadSize(number);
}

}  // namespace

std::string_view RowCells::operator[](std::string_view head) const {
  for (const Cell& cell : cells) {
    if (cell.head == head) return cell.text;
  }
  return {};
}

TableHeads::TableHeads(std::string_view line) {
  for (const std::string_view word : ListWords(line)) {
    if (heads.size() == kMostHeads) return;
    const auto begin = static_cast<std::size_t>(word.data() - line.data());
    const std::size_t end = begin + word.size();
    if (!heads.empty()) {
      Head& last = heads.back();
      const std::string_view both = line.substr(last.begin, end - last.begin);
      if (std::find(std::begin(kLongHeads), std::end(kLongHeads), both) != std::end(kLongHeads)) {
        last = {both, last.begin, end};
        continue;
      }
    }
    heads.push_back({word, begin, end});
  }
}

std::size_t TableHeads::FindPlace(std::string_view head) const {
  const auto found = std::find_if(heads.begin(), heads.end(),
                                  [&](const Head& known) { return known.text == head; });
  return static_cast<std::size_t>(found - heads.begin());
}

bool TableHeads::Has(std::string_view head) const { return FindPlace(head) < heads.size(); }

std::optional<RowCells> TableHeads::DealWords(std::string_view row,
                                              std::string_view wideHead) const {
  const std::vector<std::string_view> words = ListWords(row);
  const std::size_t wide = FindPlace(wideHead);
  std::vector<RowCells::Cell> cells;
  cells.reserve(heads.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < std::min(wide, heads.size()); ++i) {
    if (next == words.size()) return std::nullopt;
    const bool isPair = next + 1 < words.size() && IsSizeOfTwoWords(words[next], words[next + 1]);
    const std::size_t count = isPair ? 2 : 1;
    cells.push_back({heads[i].text, Join(words, next, count)});
    next += count;
  }
  std::size_t end = words.size();
  for (std::size_t i = heads.size(); i-- > wide + 1;) {
    if (end == next) return std::nullopt;
    const bool isPair = end - next > 1 && IsSizeOfTwoWords(words[end - 2], words[end - 1]);
    const std::size_t count = isPair ? 2 : 1;
    end -= count;
    cells.push_back({heads[i].text, Join(words, end, count)});
  }
  if (wide < heads.size()) {
    cells.push_back({heads[wide].text, Join(words, next, end - next)});
  } else if (next != end) {
    return std::nullopt;
  }
  return RowCells(std::move(cells));
}

RowCells TableHeads::CutBelowHeads(std::string_view row) const {
  const std::vector<std::string_view> words = ListWords(row);
  std::vector<RowCells::Cell> cells;
  cells.reserve(heads.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < heads.size(); ++i) {
    const bool isLast = i + 1 == heads.size();
    const std::size_t first = next;
    while (next < words.size()) {
      const auto begin = static_cast<std::size_t>(words[next].data() - row.data());
      const bool reachesNext = !isLast && begin + words[next].size() > heads[i + 1].begin;
      if (reachesNext && begin >= heads[i].end) break;
      ++next;
    }
    cells.push_back({heads[i].text, Join(words, first, next - first)});
  }
  return RowCells(std::move(cells));
}

std::string TableScan::DescribeBreak() const {
  if (!broken && !IsInTable()) return {};
  const std::string_view name = broken.value_or(title);
  return name.empty() ? "breaks off in a table" : "breaks off in the table " + std::string(name);
}

TableScan::LineKind TableScan::Take(std::string_view line) {
  const std::string_view text = Trim(line);
  if (IsRule(text, '-', kShortestRule)) {
    ++rules;
    if (rules > 2) {
      rules = 0;
      title = {};
    }
    return LineKind::kOther;
  }
  if (text.empty()) return LineKind::kOther;
  if (rules == 1) {
    heads = TableHeads(line);
    return LineKind::kHeads;
  }
  if (IsLetter(text.front()) && text.ends_with(':') && text.find('=') == std::string_view::npos) {
    if (!broken && IsInTable()) broken = title;
    title = Trim(text.substr(0, text.size() - 1));
    rules = 0;
    return LineKind::kTitle;
  }
  return rules == 2 ? LineKind::kRow : LineKind::kOther;
}

}  // namespace host
