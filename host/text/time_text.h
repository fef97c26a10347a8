// Times as text, to the second.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// A time as the clock on a machine's wall showed it.
struct LocalTime {
  std::chrono::system_clock::time_point time;
  std::chrono::minutes offset{0};  ///< of that clock, from UTC

  bool operator==(const LocalTime&) const = default;
};

/// As in "2026-11-18T09:41:07Z".
std::string FormatIsoTime(std::chrono::system_clock::time_point time);
/// As in "2026-11-18T10:41:07+01:00".
std::string FormatIsoTime(const LocalTime& time);

/// As in "2026-11-18 09:41:07 UTC".
std::string FormatTimeForPeople(std::chrono::system_clock::time_point time);
/// As in "2026-11-18 10:41:07 UTC+01:00".
std::string FormatTimeForPeople(const LocalTime& time);

/// Reads what the FormatIsoTime functions write, and nothing else: no fractions, no times that no
/// clock shows, years from 1970 to 2261, offsets up to 14 hours.
std::optional<LocalTime> ParseIsoTime(std::string_view text);

}  // namespace host
