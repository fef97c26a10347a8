// Reads a recording from its folder or ZIP file.
#pragma once

#include <filesystem>
#include <stdexcept>

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

}  // namespace host
