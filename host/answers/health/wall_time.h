// Times as the logs have them: of the machine's own clock, mostly without a zone.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

/// Seconds of that clock since 1970 of "2026-11-14", "2026-11-14T06:08:26" or the same with a blank
/// in place of the T. A zone is left out: it differs by less than a day.
std::optional<std::int64_t> ReadWallTime(std::string_view text);

}  // namespace host
