#include "host/answers/parts/arcconf_facts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// A label whose value becomes a column of a part. A label that is told twice counts once.
template <typename T>
struct Fact {
  std::string_view label;  ///< in lower case
  std::string_view column;
  /// False when `value` tells nothing.
  bool (*set)(T& part, std::string_view value);
  std::array<std::string_view, 2> alsoColumns = {};  ///< of the same value; may be empty
};

bool Set(std::string& member, std::string_view value) {
  member = value;
  return !value.empty();
}

template <typename Number>
bool Set(std::optional<Number>& member, std::optional<Number> value) {
  if (value) member = value;
  return value.has_value();
}

/// For a number that is told in several places: the highest.
bool SetHighest(Integer& member, Integer value) {
  if (!value || (member && *member >= *value)) return false;
  member = value;
  return true;
}

bool SetTemperature(Controller& controller, std::string_view value) {
  controller.temperature = ReadLeadingReal(value);
  controller.temperatureWord = FindArcconfWord(value);
  return true;
}

/// "3/0/1": volumes, failed, degraded.
bool SetVolumeCounts(Controller& controller, std::string_view value) {
  const std::size_t first = value.find('/');
  if (first == std::string_view::npos) return false;
  const std::size_t second = value.find('/', first + 1);
  if (second == std::string_view::npos) return false;
  controller.volumesDeclared = ReadInteger(value.substr(0, first));
  controller.volumesFailed = ReadInteger(value.substr(first + 1, second - first - 1));
  controller.volumesDegraded = ReadInteger(value.substr(second + 1));
  return true;
}

/// "Temporarily Disabled(Reason: Charge is low)"; "Cache State" tells the same without the word.
bool SetCacheReason(Controller& controller, std::string_view value) {
  constexpr std::string_view kSign = "(Reason:";
  const std::size_t sign = value.find(kSign);
  if (sign != std::string_view::npos) {
    value = value.substr(sign + kSign.size());
    if (value.ends_with(')')) value.remove_suffix(1);
  }
  return Set(controller.cacheReason, Trim(value));
}

constexpr Fact<Controller> kControllerFacts[] = {
    {"controller status", "status", [](auto& c, auto value) { return Set(c.status, value); }},
    {"controller model", "model", [](auto& c, auto value) { return Set(c.model, value); }},
    {"controller serial number", "serial",
     [](auto& c, auto value) { return Set(c.serial, value); }},
    {"firmware", "firmware", [](auto& c, auto value) { return Set(c.firmware, value); }},
    {"cache status", "cache_status", [](auto& c, auto value) { return Set(c.cacheStatus, value); }},
    {"cache state", "cache_reason", SetCacheReason},
    {"cache state details", "cache_reason", SetCacheReason},
    {"temperature", "temperature", SetTemperature, {"temperature_word"}},
    {"defunct disk drive count", "drives_defunct",
     [](auto& c, auto value) { return Set(c.drivesDefunct, ReadInteger(value)); }},
    {"logical devices/failed/degraded",
     "volumes_failed",
     SetVolumeCounts,
     {"volumes_degraded", "volumes_declared"}},
    {"logical drives/offline/critical",
     "volumes_failed",
     SetVolumeCounts,
     {"volumes_degraded", "volumes_declared"}},
};

constexpr Fact<CacheBackup> kCacheBackupFacts[] = {
    {"overall backup unit status", "state",
     [](auto& backup, auto value) { return Set(backup.state, value); }},
    {"backup power status", "state",
     [](auto& backup, auto value) { return Set(backup.state, value); }},
    {"status", "state", [](auto& backup, auto value) { return Set(backup.state, value); }},
    {"backup unit type", "model",
     [](auto& backup, auto value) { return Set(backup.model, value); }},
    {"power type", "model", [](auto& backup, auto value) { return Set(backup.model, value); }},
    {"current temperature", "temperature",
     [](auto& backup, auto value) { return Set(backup.temperature, ReadLeadingReal(value)); }},
};

