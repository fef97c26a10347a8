#include "host/answers/health/wall_time.h"

#include <chrono>
#include <string>

#include "host/text/time_text.h"

namespace host {

std::optional<std::int64_t> ReadWallTime(std::string_view text) {
  constexpr std::size_t kDay = 10;
  constexpr std::size_t kTime = 19;
  std::string time(text.substr(0, kTime));
  if (text.size() == kDay) time += "T00:00:00";
  if (time.size() > kDay && time[kDay] == ' ') time[kDay] = 'T';
  const std::optional<LocalTime> read = ParseIsoTime(time + 'Z');
  if (!read) return std::nullopt;
  return std::chrono::duration_cast<std::chrono::seconds>(read->time.time_since_epoch()).count();
}

}  // namespace host
