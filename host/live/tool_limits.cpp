#include "host/live/tool_limits.h"

#include <algorithm>

namespace host {

std::optional<unsigned> GetSeconds(const ToolLimits& limits,
                                   std::chrono::steady_clock::time_point now) {
  if (!limits.end) return limits.seconds;
  const auto left = std::chrono::ceil<std::chrono::seconds>(*limits.end - now).count();
  const auto seconds = static_cast<unsigned>(std::max<std::int64_t>(left, 1));
  return limits.seconds ? std::min(*limits.seconds, seconds) : seconds;
}

std::optional<std::uint64_t> GetMemoryLimit(const ToolLimits& limits) {
  if (!limits.mebibytes) return std::nullopt;
  return std::uint64_t{*limits.mebibytes} << 20;
}

bool HasMetMemoryLimit(const ToolLimits& limits, bool wasReported, std::uint64_t mostUsed) {
  const std::optional<std::uint64_t> limit = GetMemoryLimit(limits);
  return limit && (wasReported || mostUsed >= *limit);
}

}  // namespace host