/// "On", "Enabled (write-back)"; "On when protected by battery/ZMM" is a setting and tells neither.
bool SetWriteBack(Volume& volume, std::string_view value) {
  const std::string word = LowerCase(value);
  if (word == "on" || word == "enabled (write-back)") volume.writeBack = 1;
  if (word == "off" || word == "disabled (write-through)") volume.writeBack = 0;
  return volume.writeBack.has_value();
}

/// The cache as it is, which comes before the cache as it was set.
bool SetCacheMode(Volume& volume, std::string_view value) {
  SetWriteBack(volume, value);
  return Set(volume.cache, value);
}

constexpr Fact<Volume> kVolumeFacts[] = {
    {"logical device name", "name",
     [](auto& volume, auto value) { return Set(volume.name, value); }},
    {"logical drive name", "name",
     [](auto& volume, auto value) { return Set(volume.name, value); }},
    {"maxcache device name", "name",
     [](auto& volume, auto value) { return Set(volume.name, value); }},
    {"raid level", "level", [](auto& volume, auto value) { return Set(volume.level, value); }},
    {"status of logical device", "state",
     [](auto& volume, auto value) { return Set(volume.state, value); }},
    {"status of logical drive", "state",
     [](auto& volume, auto value) { return Set(volume.state, value); }},
    {"status of maxcache", "state",
     [](auto& volume, auto value) { return Set(volume.state, value); }},
    {"size", "size", [](auto& volume, auto value) { return Set(volume.size, ReadSize(value)); }},
    {"write-cache setting", "cache",
     [](auto& volume, auto value) { return Set(volume.cache, value); }},
    {"write-cache mode", "cache", SetCacheMode, {"write_back"}},
    {"write-cache status", "write_back", SetWriteBack},
    {"caching", "cache", [](auto& volume, auto value) { return Set(volume.cache, value); }},
    {"parity initialization status", "initialized",
     [](auto& volume, auto value) { return Set(volume.initialized, value); }},
    {"failed stripes", "failed_stripes",
     [](auto& volume, auto value) { return Set(volume.failedStripes, value); }},
    {"defunct stripes", "failed_stripes",
     [](auto& volume, auto value) { return Set(volume.failedStripes, value); }},
};

constexpr Fact<Group> kGroupFacts[] = {
    {"status", "state", [](auto& group, auto value) { return Set(group.state, value); }},
};

/// "SAS 12.0 Gb/s": the interface and its speed; "Ultra320" tells neither.
bool SetTransferSpeed(Drive& drive, std::string_view value) {
  const std::vector<std::string_view> words = ListWords(value);
  if (words.size() < 2) return false;
  drive.interfaceName = words[0];
  if (!drive.linkSpeed) drive.linkSpeed = ReadLeadingReal(words[1]);
  return true;
}

bool SetPredictiveFailures(Drive& drive, std::string_view value) {
  return SetHighest(drive.predictiveFailures, ReadInteger(value));
}
bool SetMediaErrors(Drive& drive, std::string_view value) {
  return SetHighest(drive.mediaErrors, ReadInteger(value));
}
bool SetOtherErrors(Drive& drive, std::string_view value) {
  return SetHighest(drive.otherErrors, ReadInteger(value));
}
bool SetDriveSize(Drive& drive, std::string_view value) { return Set(drive.size, ReadSize(value)); }
bool SetDriveTemperature(Drive& drive, std::string_view value) {
  return Set(drive.temperature, ReadLeadingReal(value));
}

