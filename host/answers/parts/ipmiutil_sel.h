// The system event log of a management controller, as ipmiutil lists it ("sel"):
//
//   SEL Ver 51 Support 0a, Size = 512 records (Used=26, Free=486)
//   000a 05/30/26 03:06:02 MAJ BMC  Fan #45  Redundancy Lost 0b [01 ff ff]
//   0008 05/30/26 03:05:18 MIN BMC  Fan #12  Lo Noncrit thresh act=0e thr=10
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/answers/parts/parts.h"

namespace host {

/// The event of a line, with its place and without the sensor's id; none for a line that is no
/// record. Its code is the sensor's type. The controller does not tell its time zone.
std::optional<Event> ReadSelRecord(std::string_view line, const Place& at);

/// The line begins as a record does.
bool LooksLikeSelRecord(std::string_view line);

struct SelSize {
  std::int64_t used = 0;
  std::int64_t capacity = 0;
};
/// Of the line that tells both.
std::optional<SelSize> ReadSelSize(std::string_view line);

}  // namespace host
