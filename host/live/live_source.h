// A collection from this very machine, by the loaded library.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "host/collect/source.h"
#include "host/live/live.h"
#include "host/recording/recorder.h"
#include "host/recording/recording_writer.h"

namespace host {

struct LiveSettings {
  std::filesystem::path plugin;
  std::filesystem::path logFolder;
  std::optional<std::filesystem::path> recording;  ///< where it is to be written
  ToolLimits toolLimits;
  FolderAccess logFolderAccess = FolderAccess::kInherited;
  bool allowsUnsafeFolders = false;  ///< also folders that the interpreter reads as others
  LoginPrompt* prompt = nullptr;     ///< answers the AMT module; outlives the source
};

/// Makes a folder the process's current one, until destroyed: tools leave files there that no one
/// gave a folder to, and nothing else is to lie there.
class WorkingFolder {
 public:
  /// Throws std::filesystem::filesystem_error.
  explicit WorkingFolder(const std::filesystem::path& folder);
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder();

 private:
  std::filesystem::path before;
};

/// From Begin() on the log folder is the current one; relative paths lead there. Begin() throws
/// LiveError, and UsageError when the log folder's, the program's or the recording's place cannot
/// be used.
class LiveSource final : public Source {
 public:
  explicit LiveSource(LiveSettings settings);

  void Begin(CollectionListener& listener) override;
  void AddModules(ModuleList& modules) override { library->AddModules(modules); }
  pq::Platform* Machine() override { return nullptr; }
  MachineFacts Facts() override { return machine.facts; }
  std::string LogFolder() override { return machine.logFolder; }
  bool HasPrograms(const std::string& commandLine) override;
  std::optional<std::uint64_t> LogFileSize(const std::string& fileName) override;
  bool HasLogFolder() override;
  std::optional<OldFile> FindOldFile(const std::string& path) override;

  /// The folder of the tools' files, absolute.
  const std::filesystem::path& LogFolderPath() const { return settings.logFolder; }
  /// What was recorded, once; nothing when no recording was asked for.
  std::optional<Recording> TakeRecording();
  /// Writes the recording that was asked for. Throws std::runtime_error when it cannot be written.
  void WriteRecording(const Recording& recording) { recordingOutput->Write(recording); }

 private:
  LiveSettings settings;
  std::unique_ptr<MachineView> machineView = ViewLiveMachine();
  std::optional<FilesBefore> filesBefore;
  std::optional<RecordingOutput> recordingOutput;
  std::optional<Recorder> recorder;  // outlives the library, which tells it
  std::unique_ptr<LiveLibrary> library;
  LiveMachine machine;
  std::optional<WorkingFolder> workingFolder;
};

}  // namespace host
