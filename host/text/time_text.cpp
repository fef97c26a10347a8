#include "host/text/time_text.h"

#include <fmt/chrono.h>

namespace host {
namespace {

auto CutToSeconds(std::chrono::system_clock::time_point time) {
  return std::chrono::time_point_cast<std::chrono::seconds>(time);
}

}  // namespace

std::string FormatIsoTime(std::chrono::system_clock::time_point time) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", CutToSeconds(time));
}

std::string FormatTimeForPeople(std::chrono::system_clock::time_point time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", CutToSeconds(time));
}

}  // namespace host
