// Small pictures of the report, drawn as SVG. Each says in words what it shows, and tells nothing
// by colour alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/parts/parts.h"
#include "host/formats/html_text.h"

namespace host {

/// A value between limits.
struct Gauge {
  double value = 0;
  Real lowerCritical = {};
  Real lowerWarning = {};
  Real upperWarning = {};
  Real upperCritical = {};
};

/// Of a sensor with a reading and a limit, otherwise none.
std::optional<Gauge> MakeGauge(const Sensor& sensor);
/// Of a drive that tells its temperature and how much it allows.
std::optional<Gauge> MakeGauge(const Drive& drive);

/// A bar with the limits as ticks, long ones for critical, and a mark where the value is.
void WriteGauge(const Gauge& gauge, HtmlWriter& html);

/// How many entries of logs are of each day in the month before `asOf`, by how grave they are.
/// Nothing without any.
void WriteEventsByDay(const Events& events, const std::vector<std::size_t>& rows,
                      std::string_view asOf, HtmlWriter& html);

}  // namespace host
