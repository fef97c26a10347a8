#include "host/pqhost/commands/shared_options.h"

#include <fmt/format.h>

#include "host/files/places.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {

void AddModuleOption(OptionSet& set, std::vector<std::string>& modules, const char* help) {
  set.AddNames("--module", OptionValue::kModule, modules, help);
}

void AddReplay(OptionSet& set, SourceOptions& source) {
  set.AddPath("--replay", OptionValue::kRecording, source.replay,
              "Take this recording, a folder or a ZIP file, for the machine");
  AddReadingRules(set, source);
}

void AddLimits(OptionSet& set, RecordingLimits& limits) {
  std::vector<std::string> names;
  for (const NamedLimit& limit : kNamedLimits) names.emplace_back(limit.name);
  set.AddNumbers(
      "--limit", std::move(names),
      [&limits](const std::string& name, std::uint64_t number) {
        for (const NamedLimit& limit : kNamedLimits) {
          if (limit.name == name) limits.*limit.limit = number;
        }
      },
      "Read a larger recording: commands, files, file-size or recording-size (MiB); may be "
      "repeated");
}

void AddReadingRules(OptionSet& set, SourceOptions& source) {
  AddLimits(set, source.rules.limits);
  set.AddFlag("--unverified", source.rules.allowChanges,
              "Read a recording also when it is not as it was made, and say so");
}

void AddRedactionKey(OptionSet& set, SourceOptions& source) {
  set.AddPath("--key", OptionValue::kFile, source.redactionKey,
              "Take the key of the pseudonyms from this file, made if need be; your own unless "
              "given");
}

void AddLogFolder(OptionSet& set, SourceOptions& source) {
  set.AddPath("--log-folder", OptionValue::kFolder, source.logFolder,
              "Folder for the files that the tools leave; live: logs, unless given");
}

void AddPlugin(OptionSet& set, SourceOptions& source) {
  set.AddPath("--plugin", OptionValue::kFile, source.plugin,
              "The library; repository_pqmodule.dll beside this program, unless given");
}

void AddUnsafeFolder(OptionSet& set, SourceOptions& source) {
  set.AddFlag("--unsafe-folder", source.allowsUnsafeFolders,
              "Run although the interpreter may read a folder's path as another (Windows)");
}

void RefuseInRecording(const SourceOptions& source, const char* option, const Destination& place) {
  if (!source.replay || place.IsStandardOutput()) return;
  const std::filesystem::path& recording = *source.replay;
  if (!IsInFolder(place.path, recording) && !AreSameFile(place.path, recording)) return;
  throw UsageError(
      fmt::format("{} {} is in the recording, which stays as it is: name another place", option,
                  PathText(place.path)));
}

void RefuseLogFolder(const SourceOptions& source) {
  if (!source.logFolder) return;
  throw UsageError(
      "--log-folder has no use here without this machine's tools: leave it away, or take a "
      "recording's files out with pqhost collect --replay RECORDING --log-folder FOLDER");
}

void RefuseMisuseOfReplay(const SourceOptions& source) {
  if (!source.replay) return;
  if (source.logFolder) RefuseInRecording(source, "--log-folder", {*source.logFolder});
  if (source.plugin) {
    throw UsageError(
        "--plugin has no use with --replay, which runs the built-in modules: leave "
        "one of them away");
  }
  if (source.allowsUnsafeFolders) {
    throw UsageError(
        "--unsafe-folder has no use with --replay, which runs no tools: leave one of them away");
  }
}

}  // namespace host
