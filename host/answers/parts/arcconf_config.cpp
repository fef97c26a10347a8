// Headings are between rules; those of a section begin the line, those of a part of it are
// indented. Values are after a colon in any column, and a label may hold colons, too:
//
//   ----------------------------------------------------------------------
//   Logical device information
//   ----------------------------------------------------------------------
//   Logical Device number 0
//      RAID level                               : 10
//      Status of Logical Device                 : Degraded
//      --------------------------------------------------------
//      Logical Device segment information
//      --------------------------------------------------------
//      Group 0, Segment 0                       : Present (Controller:1,Enclosure:0,Slot:0) WX-7731
//      Group 0, Segment 1                       : Missing
//   ...
//         Device #0
//            Device is a Hard drive
//            State                              : Online
//            Reported Channel,Device(T:L)       : 0,0(0:0)
#include "host/answers/parts/arcconf_config.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "host/answers/parts/condition_words.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kVendor[] = "Microchip";
constexpr std::size_t kShortestRule = 20;

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

/// "46 C/ 114 F (Abnormal)": the word in the last parentheses, otherwise all of it.
std::string_view FindWord(std::string_view value) {
  const std::size_t open = value.rfind('(');
  if (open == std::string_view::npos || !value.ends_with(')')) return value;
  return Trim(value.substr(open + 1, value.size() - open - 2));
}

