// A recording in its folder: reading and writing it.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "host/recorded/recording.h"

namespace host {

inline constexpr char kRecordingFileName[] = "recording.json";
inline constexpr char kManifestFileName[] = "manifest.sha256";
inline constexpr std::uint64_t kRecordingFormat = 1;
/// The code pages that a recording can name.
inline constexpr std::array<std::uint32_t, 9> kRecordingCodePages = {437,  850,  852,  932,  936,
                                                                     1250, 1251, 1252, 65001};

/// What is wrong with a recording: file, line or member, and what would be right. UTF-8.
class RecordingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads `folder`/recording.json and the files that it names. Throws RecordingError.
Recording LoadRecording(const std::filesystem::path& folder);

/// Makes the folder of a new recording. Throws UsageError when something lies there already.
void PrepareRecordingFolder(const std::filesystem::path& folder);

/// The digest of some bytes, in hexadecimal digits.
using Digest = std::function<std::string(std::string_view bytes)>;

/// Writes a recording that LoadRecording reads, with a manifest that `sha256sum -c` checks. What a
/// recording file cannot express is left out: the working folder and whether the log folder is
/// there, and a code page that is not in the list. Throws std::runtime_error when a file cannot be
/// written.
void WriteRecording(const Recording& recording, const std::filesystem::path& folder,
                    const Digest& sha256);

}  // namespace host
