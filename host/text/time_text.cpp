#include "host/text/time_text.h"

#include <fmt/chrono.h>

#include <cstdlib>

namespace host {
namespace {

using Clock = std::chrono::system_clock;

constexpr std::string_view kIsoShape = "0000-00-00T00:00:00";
constexpr std::string_view kOffsetShape = "+00:00";
constexpr std::chrono::minutes kLargestOffset = std::chrono::hours(14);
/// The clock counts nanoseconds, for which there is room until 2262.
constexpr int kFirstYear = 1970;
constexpr int kLastYear = 2261;

auto CutToSeconds(Clock::time_point time) {
  return std::chrono::time_point_cast<std::chrono::seconds>(time);
}

/// As in "+01:00".
std::string FormatOffset(std::chrono::minutes offset) {
  const auto minutes = std::abs(offset.count());
  return fmt::format("{}{:02}:{:02}", offset.count() < 0 ? '-' : '+', minutes / 60, minutes % 60);
}

/// Whether `text` is `shape` with any digits in place of its zeros and either sign.
bool HasShape(std::string_view text, std::string_view shape) {
  if (text.size() != shape.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool fits = shape[i] == '0'   ? text[i] >= '0' && text[i] <= '9'
                      : shape[i] == '+' ? text[i] == '+' || text[i] == '-'
                                        : text[i] == shape[i];
    if (!fits) return false;
  }
  return true;
}

/// The number that the `count` digits at `at` are.
int ReadDigits(std::string_view text, std::size_t at, std::size_t count) {
  int number = 0;
  for (const char digit : text.substr(at, count)) number = number * 10 + (digit - '0');
  return number;
}

/// The offset that ends a time, "Z" or as in "+01:00".
std::optional<std::chrono::minutes> ParseOffset(std::string_view text) {
  if (text == "Z") return std::chrono::minutes(0);
  if (!HasShape(text, kOffsetShape)) return std::nullopt;
  const int minutes = ReadDigits(text, 4, 2);
  const std::chrono::minutes offset =
      std::chrono::hours(ReadDigits(text, 1, 2)) + std::chrono::minutes(minutes);
  if (minutes >= 60 || offset > kLargestOffset) return std::nullopt;
  return text.front() == '-' ? -offset : offset;
}

}  // namespace

std::string FormatIsoTime(Clock::time_point time) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", CutToSeconds(time));
}

std::string FormatIsoTime(const LocalTime& time) {
  return fmt::format("{:%Y-%m-%dT%H:%M:%S}{}", CutToSeconds(time.time + time.offset),
                     FormatOffset(time.offset));
}

std::string FormatTimeForPeople(Clock::time_point time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S} UTC", CutToSeconds(time));
}

std::string FormatTimeForPeople(const LocalTime& time) {
  return fmt::format("{:%Y-%m-%d %H:%M:%S} UTC{}", CutToSeconds(time.time + time.offset),
                     FormatOffset(time.offset));
}

std::optional<LocalTime> ParseIsoTime(std::string_view text) {
  const std::string_view local = text.substr(0, kIsoShape.size());
  if (!HasShape(local, kIsoShape)) return std::nullopt;
  const std::optional<std::chrono::minutes> offset = ParseOffset(text.substr(local.size()));
  const int year = ReadDigits(local, 0, 4);
  if (year < kFirstYear || year > kLastYear) return std::nullopt;
  const std::chrono::year_month_day day{
      std::chrono::year(year), std::chrono::month(static_cast<unsigned>(ReadDigits(local, 5, 2))),
      std::chrono::day(static_cast<unsigned>(ReadDigits(local, 8, 2)))};
  const int hour = ReadDigits(local, 11, 2);
  const int minute = ReadDigits(local, 14, 2);
  const int second = ReadDigits(local, 17, 2);
  if (!offset || !day.ok() || hour >= 24 || minute >= 60 || second >= 60) return std::nullopt;
  const Clock::time_point shown = std::chrono::sys_days(day) + std::chrono::hours(hour) +
                                  std::chrono::minutes(minute) + std::chrono::seconds(second);
  return LocalTime{shown - *offset, *offset};
}

}  // namespace host
