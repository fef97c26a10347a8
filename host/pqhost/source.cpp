#include "host/pqhost/source.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "frame/add_modules.h"
#include "frame/bound/machine_in_use.h"
#include "host/files/left_files.h"
#include "host/files/output_file.h"
#include "host/files/sha256.h"
#include "host/live/interruption.h"
#include "host/live/live.h"
#include "host/logger/logger.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recorder.h"
#include "host/recording/recording_file.h"
#include "host/secrets/amt_login.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"

namespace host {
namespace {

class ReplaySource final : public Source {
 public:
  ReplaySource(const SourceOptions& options, MachineObserver& observer)
      : recording(LoadRecording(*options.replay)),
        machine(recording, &observer),
        inUse(machine),
        logFolder(options.logFolder) {
    if (logFolder) CreateFolder(*logFolder);
    SetLogFolder(recording.logFolder);
    machine.EndWhen(&InterruptionRequested);
  }

  void AddModules(ModuleList& modules) override { ::AddModules(modules); }

  MachineFacts Facts() override { return DescribeRecording(recording); }

  bool HasPrograms(const std::string& commandLine) override {
    return machine.HasPrograms(commandLine);
  }
  std::optional<std::uint64_t> LogFileSize(const std::string& fileName) override {
    return machine.FileSize(recording.logFolder + fileName);
  }

  std::vector<std::string> KeepLogFiles(const Console& console) override {
    if (!logFolder) return {};
    const LeftFiles left = WriteLeftFiles(machine.Files(), recording.logFolder,
                                          TextDecoder(recording.codePage), *logFolder);
    console.error << fmt::format("Log files: {} in {}\n", left.written, PathText(*logFolder));
    return left.problems;
  }

 private:
  Recording recording;
  RecordedMachine machine;
  pq::MachineInUse inUse;
  std::optional<std::filesystem::path> logFolder;
};

class LiveSource final : public Source {
 public:
  LiveSource(const SourceOptions& options, const Console& console, MachineObserver& observer)
      : library(LoadLiveLibrary(ChoosePlugin(options, console),
                                {&observer, &recorder, options.toolLimit})),
        logFolder(std::filesystem::absolute(ChooseLogFolder(options))),
        facts(PrepareLiveMachine(logFolder)),
        recordingFolder(options.record) {
    if (!recordingFolder) return;
    PrepareRecordingFolder(*recordingFolder);
    recorder.emplace(DescribeLiveMachine(facts), *machineView);
  }

  void AddModules(ModuleList& modules) override { library->AddModules(modules); }
  MachineFacts Facts() override { return facts; }
  bool HasPrograms(const std::string& commandLine) override {
    // As the interpreter reads the line, which may split it within the path of a program.
    const Pipeline pipeline = ParseCommandLine(
        HidePassword(commandLine),
        [](std::string_view path) { return LocateProgram(std::string(path)).has_value(); });
    return std::all_of(pipeline.stages.begin(), pipeline.stages.end(), [](const Stage& stage) {
      std::string program = stage.program;
      std::erase(program, '"');
      return IsOwnCommand(program) || LocateProgram(program).has_value();
    });
  }
  std::optional<std::uint64_t> LogFileSize(const std::string& fileName) override {
    std::error_code failure;
    const std::uintmax_t size = std::filesystem::file_size(logFolder / fileName, failure);
    if (failure) return std::nullopt;
    return size;
  }

  std::vector<std::string> KeepLogFiles(const Console& console) override {
    console.error << fmt::format("Log files: {}\n", PathText(logFolder));
    return {};
  }

  void KeepRecording(const Console& console) override {
    if (!recordingFolder) return;
    WriteRecording(recorder->Take(), *recordingFolder, &ComputeSha256);
    console.error << fmt::format("Recording: {}\n", PathText(*recordingFolder));
  }

 private:
  std::unique_ptr<MachineView> machineView = ViewLiveMachine();
  std::optional<Recorder> recorder;  // outlives the library, which tells it
  std::unique_ptr<LiveLibrary> library;
  std::filesystem::path logFolder;
  MachineFacts facts;
  std::optional<std::filesystem::path> recordingFolder;
};

}  // namespace

std::filesystem::path ChoosePlugin(const SourceOptions& options, const Console& console) {
  return options.plugin.value_or(console.programFolder / kPluginFileName);
}

std::filesystem::path ChooseLogFolder(const SourceOptions& options) {
  return options.logFolder.value_or(kLogFolderName);
}

MachineFacts DescribeRecording(const Recording& recording) {
  MachineFacts facts;
  facts.recorded = true;
  facts.description = TextDecoder(kUtf8CodePage)(recording.description);
  facts.languageId = recording.languageId;
  facts.codePage = recording.codePage;
  facts.hostExecutable = recording.hostExecutable;
  facts.logFolder = recording.logFolder;
  return facts;
}

std::unique_ptr<Source> OpenSource(const SourceOptions& options, const Console& console,
                                   MachineObserver& observer) {
  if (options.replay) return std::make_unique<ReplaySource>(options, observer);
  return std::make_unique<LiveSource>(options, console, observer);
}

}  // namespace host
