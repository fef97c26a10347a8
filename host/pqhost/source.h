// Where the modules come from and what they collect from: a recording, or this machine.
#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/halyard/repository.h"
#include "host/collect/machine_facts.h"
#include "host/program/console.h"
#include "host/recorded/machine_observer.h"
#include "host/recorded/recording.h"

namespace host {

using ModuleList = std::vector<boost::shared_ptr<halyard::repository::RModule>>;

/// What a user says about it.
struct SourceOptions {
  std::optional<std::filesystem::path> replay;     ///< a recording; none: this machine
  std::optional<std::filesystem::path> logFolder;  ///< where the files that the tools leave go

  // Of this machine alone.
  std::optional<std::filesystem::path> plugin;  ///< the library's file
  std::optional<std::filesystem::path> record;  ///< new folder to keep a recording in
  std::optional<unsigned> toolLimit;            ///< seconds
};

/// The library's file, which is beside the program unless given.
std::filesystem::path ChoosePlugin(const SourceOptions& options, const Console& console);

/// The log folder on this machine.
std::filesystem::path ChooseLogFolder(const SourceOptions& options);

class Source {
 public:
  virtual ~Source() = default;
  virtual void AddModules(ModuleList& modules) = 0;
  virtual MachineFacts Facts() = 0;
  /// Whether the machine has what a command line runs.
  virtual bool HasPrograms(const std::string& commandLine) = 0;
  /// Size in bytes of a file of the log folder, if it is there.
  virtual std::optional<std::uint64_t> LogFileSize(const std::string& fileName) = 0;
  /// Sees to the files that the collection left in the log folder; says where they are. Returns
  /// what went wrong.
  virtual std::vector<std::string> KeepLogFiles(const Console& console) = 0;
  /// Writes the recording, if one was asked for; says where it is. Throws std::runtime_error when
  /// it could not be written.
  virtual void KeepRecording(const Console& /*console*/) {}
};

/// What a recording says about its machine.
MachineFacts DescribeRecording(const Recording& recording);

/// The source that the options ask for; `observer` sees all that the modules do to it. Throws
/// UsageError, RecordingError or LiveError.
std::unique_ptr<Source> OpenSource(const SourceOptions& options, const Console& console,
                                   MachineObserver& observer);

}  // namespace host
