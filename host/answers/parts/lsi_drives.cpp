#include "host/answers/parts/lsi_drives.h"

#include <algorithm>
#include <utility>

#include "host/answers/parts/report_lines.h"
#include "host/answers/parts/report_values.h"

namespace host {
namespace {

std::string_view TakeDigits(std::string_view& text) {
  const std::size_t length = std::min(text.find_first_not_of("0123456789"), text.size());
  const std::string_view digits = text.substr(0, length);
  text.remove_prefix(length);
  return digits;
}

bool TakePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// "69:9" or ":9".
bool IsPlace(std::string_view text) {
  const std::string_view enclosure = TakeDigits(text);
  return TakePrefix(text, ":") && IsNumber(text) && enclosure.size() + text.size() < 12;
}

}  // namespace

LsiDrives::LsiDrives(Parts& parts, std::string controllerId)
    : parts(parts), controller(std::move(controllerId)) {
  for (std::size_t i = 0; i < parts.drives.size(); ++i) {
    if (parts.drives[i].controller == controller) Remember(i);
  }
}

void LsiDrives::Remember(std::size_t index) {
  const Drive& drive = parts.drives[index];
  byPlace.emplace(drive.place, index);
  if (drive.deviceId) byDeviceId.emplace(*drive.deviceId, index);
}

Drive* LsiDrives::FindByPlace(const std::string& place) {
  const auto found = byPlace.find(place);
  if (found != byPlace.end()) return &parts.drives[found->second];
  // Of those that were left out the last one may be told more of.
  const bool isLast = parts.drives.CountLeft() > 0 && parts.drives.Newest().place == place &&
                      parts.drives.Newest().controller == controller;
  return isLast ? &parts.drives.Newest() : nullptr;
}

Drive* LsiDrives::FindByDeviceId(std::int64_t deviceId) {
  const auto found = byDeviceId.find(deviceId);
  return found == byDeviceId.end() ? nullptr : &parts.drives[found->second];
}

Drive& LsiDrives::Add(Drive drive) {
  drive.id = MakeId(drive.place);
  drive.vendor = kLsi;
  drive.controller = controller;
  parts.drives.push_back(std::move(drive));
  if (parts.drives.CountLeft() == 0) Remember(parts.drives.size() - 1);
  return parts.drives.Newest();
}

bool HasDriveHeads(const TableHeads& heads) {
  return heads.Has("EID:Slt") && heads.Has("State") && heads.Has("Size") && heads.Has("Model");
}

std::optional<Drive> ReadLsiDriveRow(const TableHeads& heads, std::string_view row,
                                     const std::string& controller) {
  const std::optional<RowCells> cells = heads.DealWords(row, "Model");
  if (!cells) return std::nullopt;
  const std::string_view size = (*cells)["Size"];
  const std::string_view state = (*cells)["State"];
  Drive drive;
  drive.place = (*cells)["EID:Slt"];
  drive.deviceId = ReadInteger((*cells)[heads.Has("DID") ? "DID" : "PID"]);
  drive.size = ReadSize(size);
  const bool fits =
      IsPlace(drive.place) && drive.deviceId && !state.empty() && (drive.size || size == "-");
  if (!fits) return std::nullopt;
  drive.state = state;
  // The second generation of the tool: "Conf" and "Online".
  if (const std::string_view status = (*cells)["Status"]; !status.empty()) {
    drive.state += '/';
    drive.state += status;
  }
  const std::string_view group = (*cells)["DG"];
  drive.member = IsNumber(group) ? 1 : 0;
  drive.group = IsNumber(group) ? controller + " g" + std::string(group) : std::string(group);
  drive.interfaceName = (*cells)["Intf"];
  drive.media = (*cells)["Med"];
  drive.model = (*cells)["Model"];
  return drive;
}

std::optional<std::string> ReadLsiDrivePath(std::string_view path) {
  if (!TakePrefix(path, "/c") || TakeDigits(path).empty()) return std::nullopt;
  const bool hasEnclosure = TakePrefix(path, "/e");
  const std::string_view enclosure = hasEnclosure ? TakeDigits(path) : std::string_view();
  if (hasEnclosure && enclosure.empty()) return std::nullopt;
  if (!TakePrefix(path, "/s")) return std::nullopt;
  const std::string_view slot = TakeDigits(path);
  if (slot.empty()) return std::nullopt;
  std::string place(enclosure);
  place += ':';
  place += slot;
  return place;
}

bool IsTold(std::string_view value) {
  return !value.empty() && value != "-" && value != "N/A" && value != "NA";
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

}  // namespace host
