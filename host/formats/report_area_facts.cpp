#include "host/formats/report_area_facts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <string_view>
#include <vector>

#include "host/answers/parts/optical_drives.h"
#include "host/formats/report_area_sources.h"
#include "host/text/count_text.h"

namespace host {
namespace {

/// "26 online, 4 spare, 2 other": how often each word comes, the most frequent first.
std::string CountWords(const std::vector<std::string>& words) {
  constexpr std::size_t kMostWords = 3;
  std::map<std::string_view, std::size_t> counts;
  for (const std::string& word : words) ++counts[word];
  std::vector<std::pair<std::string_view, std::size_t>> sorted(counts.begin(), counts.end());
  std::ranges::stable_sort(sorted, std::ranges::greater(),
                           [](const auto& one) { return one.second; });
  std::string text;
  std::size_t others = 0;
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    const auto& [word, count] = sorted[i];
    if (i < kMostWords) {
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, word);
    } else {
      others += count;
    }
  }
  return others == 0 ? text : fmt::format("{}, {} other", text, others);
}

/// The part of a time that people need in a few words.
std::string KeepDay(const std::string& time) {
  constexpr std::size_t kDay = 10;
  return time.substr(0, kDay);
}

template <typename Table>
std::string CountConditions(const Table& table, const char* noun) {
  std::vector<std::string> conditions;
  for (const auto& part : table) {
    const bool isTold = !part.condition.empty() && part.condition != "untold";
    conditions.push_back(isTold ? part.condition : "without a state");
  }
  return fmt::format("{}: {}", FormatCount(table.size(), noun), CountWords(conditions));
}

std::string DescribeDrives(const Parts& parts) {
  const std::size_t optical = CountOpticalDrives(parts);
  if (optical == 0) return CountConditions(parts.drives, "drive");
  std::vector<Drive> drives;
  std::ranges::remove_copy_if(parts.drives, std::back_inserter(drives), IsOptical);
  const std::string others = FormatCount(optical, "optical drive");
  return drives.empty() ? others : CountConditions(drives, "drive") + "; " + others;
}

std::string DescribeControllers(const Parts& parts) {
  std::string text = FormatCount(parts.controllers.size(), "controller");
  std::vector<std::string> states;
  for (const CacheBackup& backup : parts.cacheBackups) states.push_back(backup.state);
  if (!states.empty()) text += "; cache backup: " + CountWords(states);
  return text;
}

std::string DescribeSelfTest(const Parts& parts) {
  if (parts.selfTests.empty()) return FormatCount(parts.leds.size(), "LED");
  const std::string& text = parts.selfTests.front().text;
  const std::size_t colon = text.find(':');
  return "self-test" + (colon == std::string::npos ? ": " + text : text.substr(colon));
}

std::string DescribeEvents(const ReportArea& area, const Parts& parts) {
  std::string_view newest;
  std::size_t count = 0;
  for (const AreaParts& list : area.parts) {
    count += list.rows.size();
    for (const std::size_t row : list.rows) {
      newest = std::max(newest, parts.events.GetText(row, EventColumn::kTime));
    }
  }
  std::string text = count == 1 ? "1 entry" : fmt::format("{} entries", count);
  return newest.empty() ? text : text + ", newest " + KeepDay(std::string(newest));
}

std::string DescribeSensors(const ReportArea& area, const Parts& parts, const JudgedParts& judged) {
  std::string supplies;
  std::string sensors;
  for (const AreaParts& list : area.parts) {
    if (list.table->name == "power_supplies") {
      supplies = list.rows.size() == 1 ? "1 supply" : fmt::format("{} supplies", list.rows.size());
      continue;
    }
    const auto well =
        static_cast<std::size_t>(std::ranges::count_if(list.rows, [&](std::size_t row) {
          return !judged.contains({"sensors", parts.sensors[row].id});
        }));
    sensors =
        fmt::format("{} of {} without a finding", well, FormatCount(list.rows.size(), "sensor"));
  }
  return supplies + (supplies.empty() || sensors.empty() ? "" : "; ") + sensors;
}

std::string DescribeNetwork(const Collection& collection) {
  std::size_t rows = 0;
  for (const CollectedTable& table : collection.tables) {
    if (IsOfNetwork(table)) rows += table.RowCount();
  }
  return rows == 0 ? "nothing collected" : FormatCount(rows, "row") + " of addresses, connections";
}

std::string DescribeSources(const Collection& collection, const Parts& parts) {
  if (!collection.problems.empty()) return collection.problems.front();
  std::vector<std::string> states;
  for (const PartSource& source : parts.sources) {
    states.push_back(source.state != "none"            ? source.state
                     : WasNotAsked(source, collection) ? "not asked"
                                                       : "not there");
  }
  return states.empty() ? "nothing asked" : "sources: " + CountWords(states);
}

}  // namespace

std::string DescribeAreaFact(const ReportArea& area, const Collection& collection,
                             const Parts& parts, const JudgedParts& judged) {
  if (area.id == "network") return DescribeNetwork(collection);
  if (area.id == "collection") return DescribeSources(collection, parts);
  if (area.parts.empty()) return {};
  if (area.id == "arrays") return CountConditions(parts.volumes, "volume");
  if (area.id == "drives") return DescribeDrives(parts);
  if (area.id == "controllers") return DescribeControllers(parts);
  if (area.id == "bmc") return DescribeSelfTest(parts);
  if (area.id == "log" || area.id == "amt") return DescribeEvents(area, parts);
  return DescribeSensors(area, parts, judged);
}

}  // namespace host
