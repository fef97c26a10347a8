// Work on what strangers sent, in a process of its own that can do nothing but work and answer.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace fleet {

struct IsolationLimits {
  std::uint64_t memory = std::uint64_t{1536} << 20;  ///< bytes of addresses
  unsigned cpuSeconds = 10;
  std::chrono::milliseconds time{15'000};
  std::uint64_t answer = std::uint64_t{512} << 20;  ///< bytes
};

enum class Sandbox {
  kStrict,  ///< the system refuses to open files, to start processes, and all but a few calls
  kLimits,  ///< only limits of memory, time, processes and files' sizes
};

struct IsolatedAnswer {
  std::string answer;
  std::string failure;  ///< why there is none, for people; empty when there is one
  /// It may have been somebody else's doing: another time may end otherwise.
  bool mayPass = false;
  std::int64_t cpuMicroseconds = 0;
};

/// Runs `work` in a forked process whose one descriptor is the pipe for the answer. It ends with
/// this process. Throws std::system_error when the process cannot be started.
IsolatedAnswer RunIsolated(const std::function<std::string()>& work, const IsolationLimits& limits,
                           Sandbox sandbox);

}  // namespace fleet
