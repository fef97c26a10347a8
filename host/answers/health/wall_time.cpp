#include "host/answers/health/wall_time.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "host/text/time_text.h"

namespace host {

std::optional<std::int64_t> ReadWallTime(std::string_view text) {
  constexpr std::size_t kDay = 10;
  constexpr std::size_t kTime = 19;
  if (text.size() != kDay && text.size() < kTime) return std::nullopt;
  // On the stack: rules ask for the times of whole logs.
  std::array<char, kTime + 1> time{};
  constexpr std::string_view kMidnight = "0000-00-00T00:00:00Z";
  std::copy(kMidnight.begin(), kMidnight.end(), time.begin());
  std::copy_n(text.begin(), std::min(text.size(), kTime), time.begin());
  if (time[kDay] == ' ') time[kDay] = 'T';
  const std::optional<LocalTime> read = ParseIsoTime({time.data(), time.size()});
  if (!read) return std::nullopt;
  return std::chrono::duration_cast<std::chrono::seconds>(read->time.time_since_epoch()).count();
}

}  // namespace host
