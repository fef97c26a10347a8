#include "host/answers/parts/arcconf_members.h"

#include <algorithm>
#include <functional>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "host/answers/parts/condition_words.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// The numbered places in a text: both "Enclosure:1, Slot:4" and "Enclosure 1, Slot 4(Connector 0)"
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

bool IsPresent(const ArcconfSegment& segment) { return LowerCase(segment.state) == "present"; }

/// The drives of a report by what segments tell of them. What several drives have is of none:
/// serial numbers are masked in reports that were passed on.
class DriveIndex {
 public:
  DriveIndex(const PartList<Drive>& drives, std::size_t first) {
    for (std::size_t i = first; i < drives.size(); ++i) {
      Add(bySerial, LowerCase(drives[i].serial), i);
      Add(byAddress, drives[i].place, i);
      const std::vector<std::string> places = ListPlaces(drives[i].location);
      if (places.size() >= 2) Add(byLocation, places[0] + ", " + places[1], i);
    }
  }

  std::optional<std::size_t> Find(const ArcconfSegment& segment) const {
    if (const auto drive = Find(bySerial, LowerCase(segment.serial))) return drive;
    if (const auto drive = Find(byAddress, segment.place)) return drive;
    const std::vector<std::string> places = ListPlaces(segment.place);
    if (places.size() < 2) return std::nullopt;
    return Find(byLocation, places[places.size() - 2] + ", " + places.back());
  }

 private:
  using Places = std::map<std::string, std::optional<std::size_t>, std::less<>>;

  static void Add(Places& places, std::string key, std::size_t drive) {
    if (key.empty()) return;
    const auto [known, isNew] = places.emplace(std::move(key), drive);
    if (!isNew) known->second.reset();
  }
  static std::optional<std::size_t> Find(const Places& places, std::string_view key) {
    const auto found = places.find(key);
    return found == places.end() ? std::nullopt : found->second;
  }

  Places bySerial;
  Places byAddress;
  Places byLocation;  ///< enclosure and slot, or connector and device
};

/// Sets of numbers that are joined two by two, each called after its lowest number.
class JoinedNumbers {
 public:
  explicit JoinedNumbers(std::size_t count) : lower(count) {
    std::iota(lower.begin(), lower.end(), std::size_t{0});
  }

  std::size_t FindLowest(std::size_t number) {
    while (lower[number] != number) number = lower[number] = lower[lower[number]];
    return number;
  }
  void Join(std::size_t a, std::size_t b) {
    const std::size_t one = FindLowest(a);
    const std::size_t other = FindLowest(b);
    lower[std::max(one, other)] = std::min(one, other);
  }

 private:
  std::vector<std::size_t> lower;
};

class MemberJoin {
 public:
  MemberJoin(const std::vector<ArcconfSegment>& segments, const ArcconfReportParts& report,
             Parts& parts)
      : segments(segments), report(report), parts(parts) {
    const DriveIndex index(parts.drives, report.firstDrive);
    for (const ArcconfSegment& segment : segments) members.push_back(index.Find(segment));
  }

  /// Volumes that share a drive are one group, called after its first volume. Arrays have names of
  /// their own.
  void GroupVolumes() {
    JoinedNumbers groups(parts.volumes.size());
    std::map<std::size_t, std::size_t> volumeOfDrive;
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (!members[i]) continue;
      const auto [known, isFirst] = volumeOfDrive.emplace(*members[i], segments[i].volume);
      if (!isFirst) groups.Join(known->second, segments[i].volume);
    }
    for (std::size_t i = report.firstVolume; i < parts.volumes.size(); ++i) {
      Volume& volume = parts.volumes[i];
      if (volume.group.empty()) volume.group = parts.volumes[groups.FindLowest(i)].id;
    }
  }

  void JoinDrives() {
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (members[i]) {
        JoinDrive(segments[i], parts.drives[*members[i]]);
      } else if (!IsPresent(segments[i])) {
        AddMissingDrive(segments[i]);
      }
    }
  }

  /// A segment can have lost its drive without a word where that was. When one drive has failed and
  /// belongs nowhere, it is the one.
  void JoinLostDrive() {
    std::vector<const ArcconfSegment*> lost;
    for (std::size_t i = 0; i < segments.size(); ++i) {
      const ArcconfSegment& segment = segments[i];
      if (!members[i] && !IsPresent(segment) && segment.place.empty()) lost.push_back(&segment);
    }
    std::vector<Drive*> failed;
    for (std::size_t i = report.firstDrive; i < parts.drives.size(); ++i) {
      Drive& drive = parts.drives[i];
      if (drive.group.empty() && FindDriveCondition(drive.state) == "failed") {
        failed.push_back(&drive);
      }
    }
    if (lost.size() == 1 && failed.size() == 1) JoinDrive(*lost.front(), *failed.front());
  }

 private:
  void JoinDrive(const ArcconfSegment& segment, Drive& drive) {
    if (drive.group.empty()) drive.group = parts.volumes[segment.volume].group;
    drive.member = 1;
    // Of several volumes the one that misses something of it counts.
    if (IsPresent(segment) && !drive.memberState.empty()) return;
    drive.memberState = segment.state;
    NotePlace(drive, "member_state", segment.readAt);
  }

  void AddMissingDrive(const ArcconfSegment& segment) {
    const Volume& volume = parts.volumes[segment.volume];
    MissingDrive& missing = parts.missingDrives.emplace_back();
    missing.id = volume.id + " " + segment.name;
    missing.readAt = segment.readAt;
    missing.controller = report.controller;
    missing.group = volume.group;
    missing.place = segment.place;
    missing.state = segment.state;
  }

  const std::vector<ArcconfSegment>& segments;
  const ArcconfReportParts& report;
  Parts& parts;
  std::vector<std::optional<std::size_t>> members;  ///< the segments' places in the parts' drives
};

}  // namespace

void JoinArcconfMembers(const std::vector<ArcconfSegment>& segments,
                        const ArcconfReportParts& report, Parts& parts) {
  MemberJoin join(segments, report, parts);
  join.GroupVolumes();
  join.JoinDrives();
  join.JoinLostDrive();
}

std::size_t CountArcconfMembers(const std::vector<ArcconfSegment>& segments) {
  std::set<std::string_view> members;
  for (const ArcconfSegment& segment : segments) {
    if (!IsPresent(segment)) continue;
    members.insert(segment.place.empty() ? segment.serial : segment.place);
  }
  members.erase(std::string_view());
  return members.size();
}

}  // namespace host
