#include "host/answers/difference/findings_comparison.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

namespace host {
namespace {

using Key = std::pair<std::string, std::string>;  ///< rule, and id as the later collection has it

/// What a log entry is about has the sensor's name only where sensors were read; elsewhere the
/// log's own. The names of `before` for what `after` calls otherwise, found by entries that both
/// have.
using SensorNames = std::map<std::string, std::string, std::less<>>;

bool IsOfSensorLog(const HealthHit& hit) { return hit.isOfLog && hit.part == "sensors"; }

SensorNames FindSensorNames(const Sides& sides) {
  SensorNames names;
  for (const HealthFinding& finding : sides.before.GetHealth().findings) {
    for (const HealthHit& hit : finding.hits) {
      if (IsOfSensorLog(hit)) names.emplace(hit.id, hit.id);
    }
  }
  if (names.empty()) return names;
  using Entry = std::tuple<Integer, std::string_view, std::string_view>;
  std::map<Entry, std::string*> entries;
  const auto identify = [](const Events& events, std::size_t row) {
    return Entry{events.GetInteger(row, EventColumn::kNumber),
                 events.GetText(row, EventColumn::kTime), events.GetText(row, EventColumn::kText)};
  };
  const auto isOfSel = [](const Events& events, std::size_t row) {
    return events.GetText(row, EventColumn::kSource) == "SEL";
  };
  const Events& before = sides.before.GetParts().events;
  for (std::size_t row = 0; row < before.size(); ++row) {
    if (!isOfSel(before, row)) continue;
    const auto name = names.find(before.GetText(row, EventColumn::kPartId));
    if (name != names.end()) entries.try_emplace(identify(before, row), &name->second);
  }
  const Events& after = sides.after.GetParts().events;
  for (std::size_t row = 0; row < after.size(); ++row) {
    const std::string_view part = after.GetText(row, EventColumn::kPartId);
    if (part.empty() || !isOfSel(after, row)) continue;
    const auto entry = entries.find(identify(after, row));
    if (entry != entries.end()) *entry->second = part;
  }
  return names;
}

/// The worst hit of each key, without notices, which count as none.
std::map<Key, const HealthHit*> ListHits(const Side& side, const Renaming& renaming,
                                         const SensorNames& sensors) {
  std::map<Key, const HealthHit*> hits;
  for (const HealthFinding& finding : side.GetHealth().findings) {
    for (const HealthHit& hit : finding.hits) {
      if (hit.severity == Severity::kNotice) continue;
      std::string id = renaming.Rename(hit.id);
      const auto sensor = IsOfSensorLog(hit) ? sensors.find(hit.id) : sensors.end();
      if (sensor != sensors.end()) id = sensor->second;
      const auto [known, isNew] = hits.try_emplace({hit.rule, std::move(id)}, &hit);
      if (!isNew && known->second->severity < hit.severity) known->second = &hit;
    }
  }
  return hits;
}

/// Whether the other side could not see whether a hit of `teller` is still there, or was before.
bool IsUnchecked(const Sides& sides, const Side& teller, const HealthHit& hit) {
  return !sides.Other(teller)
              .FindWhyUntold(hit.part, sides.Translate(teller, hit.id), hit.place)
              .empty();
}

Severity FindWorst(const FindingDifference& one) {
  return std::max(one.before.value_or(Severity::kNotice), one.after.value_or(Severity::kNotice));
}

class FindingsComparison {
 public:
  FindingsComparison(const Sides& sides, const DifferenceOptions& options, Difference& difference)
      : sides(sides), options(options), difference(difference) {}

  void Compare() {
    const auto before = ListHits(sides.before, sides.renaming, FindSensorNames(sides));
    const auto after = ListHits(sides.after, {}, {});
    for (const auto& [key, hit] : after) {
      const auto old = before.find(key);
      if (old == before.end()) {
        Add(key, *hit,
            IsUnchecked(sides, sides.after, *hit) ? FindingChange::kNotCheckedBefore
                                                  : FindingChange::kNew,
            std::nullopt, hit->severity);
      } else if (old->second->severity != hit->severity) {
        Add(key, *hit, FindingChange::kChanged, old->second->severity, hit->severity);
      }
    }
    for (const auto& [key, hit] : before) {
      if (after.contains(key)) continue;
      Add(key, *hit,
          IsUnchecked(sides, sides.before, *hit) ? FindingChange::kNotCheckedAnyMore
                                                 : FindingChange::kGone,
          hit->severity, std::nullopt);
    }
    std::ranges::sort(difference.findings,
                      [](const FindingDifference& one, const FindingDifference& other) {
                        const Severity worst = FindWorst(one);
                        if (worst != FindWorst(other)) return worst > FindWorst(other);
                        return std::tie(one.id, one.rule) < std::tie(other.id, other.rule);
                      });
  }

 private:
  void Add(const Key& key, const HealthHit& hit, FindingChange change,
           std::optional<Severity> before, std::optional<Severity> after) {
    const bool isWanted =
        options.parts.empty() || std::ranges::find(options.parts, hit.part) != options.parts.end();
    if (!isWanted) return;
    difference.findings.push_back({hit.rule, hit.part, key.second, hit.serial, change, before,
                                   after, hit.observed, hit.text});
  }

  const Sides& sides;
  const DifferenceOptions& options;
  Difference& difference;
};

}  // namespace

void CompareFindings(const Sides& sides, const DifferenceOptions& options, Difference& difference) {
  FindingsComparison(sides, options, difference).Compare();
}

}  // namespace host