constexpr Fact<Drive> kDriveFacts[] = {
    {"state", "state", [](auto& drive, auto value) { return Set(drive.state, value); }},
    {"serial number", "serial", [](auto& drive, auto value) { return Set(drive.serial, value); }},
    {"model", "model", [](auto& drive, auto value) { return Set(drive.model, value); }},
    {"firmware", "firmware", [](auto& drive, auto value) { return Set(drive.firmware, value); }},
    {"transfer speed", "interface", SetTransferSpeed},
    {"maximum link rate", "device_speed",
     [](auto& drive, auto value) { return Set(drive.deviceSpeed, ReadLeadingReal(value)); }},
    {"ssd", "media",
     [](auto& drive, auto value) {
       return Set(drive.media, value.starts_with("Yes") ? "SSD" : "HDD");
     }},
    {"total size", "size", SetDriveSize},
    {"size", "size", SetDriveSize},
    {"reported location", "location",
     [](auto& drive, auto value) { return Set(drive.location, value); }},
    {"s.m.a.r.t.", "smart_alert",
     [](auto& drive, auto value) { return Set(drive.smartAlert, value); }},
    {"pfa", "smart_alert",
     [](auto& drive, auto value) {
       return value.starts_with("Yes") && Set(drive.smartAlert, value);
     }},
    {"s.m.a.r.t. warnings", "predictive_failures", SetPredictiveFailures},
    {"smart warning count", "predictive_failures", SetPredictiveFailures},
    {"predictive failures", "predictive_failures", SetPredictiveFailures},
    {"medium errors", "media_errors", SetMediaErrors},
    {"medium error count", "media_errors", SetMediaErrors},
    {"media failures", "media_errors", SetMediaErrors},
    {"hardware errors", "other_errors", SetOtherErrors},
    {"hardware error count", "other_errors", SetOtherErrors},
    {"current temperature", "temperature", SetDriveTemperature},
    {"temperature", "temperature", SetDriveTemperature},
    {"threshold temperature", "temperature_limit",
     [](auto& drive, auto value) { return Set(drive.temperatureLimit, ReadLeadingReal(value)); }},
    {"usage remaining", "wear_left",
     [](auto& drive, auto value) { return Set(drive.wearLeft, ReadLeadingInteger(value)); }},
    {"last failure reason", "failure_reason",
     [](auto& drive, auto value) {
       return LowerCase(value) != "no failure" && Set(drive.failureReason, value);
     }},
};

/// Of counters the highest counts, an alert more than none, and details more than a word.
template <typename T>
bool MayBeToldAgain(const Fact<T>& fact) {
  return fact.column == "predictive_failures" || fact.column == "media_errors" ||
         fact.column == "other_errors" || fact.label == "pfa" ||
         fact.label == "cache state details";
}

template <typename T>
void Learn(T& part, std::span<const Fact<T>> facts, const LabelledValue& told, const Place& at) {
  const std::string label = LowerCase(told.label);
  const auto fact = std::find_if(facts.begin(), facts.end(),
                                 [&](const auto& known) { return known.label == label; });
  if (fact == facts.end()) return;
  const bool isKnown =
      std::any_of(part.columnPlaces.begin(), part.columnPlaces.end(),
                  [&](const ColumnPlace& known) { return known.column == fact->column; });
  if (isKnown && !MayBeToldAgain(*fact)) return;
  if (!fact->set(part, told.value)) return;
  NotePlace(part, fact->column, at);
  for (const std::string_view column : fact->alsoColumns) {
    if (!column.empty()) NotePlace(part, column, at);
  }
}

}  // namespace

void LearnArcconfFact(Controller& controller, const LabelledValue& told, const Place& at) {
  Learn<Controller>(controller, kControllerFacts, told, at);
}
void LearnArcconfFact(CacheBackup& backup, const LabelledValue& told, const Place& at) {
  Learn<CacheBackup>(backup, kCacheBackupFacts, told, at);
}
void LearnArcconfFact(Group& group, const LabelledValue& told, const Place& at) {
  Learn<Group>(group, kGroupFacts, told, at);
}
void LearnArcconfFact(Volume& volume, const LabelledValue& told, const Place& at) {
  Learn<Volume>(volume, kVolumeFacts, told, at);
}
void LearnArcconfFact(Drive& drive, const LabelledValue& told, const Place& at) {
  Learn<Drive>(drive, kDriveFacts, told, at);
}

std::string_view FindArcconfWord(std::string_view value) {
  const std::size_t open = value.rfind('(');
  if (open == std::string_view::npos || !value.ends_with(')')) return value;
  return Trim(value.substr(open + 1, value.size() - open - 2));
}

}  // namespace host
