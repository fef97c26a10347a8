#include "host/answers/parts/arcconf_volumes.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "host/answers/parts/arcconf_facts.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

Integer ReadVolumeNumber(std::string_view text) {
  for (const std::string_view start :
       {"logical device number ", "logical drive number ", "maxcache device number "}) {
    if (const Integer number = ReadArcconfHeadNumber(text, start)) return number;
  }
  return std::nullopt;
}

}  // namespace

void ArcconfArraySection::Begin(const Place& /*at*/) { isOfGroup = false; }

void ArcconfArraySection::BeginPart(const std::string& /*heading*/, const Place& /*at*/) {
  isOfGroup = false;
}

void ArcconfArraySection::Take(const ArcconfLine& line) {
  if (const Integer number = ReadArcconfHeadNumber(line.text, "array number ")) {
    Group& group = parts.groups.emplace_back();
    group.number = std::to_string(*number);
    group.id = ComposeArcconfArrayId(controller, group.number);
    group.readAt = line.at;
    group.vendor = kMicrochip;
    group.controller = controller;
    isOfGroup = true;
  } else if (isOfGroup && line.told) {
    LearnArcconfFact(parts.groups.Newest(), *line.told, line.at);
  }
}

void ArcconfVolumeSection::Begin(const Place& /*at*/) {
  hasVolume = false;
  isInPart = false;
}

void ArcconfVolumeSection::BeginPart(const std::string& /*heading*/, const Place& /*at*/) {
  isInPart = true;
}

void ArcconfVolumeSection::Take(const ArcconfLine& line) {
  if (const Integer number = ReadVolumeNumber(line.text)) {
    BeginVolume(*number, line.at);
    return;
  }
  if (!hasVolume || !line.told) return;
  if (isInPart) {
    TakeSegment(*line.told, line.at);
    return;
  }
  Volume& volume = parts.volumes.Newest();
  LearnArcconfFact(volume, *line.told, line.at);
  if (LowerCase(line.told->label) == "array" && ReadInteger(line.told->value)) {
    volume.group = ComposeArcconfArrayId(controller, line.told->value);
  }
}

void ArcconfVolumeSection::BeginVolume(std::int64_t number, const Place& at) {
  Volume& volume = parts.volumes.emplace_back();
  volume.number = std::to_string(number);
  volume.id = controller + " v" + volume.number;
  volume.readAt = at;
  volume.vendor = kMicrochip;
  volume.controller = controller;
  hasVolume = true;
  isInPart = false;
}

/// "Present (Controller:1,Enclosure:0,Slot:0)  WX-7731", "Present (0,0) WX-7731", "Missing".
void ArcconfVolumeSection::TakeSegment(const LabelledValue& told, const Place& at) {
  const std::string name = LowerCase(told.label);
  const std::vector<std::string_view> words = ListWords(name);
  const bool isMember =
      words.size() >= 2 && ReadInteger(words.back()) &&
      (words[words.size() - 2] == "segment" || words[words.size() - 2] == "device");
  if (!isMember || parts.volumes.CountLeft() > 0) return;  // of a volume that was left out
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

}  // namespace host
