#include "host/answers/parts/arcconf_devices.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "host/answers/parts/arcconf_facts.h"
#include "host/answers/parts/report_values.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr char kGoodEnclosure[] = "OK";

/// Counts fans and power supplies; the state is made of what is not well of them and of sensors.
/// `label` is that of `told` in lower case.
void LearnEnclosureFact(Enclosure& enclosure, const std::string& label, const LabelledValue& told,
                        const Place& at) {
  if (label == "model") {
    enclosure.product = told.value;
    NotePlace(enclosure, "product", at);
  }
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

}  // namespace

void ArcconfDeviceSection::Begin(const Place& /*at*/) { wasRead = true; }

void ArcconfDeviceSection::Take(const ArcconfLine& line) {
  if (const Integer number = ReadArcconfHeadNumber(line.text, "channel #")) {
    End();
    channel = *number;
  } else if (const Integer device = ReadArcconfHeadNumber(line.text, "device #")) {
    End();
    kind = Device::kUntold;
    address = std::to_string(channel) + "," + std::to_string(*device);
    headLine = {line.text, line.at.line};
  } else if (kind != Device::kNone && LowerCase(line.text).starts_with("device is a")) {
    BeginDevice(LowerCase(line.text));
  } else if (line.told) {
    TakeFact(*line.told, line.at);
  }
}

void ArcconfDeviceSection::BeginDevice(const std::string& line) {
  kind = Device::kOther;
  if (line.find("hard drive") != std::string::npos || line.find("solid") != std::string::npos) {
    kind = Device::kDrive;
    drive = {};
    drive.readAt = PlaceOfLine(report, headLine);
    drive.vendor = kMicrochip;
    drive.controller = report.controller;
    drive.member = 0;
  } else if (line.find("enclosure") != std::string::npos) {
    kind = Device::kEnclosure;
    enclosure = {};
    enclosure.readAt = PlaceOfLine(report, headLine);
    enclosure.controller = report.controller;
  }
}

void ArcconfDeviceSection::TakeFact(const LabelledValue& told, const Place& at) {
  if (kind == Device::kNone) return;
  const std::string label = LowerCase(told.label);
  if (label.starts_with("reported channel,device")) {
    const std::string_view reported = Trim(told.value.substr(0, told.value.find('(')));
    if (!reported.empty()) address = reported;
  } else if (kind == Device::kDrive) {
    LearnArcconfFact(drive, told, at);
    if (label == "array" && ReadInteger(told.value)) {
      drive.group = ComposeArcconfArrayId(report.controller, told.value);
      drive.member = 1;
    }
  } else if (kind == Device::kEnclosure) {
    LearnEnclosureFact(enclosure, label, told, at);
  }
}

void ArcconfDeviceSection::End() {
  switch (std::exchange(kind, Device::kNone)) {
    case Device::kDrive:
      drive.id = report.controller + " " + address;
      drive.place = address;
      parts.drives.push_back(std::move(drive));
      break;
    case Device::kEnclosure:
      enclosure.id = report.controller + " e" + address;
      enclosure.number = address;
      parts.enclosures.push_back(std::move(enclosure));
      break;
    case Device::kUntold:
      KeepUnread(parts, report, headLine);
      break;
    case Device::kNone:
    case Device::kOther:
      break;
  }
}

}  // namespace host
