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
#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/answers/parts/arcconf_facts.h"
#include "host/answers/parts/arcconf_members.h"
#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kMicrochip[] = "Microchip";
constexpr std::size_t kShortestSectionRule = 20;

/// The number that `text` has after `start`, which has to be all that comes before it: 3 of
/// "Device #3".
Integer ReadHeadNumber(std::string_view text, std::string_view start) {
  const std::string lower = LowerCase(text);
  if (!lower.starts_with(start)) return std::nullopt;
  std::string_view number = text.substr(start.size());
  if (number.ends_with(':')) number.remove_suffix(1);
  return ReadInteger(number);
}

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
    controller.vendor = kMicrochip;
  }

  void Take(const ReportLine& line) {
    const std::string_view text = Trim(line.text);
    if (text.empty()) return;
    at = PlaceOfLine(report, line);
    if (text.starts_with("Controllers found")) hasHead = true;
    if (text.starts_with("Command completed successfully")) hasEnd = true;
    if (IsRule(text, '-', kShortestSectionRule)) {
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

  /// As ReadArcconfConfig.
  std::string Finish() {
    const bool endsWithDrive = kind == Device::kDrive;
    EndDevice();
    JoinArcconfMembers(segments, {controller.id, firstVolume, firstDrive}, parts);
    for (CacheBackup& backup : backups) {
      if (!backup.state.empty()) parts.cacheBackups.push_back(std::move(backup));
    }
    if (!hasController) return "tells of no controller";
    parts.controllers.push_back(std::move(controller));
    if (hasHead && !hasEnd) return "breaks off: it does not say that the command completed";
    if (!hasDevices) return "breaks off before its drives";
    const std::size_t drives = parts.drives.size() - firstDrive;
    if (const std::size_t members = CountMembers(); drives < members) {
      return "breaks off: it tells of " + std::to_string(drives) + " of the " +
             std::to_string(members) + " drives of its volumes";
    }
    if (!hasEnd && !report.text.ends_with('\n')) return "breaks off within a line";
    // Elsewhere an enclosure, a channel or a section comes after the last of the drives.
    if (!hasHead && !hasEnd && endsWithDrive) {
      return "has neither its first nor its last line and ends with a drive, so that others may be "
             "missing";
    }
    return "";
  }

 private:
  /// Drives that volumes name as present; each can be in several.
  std::size_t CountMembers() const {
    std::set<std::string_view> members;
    for (const ArcconfSegment& segment : segments) {
      if (LowerCase(segment.state) != "present") continue;
      members.insert(segment.place.empty() ? segment.serial : segment.place);
    }
    members.erase(std::string_view());
    return members.size();
  }

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
    hasDevices = hasDevices || section == Section::kDevices;
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
    const std::string kind = has("battery") ? "BBU" : has("zmm") ? "ZMM" : "cache backup";
    CacheBackup backup;
    backup.id = controller.id + " " + kind;
    backup.readAt = at;
    backup.vendor = kMicrochip;
    backup.controller = controller.id;
    backup.kind = kind;
    backups.push_back(std::move(backup));
  }

  void TakeControllerFact(const LabelledValue& told) {
    hasController = true;
    if (isCacheBackup) {
      LearnArcconfFact(backups.back(), told, at);
    } else {
      LearnArcconfFact(controller, told, at);
    }
  }

  // --- arrays and volumes ---

  void TakeArrayLine(std::string_view text, const std::optional<LabelledValue>& told) {
    if (const Integer number = ReadHeadNumber(text, "array number ")) {
      Group& added = parts.groups.emplace_back();
      added.number = std::to_string(*number);
      added.id = ComposeArrayId(added.number);
      added.readAt = at;
      added.vendor = kMicrochip;
      added.controller = controller.id;
      group = &added;
      subsection.clear();
    } else if (group != nullptr && told && subsection.empty()) {
      LearnArcconfFact(*group, *told, at);
    }
  }

  std::string ComposeArrayId(std::string_view number) const {
    return controller.id + " a" + std::string(number);
  }

  Integer ReadVolumeNumber(std::string_view text) {
    for (const std::string_view start :
         {"logical device number ", "logical drive number ", "maxcache device number "}) {
      if (const Integer number = ReadHeadNumber(text, start)) return number;
    }
    return std::nullopt;
  }

  void TakeVolumeLine(std::string_view text, const std::optional<LabelledValue>& told) {
    if (const Integer number = ReadVolumeNumber(text)) {
      Volume& volume = parts.volumes.emplace_back();
      volume.number = std::to_string(*number);
      volume.id = controller.id + " v" + volume.number;
      volume.readAt = at;
      volume.vendor = kMicrochip;
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
    LearnArcconfFact(volume, *told, at);
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
    ArcconfSegment segment{parts.volumes.size() - 1, name, {}, {}, {}, at};
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
    if (const Integer number = ReadHeadNumber(text, "channel #")) {
      EndDevice();
      channel = *number;
    } else if (const Integer device = ReadHeadNumber(text, "device #")) {
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
      drive.vendor = kMicrochip;
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
      LearnArcconfFact(drive, told, at);
      if (label == "array" && ReadInteger(told.value)) {
        drive.group = ComposeArrayId(told.value);
        drive.member = 1;
      }
    } else if (kind == Device::kEnclosure) {
      TakeEnclosureFact(label, told);
    }
  }

  void TakeEnclosureFact(const std::string& label, const LabelledValue& told) {
    if (label == "model") enclosure.product = told.value;
    const bool isFan = label.starts_with("fan ");
    const bool isPowerSupply = label.starts_with("power supply ");
    if (!isFan && !isPowerSupply && !label.starts_with("temperature ")) return;
    constexpr std::string_view kGood[] = {
        "optimal", "normal", "ok", "not installed", "unknown", "not available", "off", "",
    };
    const std::string word = LowerCase(FindArcconfWord(told.value));
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

  static constexpr char kGoodEnclosure[] = "OK";

  const Report& report;
  Place at;  ///< of the line at hand
  Parts& parts;
  const std::size_t firstDrive;
  const std::size_t firstVolume;

  bool hasHead = false;     ///< the tool's first words
  bool hasEnd = false;      ///< its last ones
  bool hasDevices = false;  ///< the section that every controller has

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
  std::vector<ArcconfSegment> segments;

  Device kind = Device::kNone;
  std::int64_t channel = 0;
  std::string address;  ///< channel and device, as in "0,3"
  ReportLine deviceLine;
  Drive drive;
  Enclosure enclosure;
};

}  // namespace

std::string ReadArcconfConfig(const Report& report, Parts& parts) {
  ConfigReader reader(report, parts);
  ReportLine line;
  for (ReportLines lines(report.text); lines.Next(line);) reader.Take(line);
  return reader.Finish();
}

}  // namespace host
