#include "host/formats/report_areas.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "host/answers/parts/collected_rows.h"
#include "host/answers/parts/optical_drives.h"
#include "host/text/count_text.h"

namespace host {
namespace {

struct AreaKind {
  std::string_view id;
  std::string_view title;
  std::array<std::string_view, 4> sources;  ///< that could tell of it
};

// The ids are those of the rules.
constexpr AreaKind kAreaKinds[] = {
    {"arrays", "Arrays", {"lsi", "microchip", "intel"}},
    {"drives", "Drives", {"lsi", "microchip", "intel"}},
    {"controllers", "RAID controllers", {"lsi", "microchip", "intel", "sas2"}},
    {"cooling", "Cooling", {"sensors"}},
    {"temperatures", "Temperatures", {"sensors"}},
    {"power", "Power", {"power supplies", "sensors"}},
    {"voltages", "Voltages", {"sensors"}},
    {"memory", "Memory", {"sensors"}},
    {"sensors", "Other sensors", {"sensors"}},
    {"bmc", "BMC", {"leds", "self-test", "fru"}},
    {"log", "Event logs", {"sel", "lsi", "microchip", "sas2"}},
    {"network", "Network", {}},
    {"amt", "Intel AMT", {"amt"}},
    {"collection", "Collection", {}},
};

/// Tables whose parts all belong to one area. Sensors and events are in several.
constexpr std::pair<std::string_view, std::string_view> kAreasOfTables[] = {
    {"controllers", "controllers"}, {"drives", "drives"},         {"volumes", "arrays"},
    {"groups", "arrays"},           {"missing_drives", "arrays"}, {"cache_backups", "controllers"},
    {"enclosures", "controllers"},  {"power_supplies", "power"},  {"leds", "bmc"},
    {"self_tests", "bmc"},          {"sources", "collection"},    {"unread", "collection"},
};

std::string_view FindAreaOfPart(const PartTable& table, const Parts& parts, std::size_t row) {
  if (table.name == "sensors") return FindSensorArea(parts.sensors[row]);
  if (table.name == "events") {
    return parts.events.GetText(row, EventColumn::kSource) == "AMT" ? "amt" : "log";
  }
  for (const auto& [name, area] : kAreasOfTables) {
    if (name == table.name) return area;
  }
  return "collection";
}

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

ReportArea MakeArea(const AreaKind& kind) {
  ReportArea area;
  area.id = kind.id;
  area.title = kind.title;
  return area;
}

class AreaFinder {
 public:
  AreaFinder(const Collection& collection, const Assessment& assessment)
      : collection(collection), parts(assessment.parts), health(assessment.health) {
    for (const HealthFinding& finding : health.findings) CountFinding(finding);
  }

  std::vector<ReportArea> List() {
    std::vector<ReportArea> areas;
    for (const AreaKind& kind : kAreaKinds) areas.push_back(MakeArea(kind));
    for (const PartTable& table : GetPartTables()) {
      for (std::size_t row = 0; row < table.count(parts); ++row) {
        ReportArea& area = areas[RankReportArea(FindAreaOfPart(table, parts, row))];
        if (area.parts.empty() || area.parts.back().table != &table)
          area.parts.push_back({&table, {}});
        area.parts.back().rows.push_back(row);
      }
    }
    for (std::size_t i = 0; i < areas.size(); ++i) Describe(kAreaKinds[i], areas[i]);
    return areas;
  }

 private:
  /// What was found in an area.
  struct Found {
    std::size_t titles = 0;    ///< findings that are called by a part of it
    std::size_t touching = 0;  ///< findings with any part of it
    Severity worst = Severity::kNotice;
  };

  /// A finding is of all areas that its parts are of: a degraded array is not well because the
  /// finding is called by its failed drive.
  void CountFinding(const HealthFinding& finding) {
    const auto find = [](const HealthHit& hit) {
      return kAreaKinds[std::min(RankReportArea(hit.area), std::size(kAreaKinds) - 1)].id;
    };
    std::set<std::string_view> touched;
    for (const HealthHit& hit : finding.hits) {
      if (hit.severity == Severity::kNotice) continue;
      judged.emplace(hit.part, hit.id);
      Found& area = found[find(hit)];
      area.worst = std::max(area.worst, hit.severity);
      if (touched.insert(find(hit)).second) ++area.touching;
    }
    if (finding.severity != Severity::kNotice) ++found[find(finding.hits.front())].titles;
  }

