#include "host/formats/difference/difference_words.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/text/count_text.h"

namespace host {

std::string DescribeTime(const ComparedSide& side) {
  if (!side.isDated) return "an unknown time";
  constexpr std::size_t kToTheMinute = 16;
  std::string shortened = side.asOf.substr(0, kToTheMinute);
  std::ranges::replace(shortened, 'T', ' ');
  return shortened;
}

std::string CountDifferences(const Difference& difference) {
  const std::size_t entries = CountNewEntries(difference);
  return fmt::format("{}, {}, {} log {}, {}", FormatCount(difference.parts.size(), "part"),
                     FormatCount(difference.cells.size(), "cell"), entries,
                     entries == 1 ? "entry" : "entries",
                     FormatCount(difference.findings.size(), "finding"));
}

std::string DescribeEntry(const NewEntry& entry) {
  if (!entry.time.empty()) return fmt::format("{} {}", entry.time, entry.text);
  return entry.number ? fmt::format("#{} {}", *entry.number, entry.text) : entry.text;
}

std::vector<NotComparedGroup> GroupNotCompared(const std::vector<NotCompared>& all) {
  std::vector<NotComparedGroup> groups;
  for (const NotCompared& one : all) {
    auto group = std::ranges::find_if(groups, [&](const NotComparedGroup& known) {
      return known.side == one.side && known.why == one.why;
    });
    if (group == groups.end()) group = groups.insert(group, {{}, one.side, one.why});
    group->names.push_back(one.what);
  }
  return groups;
}

}  // namespace host
