#include "host/answers/health/wall_time.h"

#include <charconv>
#include <chrono>

namespace host {
namespace {

/// Two or four digits after `mark`, off the beginning of `text`.
std::optional<int> TakeNumber(std::string_view& text, std::string_view marks, std::size_t digits) {
  if (!marks.empty()) {
    if (text.empty() || marks.find(text.front()) == std::string_view::npos) return std::nullopt;
    text.remove_prefix(1);
  }
  if (text.size() < digits) return std::nullopt;
  int number = 0;
  const auto read = std::from_chars(text.data(), text.data() + digits, number);
  if (read.ec != std::errc() || read.ptr != text.data() + digits || number < 0) return std::nullopt;
  text.remove_prefix(digits);
  return number;
}

}  // namespace

std::optional<std::int64_t> ReadWallTime(std::string_view text) {
  const auto year = TakeNumber(text, "", 4);
  const auto month = TakeNumber(text, "-", 2);
  const auto day = TakeNumber(text, "-", 2);
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day date{std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  std::int64_t seconds =
      std::chrono::sys_seconds(std::chrono::sys_days(date)).time_since_epoch().count();
  if (text.empty()) return seconds;
  const auto hour = TakeNumber(text, "T ", 2);
  const auto minute = TakeNumber(text, ":", 2);
  const auto second = TakeNumber(text, ":", 2);
  if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60)
    return std::nullopt;
  seconds += std::int64_t{*hour} * 3600 + std::int64_t{*minute} * 60 + *second;
  return seconds;
}

}  // namespace host
