// How much a tool may use.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>

namespace host {

/// Of a tool with all that it starts.
struct ToolLimits {
  std::optional<unsigned> seconds;    ///< after which it is ended
  std::optional<unsigned> mebibytes;  ///< of memory; it gets no more
  /// When the whole collection is to be over, and any tool with it.
  std::optional<std::chrono::steady_clock::time_point> end = {};
};

/// The seconds for a tool that starts now, at least one; nothing: it has no limit.
constexpr std::optional<unsigned> GetSeconds(const ToolLimits& limits,
                                             std::chrono::steady_clock::time_point now) {
  if (!limits.end) return limits.seconds;
  const auto left = std::chrono::ceil<std::chrono::seconds>(*limits.end - now).count();
  const auto seconds = static_cast<unsigned>(std::max<std::int64_t>(left, 1));
  return limits.seconds ? std::min(*limits.seconds, seconds) : seconds;
}

/// The memory limit in bytes; nothing: there is none.
constexpr std::optional<std::uint64_t> GetMemoryLimit(const ToolLimits& limits) {
  if (!limits.mebibytes) return std::nullopt;
  return std::uint64_t{*limits.mebibytes} << 20;
}

/// Whether a tool was refused memory. The system reports that as a rule, but does not promise it;
/// `mostUsed` are the bytes that the tool ever had at once.
constexpr bool HasMetMemoryLimit(const ToolLimits& limits, bool wasReported,
                                 std::uint64_t mostUsed) {
  const std::optional<std::uint64_t> limit = GetMemoryLimit(limits);
  return limit && (wasReported || mostUsed >= *limit);
}

}  // namespace host
