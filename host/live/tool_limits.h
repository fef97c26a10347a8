// How much a tool may use.
#pragma once

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
std::optional<unsigned> GetSeconds(const ToolLimits& limits,
                                   std::chrono::steady_clock::time_point now);

/// The memory limit in bytes; nothing: there is none.
std::optional<std::uint64_t> GetMemoryLimit(const ToolLimits& limits);

/// Whether a tool was refused memory. The system reports that as a rule, but does not promise it;
/// `mostUsed` are the bytes that the tool ever had at once.
bool HasMetMemoryLimit(const ToolLimits& limits, bool wasReported, std::uint64_t mostUsed);

}  // namespace host