bool SetTemperature(Controller& controller, std::string_view value) {
  controller.temperature = ReadLeadingReal(value);
  controller.temperatureWord = FindWord(value);
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

constexpr Fact<Controller> kControllerFacts[] = {
    {"controller status", "status", [](auto& c, auto value) { return Set(c.status, value); }},
    {"controller model", "model", [](auto& c, auto value) { return Set(c.model, value); }},
    {"controller serial number", "serial",
     [](auto& c, auto value) { return Set(c.serial, value); }},
    {"firmware", "firmware", [](auto& c, auto value) { return Set(c.firmware, value); }},
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
    {"write-cache mode", "cache",
     [](auto& volume, auto value) { return Set(volume.cache, value); }},
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

/// Of counters the highest counts, and an alert more than none.
template <typename T>
bool MayBeToldAgain(const Fact<T>& fact) {
  return fact.column == "predictive_failures" || fact.column == "media_errors" ||
         fact.column == "other_errors" || fact.label == "pfa";
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

/// The number that `text` has after `start`, which has to be all that comes before it: 3 of
/// "Device #3".
Integer ReadNumberAfter(std::string_view text, std::string_view start) {
  const std::string lower = LowerCase(text);
  if (!lower.starts_with(start)) return std::nullopt;
  std::string_view number = text.substr(start.size());
  if (number.ends_with(':')) number.remove_suffix(1);
  return ReadInteger(number);
}

/// The numbered places in a text: "Enclosure:1, Slot:4" and "Enclosure 1, Slot 4(Connector 0)" both
/// begin with "enclosure 1", "slot 4".
std::vector<std::string> ListPlaces(std::string_view text) {
  std::vector<std::string> places;
  const auto isLetter = [](char c) { return LowerCase(c) >= 'a' && LowerCase(c) <= 'z'; };
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  std::size_t at = 0;
  while (at < text.size()) {
    if (!isLetter(text[at])) {
      ++at;
      continue;
    }
    const std::size_t word = at;
    while (at < text.size() && isLetter(text[at])) ++at;
    const std::string_view name = text.substr(word, at - word);
    if (at + 1 >= text.size() || (text[at] != ':' && text[at] != ' ') || !isDigit(text[at + 1])) {
      continue;
    }
    const std::size_t number = ++at;
    while (at < text.size() && isDigit(text[at])) ++at;
    places.push_back(LowerCase(name) + " " + std::string(text.substr(number, at - number)));
  }
  return places;
}

/// Enclosure and slot, or connector and device: the first two places of a drive's location, the
/// last two of a segment's.
std::string JoinPlaces(const std::string& first, const std::string& second) {
  return first + ", " + second;
}

/// A member of a volume.
struct Segment {
  std::size_t volume;  ///< index in the report's volumes
  std::string name;    ///< "group 0, segment 1"
  std::string state;
  std::string place;  ///< the parentheses' text, or what is there of it
  std::string serial;
  Place readAt;
};

class ConfigReader {
 public:
  ConfigReader(const Report& report, Parts& parts)
      : report(report),
        at(report.place),
        parts(parts),
        firstDrive(parts.drives.size()),
        firstVolume(parts.volumes.size()) {
    controller.id = report.controller;
    controller.number = report.controller.substr(kMicrochipId.size());
    controller.vendor = kVendor;
  }

  void Take(const ReportLine& line) {
    const std::string_view text = Trim(line.text);
    if (text.empty()) return;
    at = PlaceOfLine(report, line);
    if (IsRule(text, '-', kShortestRule)) {
      // A rule closes the heading before it, or announces one.
      headingIsNext = !std::exchange(headingIsOpen, false);
      return;
    }
    const std::optional<LabelledValue> told = SplitPaddedLabel(text);
    headingIsOpen = std::exchange(headingIsNext, false) && !told;
    if (headingIsOpen) {
      BeginPart(text, line.text.front() != ' ' && line.text.front() != '\t');
      return;
    }
    switch (section) {
      case Section::kController:
        if (told) TakeControllerFact(*told);
        break;
      case Section::kArrays:
        TakeArrayLine(text, told);
        break;
      case Section::kVolumes:
        TakeVolumeLine(text, told);
        break;
      case Section::kDevices:
        TakeDeviceLine(text, told);
        break;
      case Section::kOther:
        break;
    }
  }

  void Finish() {
    EndDevice();
    JoinMembers();
    if (hasController) parts.controllers.push_back(std::move(controller));
    for (CacheBackup& backup : backups) {
      if (!backup.state.empty()) parts.cacheBackups.push_back(std::move(backup));
    }
  }

 private:
  enum class Section { kOther, kController, kArrays, kVolumes, kDevices };
  enum class Device { kNone, kUntold, kDrive, kEnclosure, kOther };

  void BeginPart(std::string_view heading, bool beginsLine) {
    struct Known {
      std::string_view heading;
      Section section;
    };
    constexpr Known kSections[] = {
        {"controller information", Section::kController},
        {"array information", Section::kArrays},
        {"logical device information", Section::kVolumes},
        {"logical drive information", Section::kVolumes},
        {"physical device information", Section::kDevices},
    };
    const std::string lower = LowerCase(heading);
    const auto* known = std::find_if(std::begin(kSections), std::end(kSections),
                                     [&](const Known& one) { return one.heading == lower; });
    if (known == std::end(kSections) && !beginsLine) {
      subsection = lower;
      BeginCacheBackup();
      return;
    }
    EndDevice();
    subsection.clear();
    isCacheBackup = false;
    group = nullptr;
    hasVolume = false;
    section = Section::kOther;
    if (known != std::end(kSections)) section = known->section;
    // A cache of solid-state drives is a volume of its own.
    if (lower.starts_with("maxcache") && lower.ends_with("information")) {
      section = Section::kVolumes;
    }
    if (section == Section::kController) controller.readAt = at;
  }

  // --- the controller ---

  void BeginCacheBackup() {
    if (section != Section::kController) return;
    const auto has = [&](std::string_view word) {
      return subsection.find(word) != std::string::npos;
    };
    // The module's parts have headings of their own.
    if (has("supercap")) return;
    isCacheBackup = has("battery") || has("zmm") || has("backup");
    if (!isCacheBackup) return;
    AddCacheBackup(has("battery") ? "BBU" : has("zmm") ? "ZMM" : "cache backup");
  }

  CacheBackup& AddCacheBackup(const std::string& kind) {
    CacheBackup backup;
    backup.id = controller.id + " " + kind;
    backup.readAt = at;
    backup.vendor = kVendor;
    backup.controller = controller.id;
    backup.kind = kind;
    return backups.emplace_back(std::move(backup));
  }

  void TakeControllerFact(const LabelledValue& told) {
    hasController = true;
    if (isCacheBackup) {
      Learn<CacheBackup>(backups.back(), kCacheBackupFacts, told, at);
    } else if (LowerCase(told.label) == "cache status") {
      AddCacheBackup("cache").state = told.value;
    } else {
      Learn<Controller>(controller, kControllerFacts, told, at);
    }
  }

  // --- arrays and volumes ---

  void TakeArrayLine(std::string_view text, const std::optional<LabelledValue>& told) {
    if (const Integer number = ReadNumberAfter(text, "array number ")) {
      Group& added = parts.groups.emplace_back();
      added.number = std::to_string(*number);
      added.id = ComposeArrayId(added.number);
      added.readAt = at;
      added.vendor = kVendor;
      added.controller = controller.id;
      group = &added;
      subsection.clear();
    } else if (group != nullptr && told && subsection.empty()) {
      Learn<Group>(*group, kGroupFacts, *told, at);
    }
  }

  std::string ComposeArrayId(std::string_view number) const {
    return controller.id + " a" + std::string(number);
  }

  Integer ReadVolumeNumber(std::string_view text) {
    for (const std::string_view start :
         {"logical device number ", "logical drive number ", "maxcache device number "}) {
      if (const Integer number = ReadNumberAfter(text, start)) return number;
    }
    return std::nullopt;
  }

  void TakeVolumeLine(std::string_view text, const std::optional<LabelledValue>& told) {
    if (const Integer number = ReadVolumeNumber(text)) {
      Volume& volume = parts.volumes.emplace_back();
      volume.number = std::to_string(*number);
      volume.id = controller.id + " v" + volume.number;
      volume.readAt = at;
      volume.vendor = kVendor;
      volume.controller = controller.id;
      hasVolume = true;
      subsection.clear();
      return;
    }
    if (!hasVolume || !told) return;
    if (!subsection.empty()) {
      TakeSegment(*told);
      return;
    }
    Volume& volume = parts.volumes.back();
    Learn<Volume>(volume, kVolumeFacts, *told, at);
    if (LowerCase(told->label) == "array" && ReadInteger(told->value)) {
      volume.group = ComposeArrayId(told->value);
    }
  }

  /// "Present (Controller:1,Enclosure:0,Slot:0)  WX-7731", "Present (0,0) WX-7731", "Missing".
  void TakeSegment(const LabelledValue& told) {
    const std::string name = LowerCase(told.label);
    const std::vector<std::string_view> words = ListWords(name);
    const bool isMember =
        words.size() >= 2 && ReadInteger(words.back()) &&
        (words[words.size() - 2] == "segment" || words[words.size() - 2] == "device");
    if (!isMember) return;
    Segment segment{parts.volumes.size() - 1, name, {}, {}, {}, at};
    const std::size_t open = told.value.find('(');
    segment.state = Trim(told.value.substr(0, open));
    if (open != std::string_view::npos) {
      const std::size_t close = told.value.find(')', open);
      segment.place = Trim(
          told.value.substr(open + 1, close == std::string_view::npos ? close : close - open - 1));
      if (close != std::string_view::npos) segment.serial = Trim(told.value.substr(close + 1));
    }
    segments.push_back(std::move(segment));
  }

  // --- drives and enclosures ---

  void TakeDeviceLine(std::string_view text, const std::optional<LabelledValue>& told) {
    if (const Integer number = ReadNumberAfter(text, "channel #")) {
      EndDevice();
      channel = *number;
    } else if (const Integer device = ReadNumberAfter(text, "device #")) {
      EndDevice();
      kind = Device::kUntold;
      address = std::to_string(channel) + "," + std::to_string(*device);
      deviceLine = {text, at.line};
    } else if (kind != Device::kNone && LowerCase(text).starts_with("device is a")) {
      BeginDevice(LowerCase(text));
    } else if (told) {
      TakeDeviceFact(*told);
    }
  }

  void BeginDevice(const std::string& line) {
    kind = Device::kOther;
    if (line.find("hard drive") != std::string::npos || line.find("solid") != std::string::npos) {
      kind = Device::kDrive;
      drive = {};
      drive.readAt = PlaceOfLine(report, deviceLine);
      drive.vendor = kVendor;
      drive.controller = controller.id;
      drive.member = 0;
    } else if (line.find("enclosure") != std::string::npos) {
      kind = Device::kEnclosure;
      enclosure = {};
      enclosure.readAt = PlaceOfLine(report, deviceLine);
      enclosure.controller = controller.id;
    }
  }

  void TakeDeviceFact(const LabelledValue& told) {
    if (kind == Device::kNone) return;
    const std::string label = LowerCase(told.label);
    if (label.starts_with("reported channel,device")) {
      const std::string_view reported = Trim(told.value.substr(0, told.value.find('(')));
      if (!reported.empty()) address = reported;
    } else if (kind == Device::kDrive) {
      Learn<Drive>(drive, kDriveFacts, told, at);
      if (label == "array" && ReadInteger(told.value)) {
        drive.group = ComposeArrayId(told.value);
        drive.member = 1;
      }
    } else if (kind == Device::kEnclosure) {
      TakeEnclosureFact(label, told);
    }
  }

  void TakeEnclosureFact(const std::string& label, const LabelledValue& told) {
    if (label == "model") Set(enclosure.product, told.value);
    const bool isFan = label.starts_with("fan ");
    const bool isPowerSupply = label.starts_with("power supply ");
    if (!isFan && !isPowerSupply && !label.starts_with("temperature ")) return;
    constexpr std::string_view kGood[] = {
        "optimal", "normal", "ok", "not installed", "unknown", "not available", "off", "",
    };
    const std::string word = LowerCase(FindWord(told.value));
    if (isFan && word != "not installed") enclosure.fans = enclosure.fans.value_or(0) + 1;
    if (isPowerSupply && word != "not installed") {
      enclosure.powerSupplies = enclosure.powerSupplies.value_or(0) + 1;
    }
    if (std::find(std::begin(kGood), std::end(kGood), word) != std::end(kGood)) {
      if (enclosure.state.empty()) enclosure.state = kGoodEnclosure;
      return;
    }
    if (enclosure.state.empty() || enclosure.state == kGoodEnclosure) {
      enclosure.state.clear();
      NotePlace(enclosure, "state", at);
    } else {
      enclosure.state += "; ";
    }
    enclosure.state.append(told.label).append(": ").append(told.value);
  }

  void EndDevice() {
    switch (std::exchange(kind, Device::kNone)) {
      case Device::kDrive:
        drive.id = controller.id + " " + address;
        drive.place = address;
        parts.drives.push_back(std::move(drive));
        break;
      case Device::kEnclosure:
        enclosure.id = controller.id + " e" + address;
        enclosure.number = address;
        parts.enclosures.push_back(std::move(enclosure));
        break;
      case Device::kUntold:
        KeepUnread(parts, report, deviceLine);
        break;
      case Device::kNone:
      case Device::kOther:
        break;
    }
  }

  // --- which drive is in which volume ---

  struct DriveIndex {
    std::map<std::string, std::size_t> bySerial;
    std::map<std::string, std::size_t> byAddress;
    /// Several drives at one place are none.
    std::map<std::string, std::optional<std::size_t>> byLocation;
  };

  DriveIndex IndexDrives() const {
    DriveIndex index;
    for (std::size_t i = firstDrive; i < parts.drives.size(); ++i) {
      const Drive& one = parts.drives[i];
      if (!one.serial.empty()) index.bySerial.emplace(LowerCase(one.serial), i);
      index.byAddress.emplace(one.place, i);
      const std::vector<std::string> places = ListPlaces(one.location);
      if (places.size() < 2) continue;
      const auto [known, isNew] = index.byLocation.emplace(JoinPlaces(places[0], places[1]), i);
      if (!isNew) known->second.reset();
    }
    return index;
  }

  static std::optional<std::size_t> FindMember(const DriveIndex& index, const Segment& segment) {
    if (const auto found = index.bySerial.find(LowerCase(segment.serial));
        found != index.bySerial.end()) {
      return found->second;
    }
    if (const auto found = index.byAddress.find(segment.place); found != index.byAddress.end()) {
      return found->second;
    }
    const std::vector<std::string> places = ListPlaces(segment.place);
    if (places.size() < 2) return std::nullopt;
    const auto found = index.byLocation.find(JoinPlaces(places[places.size() - 2], places.back()));
    return found == index.byLocation.end() ? std::nullopt : found->second;
  }

  /// Volumes that share a drive are one group, called after its first volume; arrays have names of
  /// their own.
  void JoinMembers() {
    const DriveIndex index = IndexDrives();
    std::vector<std::size_t> leader(parts.volumes.size() - firstVolume);
    for (std::size_t i = 0; i < leader.size(); ++i) leader[i] = i;
    const auto findLeader = [&](std::size_t volume) {
      while (leader[volume] != volume) volume = leader[volume] = leader[leader[volume]];
      return volume;
    };
    std::vector<std::optional<std::size_t>> members;
    std::map<std::size_t, std::size_t> volumeOf;
    for (const Segment& segment : segments) {
      const std::optional<std::size_t> member = FindMember(index, segment);
      members.push_back(member);
      if (!member) continue;
      const std::size_t volume = segment.volume - firstVolume;
      const auto [other, isFirst] = volumeOf.emplace(*member, volume);
      if (isFirst) continue;
      const std::size_t one = findLeader(other->second);
      const std::size_t two = findLeader(volume);
      leader[std::max(one, two)] = std::min(one, two);
    }
    for (std::size_t i = 0; i < leader.size(); ++i) {
      Volume& volume = parts.volumes[firstVolume + i];
      if (volume.group.empty()) volume.group = parts.volumes[firstVolume + findLeader(i)].id;
    }
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (members[i]) {
        JoinMember(segments[i], parts.drives[*members[i]]);
      } else if (!IsPresent(segments[i])) {
        AddMissingDrive(segments[i]);
      }
    }
    JoinLostDrive(members);
  }

  static bool IsPresent(const Segment& segment) { return LowerCase(segment.state) == "present"; }

  void JoinMember(const Segment& segment, Drive& member) {
    if (member.group.empty()) member.group = parts.volumes[segment.volume].group;
    member.member = 1;
    if (IsPresent(segment)) return;
    member.memberState = segment.state;
    NotePlace(member, "member_state", segment.readAt);
  }

  void AddMissingDrive(const Segment& segment) {
    const Volume& volume = parts.volumes[segment.volume];
    MissingDrive& missing = parts.missingDrives.emplace_back();
    missing.id = volume.id + " " + segment.name;
    missing.readAt = segment.readAt;
    missing.controller = controller.id;
    missing.group = volume.group;
    missing.place = segment.place;
    missing.state = segment.state;
  }

  /// A segment can have lost its drive without a word where that was. When one drive has failed and
  /// belongs nowhere, it is the one.
  void JoinLostDrive(const std::vector<std::optional<std::size_t>>& members) {
    std::vector<const Segment*> lost;
    for (std::size_t i = 0; i < segments.size(); ++i) {
      const Segment& segment = segments[i];
      if (!members[i] && !IsPresent(segment) && segment.place.empty()) lost.push_back(&segment);
    }
    std::vector<Drive*> failed;
    for (std::size_t i = firstDrive; i < parts.drives.size(); ++i) {
      Drive& one = parts.drives[i];
      if (one.group.empty() && FindDriveCondition(one.state) == "failed") failed.push_back(&one);
    }
    if (lost.size() == 1 && failed.size() == 1) JoinMember(*lost.front(), *failed.front());
  }

  static constexpr char kGoodEnclosure[] = "OK";

  const Report& report;
  Place at;  ///< of the line at hand
  Parts& parts;
  const std::size_t firstDrive;
  const std::size_t firstVolume;

  Section section = Section::kOther;
  std::string subsection;  ///< in lower case; empty: the section's or the volume's own lines
  bool headingIsNext = false;
  bool headingIsOpen = false;

  Controller controller;
  bool hasController = false;
  std::vector<CacheBackup> backups;
  bool isCacheBackup = false;  ///< the facts are those of the last of `backups`

  Group* group = nullptr;
  bool hasVolume = false;
  std::vector<Segment> segments;

  Device kind = Device::kNone;
  std::int64_t channel = 0;
  std::string address;  ///< channel and device, as in "0,3"
  ReportLine deviceLine;
  Drive drive;
  Enclosure enclosure;
};

}  // namespace

void ReadArcconfConfig(const Report& report, Parts& parts) {
  ConfigReader reader(report, parts);
  ReportLine line;
  for (ReportLines lines(report.text); lines.Next(line);) reader.Take(line);
  reader.Finish();
}

}  // namespace host
