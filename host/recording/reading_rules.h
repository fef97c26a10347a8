// How a recording is read: strangers send them.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace host {

/// More than any server needs, and no more than a support engineer's machine stands.
struct RecordingLimits {
  std::uint64_t commands = 1'000'000;
  std::uint64_t files = 4096;         ///< each counted once, however often it is named
  std::uint64_t fileSize = 128;       ///< of one of them, in MiB
  std::uint64_t recordingSize = 256;  ///< of all of them, in MiB, with recording.json
};

/// A limit by the name that users know it by.
struct NamedLimit {
  std::string_view name;
  std::uint64_t RecordingLimits::*limit;
};
inline constexpr std::array kNamedLimits = {
    NamedLimit{"commands", &RecordingLimits::commands},
    NamedLimit{"files", &RecordingLimits::files},
    NamedLimit{"file-size", &RecordingLimits::fileSize},
    NamedLimit{"recording-size", &RecordingLimits::recordingSize},
};

struct ReadingRules {
  RecordingLimits limits;
  /// Read a recording also when a file of it is not the one that its manifest tells of.
  bool allowChanges = false;
};

}  // namespace host
