// Where a command collects from, and where it keeps what comes of it: a recording, or this machine.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/collect/collection.h"
#include "host/collect/source.h"
#include "host/live/tool_limits.h"
#include "host/program/console.h"
#include "host/recorded/recording.h"
#include "host/recording/reading_rules.h"

namespace host {

/// What a user says about it.
struct SourceOptions {
  std::optional<std::filesystem::path> replay;     ///< a recording; none: this machine
  ReadingRules rules;                              ///< for the recording
  std::optional<std::filesystem::path> logFolder;  ///< where the files that the tools leave go
  std::optional<unsigned> seconds;                 ///< after which a collection ends early
  /// New folder or ZIP file for the recording that is made, or for the same as was replayed.
  std::optional<std::filesystem::path> record;

  std::optional<std::string> redactProfile;  ///< what is replaced; none: nothing is
  std::optional<std::filesystem::path> redactionKey;

  // Of this machine alone.
  std::optional<std::filesystem::path> plugin;  ///< the library's file
  ToolLimits toolLimits;
  bool allowsUnsafeFolders = false;  ///< also folders that the interpreter reads as others
  bool asksNobody = false;           ///< never wait for an operator
  /// The file with the AMT login, or "-" for standard input; none: the console.
  std::optional<std::filesystem::path> amtLogin;
};

/// The library's file, which is beside the program unless given.
std::filesystem::path ChoosePlugin(const SourceOptions& options, const Console& console);

/// The machine that a command is about, before anything is collected. Throws RecordingError and
/// LiveError.
MachineFacts DescribeMachine(const SourceOptions& options);

/// The log folder on this machine.
std::filesystem::path ChooseLogFolder(const SourceOptions& options);

class CommandSource {
 public:
  virtual ~CommandSource() = default;
  virtual Source& Get() = 0;
  /// The collection is over: lets go of what Get() alone needed, which is not called again.
  virtual void EndCollection() {}
  /// Sees to the files that the tools left in the log folder. Returns a line of UTF-8 for each that
  /// could not be kept.
  virtual std::vector<std::string> KeepLogFiles(const Collection& collection) = 0;
  /// Writes the recording that was made beside `collection`, if one was asked for. Returns the one
  /// that results are to be made of instead of `collection`, which tells what was redacted. Throws
  /// std::runtime_error when it could not be written, RecordingError when it must not be.
  virtual std::optional<Recording> KeepRecording(const Collection& /*collection*/) {
    return std::nullopt;
  }
  /// Says what is kept, and where.
  virtual void TellKept(const Console& console) const = 0;
};

/// The source that the options ask for. Throws UsageError or RecordingError.
std::unique_ptr<CommandSource> OpenSource(const SourceOptions& options, const Console& console);

}  // namespace host
