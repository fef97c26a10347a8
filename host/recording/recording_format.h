// Names and values of the format, for the reader and the writer of recordings.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {

inline constexpr char kRecordingFileName[] = "recording.json";
inline constexpr char kManifestFileName[] = "manifest.sha256";
inline constexpr char kSubmissionFileName[] = "submission.json";
/// Of recording.json and of submission.json.
inline constexpr std::uint64_t kRecordingFormat = 1;
/// The code pages that a recording can name.
inline constexpr std::array<std::uint32_t, 9> kRecordingCodePages = {437,  850,  852,  932,  936,
                                                                     1250, 1251, 1252, 65001};

/// Whether a recording of that name is one ZIP file.
inline bool IsZipName(const std::filesystem::path& path) {
  return LowerCase(PathText(path.extension())) == ".zip";
}

}  // namespace host
