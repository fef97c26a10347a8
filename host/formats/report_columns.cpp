#include "host/formats/report_columns.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>

#include "host/answers/parts/report_values.h"

namespace host {
namespace {

/// Columns that are called otherwise than by their name, or have a unit.
struct ColumnShape {
  std::string_view column;
  std::string_view label;
  std::string_view unit;
};
constexpr ColumnShape kColumnShapes[] = {
    {"id", "Part", ""},
    {"place", "Slot", ""},
    {"grp", "Array", ""},
    {"smart_alert", "S.M.A.R.T. alert", ""},
    {"device_id", "Device ID", ""},
    {"temperature", "Temperature", " °C"},
    {"temperature_limit", "Temperature limit", " °C"},
    {"link_speed", "Link speed", " Gb/s"},
    {"device_speed", "Device speed", " Gb/s"},
    {"wear_left", "Wear left", " %"},
    {"ac_volts", "Input", " V"},
    {"output_watts", "Output", " W"},
    {"system_time", "Clock", ""},
    {"part_id", "About", ""},
    {"lnr", "Lower non-recoverable", ""},
    {"lc", "Lower critical", ""},
    {"lnc", "Lower warning", ""},
    {"unc", "Upper warning", ""},
    {"uc", "Upper critical", ""},
    {"unr", "Upper non-recoverable", ""},
};

const ColumnShape* FindColumnShape(std::string_view column) {
  const auto* found = std::ranges::find(kColumnShapes, column, &ColumnShape::column);
  return found == std::end(kColumnShapes) ? nullptr : found;
}

/// "1.745 TiB"
std::string FormatCapacity(std::int64_t bytes) {
  constexpr std::array<const char*, 6> kUnits{"B", "KiB", "MiB", "GiB", "TiB", "PiB"};
  constexpr double kStep = 1024;
  auto size = static_cast<double>(bytes);
  std::size_t unit = 0;
  for (; size >= kStep && unit + 1 < kUnits.size(); ++unit) size /= kStep;
  return unit == 0 ? fmt::format("{} B", bytes) : fmt::format("{:.3f} {}", size, kUnits[unit]);
}

}  // namespace

std::string LabelColumn(std::string_view column) {
  if (const ColumnShape* shape = FindColumnShape(column)) return std::string(shape->label);
  std::string label(column);
  std::ranges::replace(label, '_', ' ');
  if (!label.empty() && label.front() >= 'a' && label.front() <= 'z') label.front() -= 'a' - 'A';
  return label;
}

std::string ShowPartText(std::string_view column, const std::string& text) {
  if (text.empty()) return text;
  if (column == "size") {
    if (const auto bytes = ReadInteger(text)) return FormatCapacity(*bytes);
  }
  const ColumnShape* shape = FindColumnShape(column);
  return shape == nullptr ? text : text + std::string(shape->unit);
}

}  // namespace host