  void Describe(const AreaKind& kind, ReportArea& area) {
    area.fact = DescribeParts(area);
    if (const auto at = found.find(area.id);
        at != found.end() && at->second.worst != Severity::kNotice) {
      const Found& here = at->second;
      area.tone = GetTone(here.worst);
      area.mark =
          fmt::format("{} {}", GetSign(area.tone), here.titles > 0 ? here.titles : here.touching);
      if (area.fact.empty()) area.fact = "see the findings";
      return;
    }
    if (area.id == "collection" && !collection.problems.empty()) {
      area.tone = Tone::kWarning;
      area.mark = fmt::format("{} {}", GetSign(area.tone), collection.problems.size());
    } else if (area.id == "network") {
      area.mark = "not judged";
    } else if (!area.parts.empty()) {
      area.isReadInPart = std::ranges::any_of(parts.sources, [&](const PartSource& source) {
        return source.state == "failed" &&
               std::ranges::find(kind.sources, source.id) != kind.sources.end();
      });
      area.tone = area.isReadInPart ? Tone::kUnknown : Tone::kOk;
      area.mark = GetSign(area.tone);
      if (area.isReadInPart) area.mark += " read in part";
    } else {
      ExplainAbsence(kind, area);
    }
  }

  /// Why there are no parts: they are not on the machine, or nobody knows.
  void ExplainAbsence(const AreaKind& kind, ReportArea& area) {
    bool wasRead = false;
    for (const PartSource& source : parts.sources) {
      if (std::ranges::find(kind.sources, source.id) == kind.sources.end()) continue;
      // What told of a controller's drives need not have told its log.
      const std::string noLog =
          area.id == "log" && source.state == "read" ? FindWhyNoLog(source.id) : std::string();
      if (source.state == "read" && noLog.empty()) wasRead = true;
      const bool isNotChecked = source.state == "failed" || !noLog.empty() || WasNotAsked(source);
      if (area.fact.empty() || (isNotChecked && !area.isNotChecked)) {
        area.fact = noLog.empty() ? source.observed : noLog;
      }
      area.isNotChecked = area.isNotChecked || isNotChecked;
    }
    if (wasRead) {
      area.isNotChecked = false;
      area.fact = "none in what was read";
      area.mark = "none shown";
      return;
    }
    if (area.fact.empty()) {
      area.isNotChecked = true;
      area.fact = "not collected";
    }
    area.mark = area.isNotChecked ? "not checked" : "not there";
  }

  /// Empty where a log of the source was read.
  std::string FindWhyNoLog(std::string_view source) const {
    if (source == "microchip") {
      const std::vector<CollectedRow> rows = CollectedRows(collection).ListRows("PMCLINK");
      const bool hasLog = std::ranges::any_of(rows, [](const CollectedRow& row) {
        return row.FindText("Controller_Event_Log").has_value();
      });
      return hasLog ? "" : "arcconf left no log of a controller";
    }
    constexpr std::pair<std::string_view, std::string_view> kLogs[] = {
        {"lsi", "EVENTLOG1"}, {"lsi", "FWTERMLOG"}, {"sel", "SELINFO"}, {"sas2", "SAS2IRLOG"}};
    std::string why;
    for (const auto& [id, className] : kLogs) {
      const auto table =
          std::ranges::find(collection.tables, className, &CollectedTable::className);
      if (id != source || table == collection.tables.end()) continue;
      if (table->status.IsOfAnOutput()) return {};
      if (why.empty()) why = table->status.text;
    }
    return why;
  }

  /// Nothing is known of the source, since nobody asked it. Its table may have a row all the same;
  /// another one then tells the reason.
  bool WasNotAsked(const PartSource& source) const {
    constexpr std::string_view kNotAsked[] = {"tool missing", "declined", "not this language"};
    if (source.state != "none") return false;
    if (source.observed == "not collected") return true;
    return std::ranges::any_of(collection.tables, [&](const CollectedTable& table) {
      if (table.status.missing == source.observed) return true;
      return table.status.text == source.observed &&
             std::ranges::find(kNotAsked, table.status.outcome) != std::end(kNotAsked);
    });
  }

  std::string DescribeParts(const ReportArea& area) const {
    if (area.id == "network") return DescribeNetwork();
    if (area.id == "collection") return DescribeSources();
    if (area.parts.empty()) return {};
    if (area.id == "arrays") return CountConditions(parts.volumes, "volume");
    if (area.id == "drives") return DescribeDrives();
    if (area.id == "controllers") return DescribeControllers();
    if (area.id == "bmc") return DescribeSelfTest();
    if (area.id == "log" || area.id == "amt") return DescribeEvents(area);
    return DescribeSensors(area);
  }

  std::string DescribeDrives() const {
    const std::size_t optical = CountOpticalDrives(parts);
    if (optical == 0) return CountConditions(parts.drives, "drive");
    std::vector<Drive> drives;
    std::ranges::remove_copy_if(parts.drives, std::back_inserter(drives), IsOptical);
    const std::string others = FormatCount(optical, "optical drive");
    return drives.empty() ? others : CountConditions(drives, "drive") + "; " + others;
  }

