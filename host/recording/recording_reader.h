// Reads a recording from its folder or ZIP file.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/recorded/recording.h"
#include "host/recording/reading_rules.h"

namespace host {

/// Says in one line of UTF-8 what is wrong with a recording: file, line or member, and what would
/// be right.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads recording.json in the folder or ZIP file `path` and the files that it names, each of them
/// once. Throws RecordingError, also when a limit is met, and when a manifest is there of which a
/// file differs.
Recording LoadRecording(const std::filesystem::path& path, const ReadingRules& rules = {});
/// The same of the bytes of a ZIP file, which messages call `name`. It opens no file.
Recording LoadZippedRecording(std::string bytes, const std::filesystem::path& name,
                              const ReadingRules& rules = {});

/// How a recording agrees with its manifest.
struct Verification {
  std::string contentKey;                ///< Recording::contentKey
  std::vector<std::string> differences;  ///< a line of UTF-8 each; none: it is as it was made
};

/// Reads all of a recording, also what its manifest alone names. To have no manifest is a
/// difference as well. Throws RecordingError when it cannot be read.
Verification VerifyRecording(const std::filesystem::path& path, const RecordingLimits& limits = {});

}  // namespace host
