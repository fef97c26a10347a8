#include "host/live/live_source.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "host/collect/unsafe_folders.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/own_commands.h"
#include "host/secrets/amt_login.h"
#include "host/text/decoder.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

void RefuseUnsafeFolders(const MachineFacts& facts) {
  const TextDecoder decode(facts.codePage);
  const std::string& executable = facts.hostExecutable;
  std::optional<std::string> objection =
      ObjectToHostFolder(decode(executable.substr(0, executable.rfind('\\'))));
  if (!objection) objection = ObjectToLogFolder(decode(facts.logFolder));
  if (objection) throw UsageError(*objection + " (--unsafe-folder takes it as it is)");
}

}  // namespace

WorkingFolder::WorkingFolder(const std::filesystem::path& folder)
    : before(std::filesystem::current_path()) {
  std::filesystem::current_path(folder);
}

WorkingFolder::~WorkingFolder() {
  std::error_code ignored;
  std::filesystem::current_path(before, ignored);
}

LiveSource::LiveSource(LiveSettings given) : settings(std::move(given)) {
  settings.plugin = std::filesystem::absolute(settings.plugin);
  settings.logFolder = std::filesystem::absolute(settings.logFolder);
  if (settings.recording) settings.recording = std::filesystem::absolute(*settings.recording);
}

void LiveSource::Begin(CollectionListener& listener) {
  if (!settings.allowsUnsafeFolders) RefuseUnsafeFolders(DescribeThisMachine(settings.logFolder));
  machine = PrepareLiveMachine(settings.logFolder, settings.logFolderAccess);
  workingFolder.emplace(settings.logFolder);
  filesBefore.emplace(*machineView, machine.logFolder);
  library = LoadLiveLibrary(settings.plugin,
                            {&listener, &recorder, settings.toolLimits, settings.prompt});
  if (!settings.recording) return;
  recordingOutput.emplace(*settings.recording, "--record");
  recorder.emplace(DescribeLiveMachine(machine), *machineView);
}

bool LiveSource::HasPrograms(const std::string& commandLine) {
  // As the interpreter reads the line, which may split it within the path of a program.
  const Pipeline pipeline = ParseCommandLine(HidePassword(commandLine), [](std::string_view path) {
    return LocateProgram(std::string(path)).has_value();
  });
  return std::all_of(pipeline.stages.begin(), pipeline.stages.end(), [](const Stage& stage) {
    std::string program = stage.program;
    std::erase(program, '"');
    return IsOwnCommand(program) || LocateProgram(program).has_value();
  });
}

std::optional<std::uint64_t> LiveSource::LogFileSize(const std::string& fileName) {
  std::error_code failure;
  const std::uintmax_t size = std::filesystem::file_size(settings.logFolder / fileName, failure);
  if (failure) return std::nullopt;
  return size;
}

bool LiveSource::HasLogFolder() {
  std::error_code failure;
  return std::filesystem::is_directory(settings.logFolder, failure);
}

std::optional<OldFile> LiveSource::FindOldFile(const std::string& path) {
  // Some file systems keep times to two seconds.
  constexpr std::chrono::seconds kCoarsestTime(2);
  const std::optional<FileState> state = machineView->FindState(path);
  const std::optional<LocalTime>& begun = machine.facts.recordedAt;
  if (!state || !begun) return std::nullopt;
  const bool isOld = filesBefore->IsLogFile(path) ? filesBefore->IsUnchanged(path)
                                                  : state->written + kCoarsestTime < begun->time;
  if (!isOld) return std::nullopt;
  return OldFile{LocalTime{state->written, begun->offset}};
}

std::optional<Recording> LiveSource::TakeRecording() {
  if (!recorder) return std::nullopt;
  return recorder->Take();
}

}  // namespace host
