// Machines of a few parts, and what is judged of them.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/answers/health/health.h"
#include "host/answers/parts/condition_words.h"
#include "host/answers/parts/parts.h"

namespace test {

/// When the machines of these tests were collected.
inline constexpr char kNow[] = "2026-11-20T12:00:00";
inline constexpr char kRecently[] = "2026-11-18T06:00:00";
inline constexpr char kLongAgo[] = "2026-01-02T06:00:00";

inline host::Health Judge(const host::Parts& parts, host::HealthOptions options = {}) {
  if (!options.asOf) options.asOf = kNow;
  return host::JudgeParts(parts, kNow, options);
}

/// Null when no hit of `rule` is about `id`.
inline const host::HealthHit* FindHit(const host::Health& health, const std::string& rule,
                                      const std::string& id = {}) {
  for (const host::HealthFinding& finding : health.findings) {
    for (const host::HealthHit& hit : finding.hits) {
      if (hit.rule == rule && (id.empty() || hit.id == id)) return &hit;
    }
  }
  return nullptr;
}

/// The same; throws when there is none.
inline const host::HealthHit& GetHit(const host::Health& health, const std::string& rule,
                                     const std::string& id = {}) {
  const host::HealthHit* hit = FindHit(health, rule, id);
  if (hit == nullptr) throw std::runtime_error("there is no hit of " + rule + " " + id);
  return *hit;
}

inline host::Controller& AddController(host::Parts& parts, const std::string& id = "lsi0") {
  host::Controller& one = parts.controllers.emplace_back();
  one.id = id;
  one.vendor = id.starts_with("lsi") ? "LSI" : id.starts_with("mchp") ? "Microchip" : "Intel";
  return one;
}

/// "lsi0 69:9" is at 69:9 of lsi0.
inline host::Drive& AddDrive(host::Parts& parts, const std::string& id, const std::string& state) {
  host::Drive& one = parts.drives.emplace_back();
  one.id = id;
  one.controller = id.substr(0, id.find(' '));
  one.place = id.substr(id.find(' ') + 1);
  one.vendor = id.starts_with("lsi") ? "LSI" : id.starts_with("mchp") ? "Microchip" : "Intel";
  one.state = state;
  one.condition = host::FindDriveCondition(state);
  one.readAt = {"LSILINK", 1, "lsishowall", 10 + static_cast<int>(parts.drives.size()), "storcli"};
  return one;
}

inline host::Volume& AddVolume(host::Parts& parts, const std::string& id, const std::string& state,
                               const std::string& level = "RAID5") {
  host::Volume& one = parts.volumes.emplace_back();
  one.id = id;
  one.controller = id.substr(0, id.find(' '));
  one.number = id.substr(id.find(' ') + 2);
  one.vendor = id.starts_with("lsi") ? "LSI" : id.starts_with("mchp") ? "Microchip" : "Intel";
  one.state = state;
  one.level = level;
  one.condition = host::FindVolumeCondition(state);
  one.group = one.controller + " g0";
  return one;
}

inline host::Group& AddGroup(host::Parts& parts, const std::string& id, const std::string& state) {
  host::Group& one = parts.groups.emplace_back();
  one.id = id;
  one.controller = id.substr(0, id.find(' '));
  one.vendor = "LSI";
  one.state = state;
  one.condition = host::FindVolumeCondition(state);
  return one;
}

inline host::CacheBackup& AddCacheBackup(host::Parts& parts, const std::string& kind,
                                         const std::string& state) {
  host::CacheBackup& one = parts.cacheBackups.emplace_back();
  one.id = "lsi0 " + kind;
  one.controller = "lsi0";
  one.vendor = "LSI";
  one.kind = kind;
  one.state = state;
  one.condition = host::FindCacheBackupCondition(state);
  return one;
}

inline host::Sensor& AddSensor(host::Parts& parts, const std::string& name, host::Integer type,
                               const std::string& status) {
  host::Sensor& one = parts.sensors.emplace_back();
  one.id = one.name = name;
  one.number = static_cast<std::int64_t>(parts.sensors.size());
  one.type = type;
  one.status = status;
  return one;
}

inline host::Sensor& AddDiscrete(host::Parts& parts, const std::string& name, host::Integer type,
                                 host::Integer eventType, host::Integer states) {
  host::Sensor& one = AddSensor(parts, name, type, "present");
  one.eventType = eventType;
  one.states = states;
  return one;
}

inline host::PartSource& AddSource(host::Parts& parts, const std::string& id,
                                   const std::string& state) {
  host::PartSource& one = parts.sources.emplace_back();
  one.id = id;
  one.state = state;
  return one;
}

/// An entry of a log that is added once it is as it shall be, when its statement or block ends.
class AddedEvent : public host::Event {
 public:
  AddedEvent(host::Parts& parts, const host::Event& event) : host::Event(event), parts(parts) {}
  AddedEvent(const AddedEvent&) = delete;
  AddedEvent& operator=(const AddedEvent&) = delete;
  ~AddedEvent() { parts.events.push_back(*this); }

 private:
  host::Parts& parts;
};

/// Replaces an entry by what `change` makes of it.
template <typename Change>
void ChangeEvent(host::Parts& parts, std::size_t row, const Change& change) {
  std::vector<host::Event> events(parts.events.begin(), parts.events.end());
  change(events[row]);
  parts.events = host::Events(events);
}

template <typename Random>
void ShuffleEvents(host::Parts& parts, Random& random) {
  std::vector<host::Event> events(parts.events.begin(), parts.events.end());
  std::shuffle(events.begin(), events.end(), random);
  parts.events = host::Events(events);
}

/// An entry of a MegaRAID controller's log.
inline AddedEvent AddLsiEvent(host::Parts& parts, int code, const std::string& part,
                              const std::string& partId, const std::string& time = kRecently) {
  host::Event one;
  one.number = static_cast<std::int64_t>(parts.events.size()) + 1;
  one.id = "lsi0 " + std::to_string(*one.number);
  one.source = "LSI";
  one.controller = "lsi0";
  one.code = code;
  one.level = 0;
  one.time = time;
  one.text = "event " + std::to_string(code);
  one.part = part;
  one.partId = partId;
  one.readAt = {"LSILINK", 1, "lsieventlog", 100 + *one.number, "storcli /c0 show events"};
  return {parts, one};
}

/// An entry of the BMC's log.
inline AddedEvent AddSelEvent(host::Parts& parts, const std::string& sensor, int type,
                              int eventType, int offset, bool asserted = true,
                              const std::string& time = kRecently) {
  host::Event one;
  one.number = static_cast<std::int64_t>(parts.events.size()) + 1;
  one.id = "sel " + std::to_string(*one.number);
  one.source = "SEL";
  one.code = type;
  one.level = 0;
  one.kind = sensor;
  one.sensor = 1;
  one.eventType = eventType;
  one.offset = offset;
  one.asserted = asserted ? 1 : 0;
  one.time = time;
  one.text = "entry";
  one.part = "sensors";
  one.partId = sensor;
  return {parts, one};
}

inline AddedEvent AddOtherEvent(host::Parts& parts, const std::string& source, int level,
                                const std::string& text, const std::string& time = kRecently) {
  host::Event one;
  one.number = static_cast<std::int64_t>(parts.events.size()) + 1;
  one.id = source + " " + std::to_string(*one.number);
  one.source = source;
  one.level = level;
  one.time = time;
  one.text = text;
  one.part = "controllers";
  one.partId = source == "Microchip" ? "mchp1" : "sas2";
  return {parts, one};
}

}  // namespace test
