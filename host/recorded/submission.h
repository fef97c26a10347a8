// Which machine a recording is of, and when it was made: what nobody needs for a replay.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/text/time_text.h"

namespace host {

/// What was taken out of a recording.
struct Redaction {
  std::string profile;                          ///< the rules that were followed
  std::map<std::string, std::uint64_t> counts;  ///< what was replaced, and how often
  std::uint64_t leftOut = 0;                    ///< texts that could not be searched

  bool operator==(const Redaction&) const = default;
};

/// Texts are UTF-8; empty ones are not known.
struct Submission {
  std::string name = {};  ///< of the computer
  std::optional<LocalTime> recordedAt = {};
  std::string system = {};                        ///< name and build of its Windows
  std::vector<std::string> serials = {};          ///< of the machine, the product's first
  std::string program = {};                       ///< that recorded it, such as "pqhost 0.1.0"
  std::map<std::string, std::string> tools = {};  ///< names and versions
  std::optional<Redaction> redacted = {};         ///< none: nothing was taken out

  bool operator==(const Submission&) const = default;
};

}  // namespace host
