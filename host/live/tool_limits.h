// How much a tool may use.
#pragma once

#include <cstdint>
#include <optional>

namespace host {

/// Of a tool with all that it starts.
struct ToolLimits {
  std::optional<unsigned> seconds;    ///< after which it is ended
  std::optional<unsigned> mebibytes;  ///< of memory; it gets no more
};

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
