// Where a command collects from, and where it keeps what comes of it: a recording, or this machine.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/collect/collection.h"
#include "host/collect/source.h"
#include "host/pqhost/options.h"
#include "host/program/console.h"

namespace host {

class CommandSource {
 public:
  virtual ~CommandSource() = default;
  virtual Source& Get() = 0;
  /// Sees to the files that the tools left in the log folder; says where they are. Returns a line
  /// of UTF-8 for each that could not be kept.
  virtual std::vector<std::string> KeepLogFiles(const Collection& collection,
                                                const Console& console) = 0;
  /// Writes the recording, if one was asked for; says where it is. Throws std::runtime_error when
  /// it could not be written.
  virtual void KeepRecording(const Console& /*console*/) {}
};

/// The source that the options ask for. Throws UsageError or RecordingError.
std::unique_ptr<CommandSource> OpenSource(const Options& options, const Console& console);

}  // namespace host
