// Reading a recording from its folder.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "host/recorded/recording.h"

namespace host {

/// What is wrong with a recording: file, line or member, and what would be right. UTF-8.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads `folder`/recording.json and the files that it names. Throws RecordingError.
Recording LoadRecording(const std::filesystem::path& folder);

}  // namespace host
