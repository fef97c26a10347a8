// Writes a recording into its folder, or into a ZIP file of what would be in it:
//
//   recording.json
//   commands/001_storcli_c0_show.txt   what the first command wrote to standard output
//   commands/001_storcli_c0_show.err   what it wrote to standard error
//   files/001_hosts                    a file of the machine
//   manifest.sha256                    the digests of all of them
//   submission.json                    which machine it is, and when; only when that is known
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "host/files/output_file.h"
#include "host/recorded/recording.h"

namespace host {

/// Writes a recording that LoadRecording reads, with a manifest that `sha256sum -c` checks. What
/// the format has no member for is left out: the working folder, whether there is a log folder, and
/// a code page that is not in kRecordingCodePages. Throws std::runtime_error when a file cannot be
/// written, and leaves none then.
void WriteRecording(const Recording& recording, const std::filesystem::path& folder);

/// Writes it as a ZIP file: submission.json, recording.json, manifest.sha256, then the files. The
/// same recording gives the same bytes. Throws std::runtime_error when it is too large for one; a
/// failed write is left to the stream.
void WriteZippedRecording(const Recording& recording, std::ostream& out);

/// A place for a recording, made before anything is recorded: a folder, or a ZIP file if its name
/// says so (IsZipName), which is whole or not there.
class RecordingOutput {
 public:
  /// Throws UsageError when it cannot be made, when the folder contains something, and when there
  /// is a file already; `option` is the one to be given another place.
  RecordingOutput(const std::filesystem::path& path, std::string_view option);

  /// Writes the recording, once. Throws std::runtime_error when it cannot be written.
  void Write(const Recording& recording);

 private:
  std::filesystem::path path;
  std::optional<OutputFile> zip;  ///< none: a folder
};

/// Takes each file of a recording: its name, with "/" after each folder, and its bytes.
using RecordingFileSink = std::function<void(const std::string& name, std::string_view bytes)>;

/// Makes the files of a recording, but for the manifest and submission.json.
void VisitRecordingFiles(const Recording& recording, const RecordingFileSink& sink);

/// The content key (Recording::contentKey) that `recording` has once it is written.
std::string ComputeContentKey(const Recording& recording);

}  // namespace host
