// Writes a recording into its folder:
//
//   recording.json
//   commands/001_storcli_c0_show.txt   what the first command wrote to standard output
//   commands/001_storcli_c0_show.err   what it wrote to standard error
//   files/001_hosts                    a file of the machine
//   manifest.sha256                    the digests of all of them
//   submission.json                    which machine it is, and when; only when that is known
#pragma once

#include <filesystem>
#include <string>

#include "host/recorded/recording.h"

namespace host {

/// Writes a recording that LoadRecording reads, with a manifest that `sha256sum -c` checks. What
/// the format has no member for is left out: the working folder, whether there is a log folder, and
/// a code page that is not in kRecordingCodePages. Throws std::runtime_error when a file cannot be
/// written.
void WriteRecording(const Recording& recording, const std::filesystem::path& folder);

/// The content key (Recording::contentKey) that `recording` has once it is written.
std::string ComputeContentKey(const Recording& recording);

}  // namespace host
