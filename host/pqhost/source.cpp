#include "host/pqhost/source.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <optional>

#include "host/collect/recorded_source.h"
#include "host/files/left_files.h"
#include "host/files/whole_file.h"
#include "host/live/live_source.h"
#include "host/pqhost/login.h"
#include "host/pqhost/submission.h"
#include "host/recording/recording_reader.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

class ReplaySource final : public CommandSource {
 public:
  explicit ReplaySource(const SourceOptions& options)
      : source(LoadRecording(*options.replay, options.rules)), logFolder(options.logFolder) {
    if (logFolder) CreateEmptyFolder(*logFolder, "--log-folder");
  }

  Source& Get() override { return source; }

  std::vector<std::string> KeepLogFiles(const Collection& collection) override {
    if (!logFolder) return {};
    const LeftFiles left = WriteLeftFiles(collection.files, collection.machine.logFolder,
                                          TextDecoder(collection.machine.codePage), *logFolder);
    keptCount = left.written;
    return left.problems;
  }

  void TellKept(const Console& console) const override {
    if (!logFolder) return;
    console.error << fmt::format("Log files: {} in {}\n", keptCount,
                                 EscapeControls(PathText(*logFolder)));
  }

 private:
  RecordedSource source;
  std::optional<std::filesystem::path> logFolder;
  std::size_t keptCount = 0;  ///< of files in it
};

ToolLimits LimitTools(const SourceOptions& options) {
  ToolLimits limits = options.toolLimits;
  if (options.seconds) {
    limits.end = std::chrono::steady_clock::now() + std::chrono::seconds(*options.seconds);
  }
  return limits;
}

class ThisMachine final : public CommandSource {
 public:
  ThisMachine(const SourceOptions& options, const Console& console)
      : prompt(MakeLoginPrompt(options, console)),
        source(
            {.plugin = ChoosePlugin(options, console),
             .logFolder = ChooseLogFolder(options),
             .recording = options.record,
             .toolLimits = LimitTools(options),
             .logFolderAccess = options.logFolder ? FolderAccess::kInherited : FolderAccess::kOwn,
             .allowsUnsafeFolders = options.allowsUnsafeFolders,
             .prompt = &prompt}),
        recordingPath(options.record) {}

  Source& Get() override { return source; }

  std::vector<std::string> KeepLogFiles(const Collection& /*collection*/) override { return {}; }

  void KeepRecording(const Collection& collection) override {
    if (!recordingPath) return;
    source.WriteRecording(DescribeSubmission(collection));
    hasRecording = true;
  }

  void TellKept(const Console& console) const override {
    console.error << fmt::format("Log files: {}\n",
                                 EscapeControls(PathText(source.LogFolderPath())));
    if (!hasRecording) return;
    console.error << fmt::format("Recording: {}\n", EscapeControls(PathText(*recordingPath)));
  }

 private:
  LoginPrompt prompt;
  LiveSource source;
  std::optional<std::filesystem::path> recordingPath;
  bool hasRecording = false;  ///< it was written
};

}  // namespace

std::filesystem::path ChoosePlugin(const SourceOptions& options, const Console& console) {
  return options.plugin.value_or(console.programFolder / kPluginFileName);
}

std::filesystem::path ChooseLogFolder(const SourceOptions& options) {
  return options.logFolder ? *options.logFolder : FindDefaultLogFolder();
}

std::unique_ptr<CommandSource> OpenSource(const SourceOptions& options, const Console& console) {
  if (options.replay) return std::make_unique<ReplaySource>(options);
  return std::make_unique<ThisMachine>(options, console);
}

}  // namespace host