  template <typename Table>
  std::string CountConditions(const Table& table, const char* noun) const {
    std::vector<std::string> conditions;
    for (const auto& part : table) {
      const bool isTold = !part.condition.empty() && part.condition != "untold";
      conditions.push_back(isTold ? part.condition : "without a state");
    }
    return fmt::format("{}: {}", FormatCount(table.size(), noun), CountWords(conditions));
  }

  std::string DescribeControllers() const {
    std::string text = FormatCount(parts.controllers.size(), "controller");
    std::vector<std::string> states;
    for (const CacheBackup& backup : parts.cacheBackups) states.push_back(backup.state);
    if (!states.empty()) text += "; cache backup: " + CountWords(states);
    return text;
  }

  std::string DescribeSelfTest() const {
    if (parts.selfTests.empty()) return FormatCount(parts.leds.size(), "LED");
    const std::string& text = parts.selfTests.front().text;
    const std::size_t colon = text.find(':');
    return "self-test" + (colon == std::string::npos ? ": " + text : text.substr(colon));
  }

  std::string DescribeEvents(const ReportArea& area) const {
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

  std::string DescribeSensors(const ReportArea& area) const {
    std::string supplies;
    std::string sensors;
    for (const AreaParts& list : area.parts) {
      if (list.table->name == "power_supplies") {
        supplies =
            list.rows.size() == 1 ? "1 supply" : fmt::format("{} supplies", list.rows.size());
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

  std::string DescribeNetwork() const {
    std::size_t rows = 0;
    for (const CollectedTable& table : collection.tables) {
      if (IsOfNetwork(table)) rows += table.RowCount();
    }
    return rows == 0 ? "nothing collected"
                     : FormatCount(rows, "row") + " of addresses, connections";
  }

  std::string DescribeSources() const {
    if (!collection.problems.empty()) return collection.problems.front();
    std::vector<std::string> states;
    for (const PartSource& source : parts.sources) {
      states.push_back(source.state != "none" ? source.state
                       : WasNotAsked(source)  ? "not asked"
                                              : "not there");
    }
    return states.empty() ? "nothing asked" : "sources: " + CountWords(states);
  }

  const Collection& collection;
  const Parts& parts;
  const Health& health;
  std::map<std::string_view, Found> found;
  std::set<std::pair<std::string, std::string>> judged;  ///< table and id of parts
};

}  // namespace

Tone GetTone(Severity severity) {
  constexpr std::array<Tone, 4> kTones{Tone::kAbsent, Tone::kUnknown, Tone::kWarning,
                                       Tone::kCritical};
  return kTones[static_cast<std::size_t>(severity)];
}

const char* GetStyleClass(Tone tone) {
  constexpr std::array<const char*, 5> kClasses{"critical", "warning", "unknown", "ok", "absent"};
  return kClasses[static_cast<std::size_t>(tone)];
}

const char* GetSign(Tone tone) {
  constexpr std::array<const char*, 5> kSigns{"●", "▲", "?", "✓", "–"};
  return kSigns[static_cast<std::size_t>(tone)];
}

const char* NameSeverity(Severity severity) {
  constexpr std::array<const char*, 4> kNames{"Notice", "Not known", "Warning", "Critical"};
  return kNames[static_cast<std::size_t>(severity)];
}

std::vector<ReportArea> ListReportAreas(const Collection& collection,
                                        const Assessment& assessment) {
  return AreaFinder(collection, assessment).List();
}

std::size_t RankReportArea(std::string_view id) {
  const auto* found = std::ranges::find(kAreaKinds, id, &AreaKind::id);
  return static_cast<std::size_t>(found - std::begin(kAreaKinds));
}

std::string_view FindReportAreaTitle(std::string_view id) {
  const std::size_t rank = RankReportArea(id);
  return rank < std::size(kAreaKinds) ? kAreaKinds[rank].title : std::string_view();
}

bool IsOfNetwork(const CollectedTable& table) {
  return table.className == "ARPINFO" || table.className == "NETSTATINFO";
}

std::string_view FindSensorArea(const Sensor& sensor) {
  // Sensor types of IPMI, as the rules have them.
  constexpr std::pair<std::int64_t, std::string_view> kAreas[] = {
      {0x01, "temperatures"}, {0x02, "voltages"}, {0x04, "cooling"}, {0x0a, "cooling"},
      {0x08, "power"},        {0x09, "power"},    {0x0c, "memory"}};
  for (const auto& [type, area] : kAreas) {
    if (sensor.type == type) return area;
  }
  return "sensors";
}

}  // namespace host
