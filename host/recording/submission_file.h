// submission.json, beside a recording: which machine it is of, and when it was made. No replay
// needs it, and the manifest does not have it, so that the same content keeps its key.
#pragma once

#include <optional>
#include <string>

#include "host/recorded/submission.h"
#include "host/recording/stored_files.h"

namespace host {

/// Reads the one of a recording; nothing when there is none. Throws std::runtime_error with file,
/// member and reason in one line of UTF-8.
std::optional<Submission> ReadSubmission(const StoredFiles& files);

/// The file's text. What is not known is left out.
std::string WriteSubmission(const Submission& submission);

}  // namespace host
