// Times as text: UTC, to the second.
#pragma once

#include <chrono>
#include <string>

namespace host {

/// As in "2026-11-18T09:41:07Z".
std::string FormatIsoTime(std::chrono::system_clock::time_point time);

/// As in "2026-11-18 09:41:07 UTC".
std::string FormatTimeForPeople(std::chrono::system_clock::time_point time);

}  // namespace host
