#include "host/formats/report_areas.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "host/answers/health/machine_areas.h"
#include "host/formats/report_area_facts.h"
#include "host/formats/report_area_sources.h"

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

std::string_view FindAreaOfPart(const PartTable& table, const Parts& parts, std::size_t row) {
  if (table.name == "sensors") return FindSensorArea(parts.sensors[row]);
  if (table.name == "events") {
    return parts.events.GetText(row, EventColumn::kSource) == "AMT" ? "amt" : "log";
  }
  return FindAreaOfTable(table.name);
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
    area.fact = DescribeAreaFact(area, collection, parts, judged);
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
      const std::string noLog = area.id == "log" && source.state == "read"
                                    ? FindWhyNoLog(source.id, collection)
                                    : std::string();
      if (source.state == "read" && noLog.empty()) wasRead = true;
      const bool isNotChecked =
          source.state == "failed" || !noLog.empty() || WasNotAsked(source, collection);
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

  const Collection& collection;
  const Parts& parts;
  const Health& health;
  std::map<std::string_view, Found> found;
  JudgedParts judged;
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
