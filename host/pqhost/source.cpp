#include "host/pqhost/source.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <utility>

#include "host/collect/recorded_source.h"
#include "host/files/left_files.h"
#include "host/files/whole_file.h"
#include "host/live/live_source.h"
#include "host/pqhost/login.h"
#include "host/pqhost/redaction_key.h"
#include "host/pqhost/submission.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "host/redact/redaction.h"
#include "host/text/decoder.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

/// The recording without what the profile replaces; what had to be left out is among its doubts.
/// Throws RecordingError when a value would stay.
Recording RedactBy(const std::string& profile, const std::string& key, const Recording& given) {
  RedactedRecording redacted = RedactRecording(given, MakeRules(profile), Pseudonyms(key));
  if (!redacted.leaks.empty()) {
    throw RecordingError(redacted.leaks.front() +
                         ", so there is no result: do not pass this recording on as it is");
  }
  Recording recording = std::move(redacted.recording);
  recording.contentKey = ComputeContentKey(recording);
  for (const std::string& text : redacted.leftOut) {
    recording.doubts.push_back("left out, as it cannot be searched: " + text);
  }
  return recording;
}

Recording LoadToReplay(const SourceOptions& options) {
  Recording recording = LoadRecording(*options.replay, options.rules);
  if (!options.redactProfile) return recording;
  return RedactBy(*options.redactProfile, ObtainRedactionKey(options.redactionKey), recording);
}

void TellRecording(const std::filesystem::path& path, const Console& console) {
  console.error << fmt::format("Recording: {}\n", EscapeControls(PathText(path)));
}

class ReplaySource final : public CommandSource {
 public:
  explicit ReplaySource(const SourceOptions& options)
      : ReplaySource(options, LoadToReplay(options)) {}

  Source& Get() override { return *source; }
  void EndCollection() override { source.reset(); }

  std::vector<std::string> KeepLogFiles(const Collection& collection) override {
    if (!logFolder) return {};
    const LeftFiles left = WriteLeftFiles(collection.files, collection.machine.logFolder,
                                          TextDecoder(collection.machine.codePage), *logFolder);
    keptCount = left.written;
    return left.problems;
  }

  std::optional<Recording> KeepRecording(const Collection& /*collection*/) override {
    if (!output) return std::nullopt;
    output->Write(recording);
    recording = {};
    hasRecording = true;
    return std::nullopt;
  }

  void TellKept(const Console& console) const override {
    if (logFolder) {
      console.error << fmt::format("Log files: {} in {}\n", keptCount,
                                   EscapeControls(PathText(*logFolder)));
    }
    if (hasRecording) TellRecording(*recordingPath, console);
  }

 private:
  ReplaySource(const SourceOptions& options, const Recording& loaded)
      : source(loaded), logFolder(options.logFolder), recordingPath(options.record) {
    if (logFolder) CreateEmptyFolder(*logFolder, "--log-folder");
    if (!recordingPath) return;
    output.emplace(*recordingPath, "--record");
    recording = loaded;
  }

  std::optional<RecordedSource> source;  ///< none once the collection is over
  std::optional<std::filesystem::path> logFolder;
  std::size_t keptCount = 0;  ///< of files in it
  std::optional<std::filesystem::path> recordingPath;
  Recording recording;  ///< to be written once more
  std::optional<RecordingOutput> output;
  bool hasRecording = false;  ///< it was written
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
        recordingPath(options.record),
        redactProfile(options.redactProfile) {
    // Before any tool runs.
    if (redactProfile) redactionKey = ObtainRedactionKey(options.redactionKey);
  }

  Source& Get() override { return source; }

  std::vector<std::string> KeepLogFiles(const Collection& /*collection*/) override { return {}; }

  std::optional<Recording> KeepRecording(const Collection& collection) override {
    std::optional<Recording> recording = source.TakeRecording();
    if (!recording) return std::nullopt;
    recording->submission = DescribeSubmission(collection);
    if (redactProfile) recording = RedactBy(*redactProfile, redactionKey, *recording);
    source.WriteRecording(*recording);
    hasRecording = true;
    return redactProfile ? std::move(recording) : std::nullopt;
  }

  void TellKept(const Console& console) const override {
    console.error << fmt::format("Log files: {}\n",
                                 EscapeControls(PathText(source.LogFolderPath())));
    if (hasRecording) TellRecording(*recordingPath, console);
  }

 private:
  LoginPrompt prompt;
  LiveSource source;
  std::optional<std::filesystem::path> recordingPath;
  bool hasRecording = false;  ///< it was written
  std::optional<std::string> redactProfile;
  std::string redactionKey;
};

}  // namespace

std::filesystem::path ChoosePlugin(const SourceOptions& options, const Console& console) {
  return options.plugin.value_or(console.programFolder / kPluginFileName);
}

std::filesystem::path ChooseLogFolder(const SourceOptions& options) {
  return options.logFolder ? *options.logFolder : FindDefaultLogFolder();
}

MachineFacts DescribeMachine(const SourceOptions& options) {
  return options.replay ? DescribeRecording(LoadRecording(*options.replay, options.rules))
                        : DescribeThisMachine(ChooseLogFolder(options));
}

std::unique_ptr<CommandSource> OpenSource(const SourceOptions& options, const Console& console) {
  if (options.replay) return std::make_unique<ReplaySource>(options);
  return std::make_unique<ThisMachine>(options, console);
}

}  // namespace host
