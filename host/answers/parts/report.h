// A tool's report on one controller.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/answers/parts/parts.h"
#include "host/answers/parts/report_lines.h"

namespace host {

struct Report {
  std::string_view text;   ///< UTF-8
  Place place;             ///< of the whole text
  std::string controller;  ///< id of the controller, such as "lsi0"
};

/// The place of a line of `report`.
inline Place PlaceOfLine(const Report& report, const ReportLine& line) {
  Place place = report.place;
  place.line = line.number;
  return place;
}

/// Keeps `line`, which looks like a part, among what could not be read.
inline void KeepUnread(Parts& parts, const Report& report, const ReportLine& line) {
  Unread unread;
  unread.readAt = PlaceOfLine(report, line);
  unread.text = Trim(line.text);
  parts.unread.push_back(unread);
}

}  // namespace host
