#include "host/recording/recording_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "host/files/sha256.h"
#include "host/files/whole_file.h"
#include "host/files/zip_writer.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recording/manifest.h"
#include "host/recording/recording_format.h"
#include "host/recording/submission_file.h"
#include "host/text/json_text.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

using OrderedJson = nlohmann::ordered_json;

constexpr std::size_t kNameLimit = 40;

/// `text` as part of a file name that every system takes.
std::string MakeNamePart(std::string_view text) {
  std::string name;
  for (const char c : text) {
    const bool isPlain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') || c == '-' || c == '.';
    if (isPlain) {
      name += c;
    } else if (!name.empty() && !name.ends_with('_')) {
      name += '_';
    }
  }
  name.resize(std::min(name.size(), kNameLimit));
  while (name.ends_with('_') || name.ends_with('.')) name.pop_back();
  return name;
}

/// Appends a text or a number. Never an array or an object: they ask for memory when they go away,
/// and without it the program ends there.
void AppendValue(std::string& json, const OrderedJson& value) {
  json += value.dump(-1, ' ', /*ensure_ascii=*/false, OrderedJson::error_handler_t::replace);
}

/// Makes the files of a recording. Commands become text one by one: there may be a million.
class RecordingFiles {
 public:
  RecordingFiles(const Recording& recording, RecordingFileSink sink)
      : recording(recording), sink(std::move(sink)) {}

  void Make() {
    AppendMember("format", kRecordingFormat);
    AppendMember("description", recording.description);
    AppendMember("languageId", recording.languageId);
    const bool isKnown = std::find(kRecordingCodePages.begin(), kRecordingCodePages.end(),
                                   recording.codePage) != kRecordingCodePages.end();
    if (isKnown) AppendMember("codePage", recording.codePage);
    AppendMember("hostExecutable", ByteText(recording.hostExecutable));
    AppendMember("logFolder", ByteText(recording.logFolder));
    if (!recording.console.empty()) AppendMember("console", ByteText(recording.console));
    AppendCommands();
    AppendFiles();
    AppendReadOnly();
    json += "\n}\n";
    sink(kRecordingFileName, json);
  }

 private:
  void BeginMember(const char* name) {
    json += fmt::format("{}\n  \"{}\": ", json.empty() ? "{" : ",", name);
  }

  void AppendMember(const char* name, const OrderedJson& value) {
    BeginMember(name);
    AppendValue(json, value);
  }

  void AppendCommands() {
    BeginMember("commands");
    json += '[';
    std::size_t number = 0;
    for (const RecordedCommand& command : recording.commands) {
      json += number == 0 ? "\n    {" : ",\n    {";
      AppendCommand(command, ++number);
      json += "\n    }";
    }
    json += number == 0 ? "]" : "\n  ]";
  }

  void AppendField(const char* name, const OrderedJson& value) {
    json += fmt::format("{}\n      \"{}\": ", json.ends_with('{') ? "" : ",", name);
    AppendValue(json, value);
  }

  void AppendCommand(const RecordedCommand& command, std::size_t number) {
    AppendField("tool", ByteText(command.tool));
    if (!command.arguments.empty()) AppendField("arguments", ByteText(command.arguments));
    const std::string name =
        fmt::format("commands/{:03}_{}", number,
                    MakeNamePart(ToolName(command.tool) + " " + command.arguments));
    if (!command.standardOutput.empty()) {
      AppendField("stdout", name + ".txt");
      sink(name + ".txt", command.standardOutput);
    }
    if (!command.standardError.empty()) {
      AppendField("stderr", name + ".err");
      sink(name + ".err", command.standardError);
    }
    for (const auto& [member, value] :
         {std::pair{"exitCode", command.exitCode}, std::pair{"startError", command.startError},
          std::pair{"pipeError", command.pipeError},
          std::pair{"exitCodeError", command.exitCodeError}}) {
      if (value != 0) AppendField(member, value);
    }
  }

  // Text by text: to find a member of an ordered object takes as long as it has members.
  void AppendFiles() {
    BeginMember("files");
    json += '{';
    std::size_t number = 0;
    for (const auto& [path, bytes] : recording.files) {
      const std::string name =
          fmt::format("files/{:03}_{}", ++number, MakeNamePart(FileNameOf(path)));
      sink(name, bytes);
      json += number == 1 ? "\n    " : ",\n    ";
      AppendValue(json, ByteText(path));
      json += ": ";
      AppendValue(json, name);
    }
    json += number == 0 ? "}" : "\n  }";
  }

  void AppendReadOnly() {
    if (recording.readOnly.empty()) return;
    BeginMember("readOnly");
    const char* before = "[\n    ";
    for (const std::string& path : recording.readOnly) {
      json += std::exchange(before, ",\n    ");
      AppendValue(json, ByteText(path));
    }
    json += "\n  ]";
  }

  const Recording& recording;
  RecordingFileSink sink;
  std::string json;  ///< recording.json so far
};

/// Half a recording is none: takes away the files that have been written, and folders that are
/// empty then, that of the file `last`, which could not be, as well.
void RemoveFiles(const Manifest& written, const std::string& last,
                 const std::filesystem::path& folder) {
  std::error_code ignored;
  std::set<std::filesystem::path> folders;
  if (const auto lasts = (folder / last).parent_path(); lasts != folder) folders.insert(lasts);
  for (const auto& [name, digest] : written) {
    const std::filesystem::path file = folder / name;
    std::filesystem::remove(file, ignored);
    if (file.parent_path() != folder) folders.insert(file.parent_path());
  }
  for (const std::filesystem::path& one : folders) std::filesystem::remove(one, ignored);
}

}  // namespace

void VisitRecordingFiles(const Recording& recording, const RecordingFileSink& sink) {
  RecordingFiles(recording, sink).Make();
}

void WriteRecording(const Recording& recording, const std::filesystem::path& folder) {
  const std::string submission =
      recording.submission ? WriteSubmission(*recording.submission) : std::string();
  Manifest manifest;
  std::string last;
  const auto create = [&](const std::string& name, std::string_view bytes) {
    Manifest entry{{name, ComputeSha256(bytes)}};
    last = name;
    CreateWholeFile(folder / name, bytes);
    // Asks for no memory, which may be short: a file that is there is known.
    manifest.merge(entry);
  };
  try {
    RecordingFiles(recording, create).Make();
    create(kManifestFileName, WriteManifest(manifest));
    if (recording.submission) create(kSubmissionFileName, submission);
  } catch (...) {
    RemoveFiles(manifest, last, folder);
    throw;
  }
}

void WriteZippedRecording(const Recording& recording, std::ostream& out) {
  Manifest manifest;
  std::string description;
  // The bytes are the recording's own.
  std::vector<std::pair<std::string, std::string_view>> files;
  RecordingFiles(recording, [&](const std::string& name, std::string_view bytes) {
    manifest[name] = ComputeSha256(bytes);
    if (name == kRecordingFileName) {
      description = bytes;
    } else {
      files.emplace_back(name, bytes);
    }
  }).Make();
  ZipWriter zip(out);
  if (recording.submission) {
    zip.Add(kSubmissionFileName, WriteSubmission(*recording.submission));
  }
  zip.Add(kRecordingFileName, description);
  zip.Add(kManifestFileName, WriteManifest(manifest));
  for (const auto& [name, bytes] : files) zip.Add(name, bytes);
  zip.Complete();
}

RecordingOutput::RecordingOutput(const std::filesystem::path& path, std::string_view option)
    : path(path) {
  if (!IsZipName(path)) {
    CreateEmptyFolder(path, option);
    return;
  }
  std::error_code ignored;
  if (std::filesystem::exists(std::filesystem::symlink_status(path, ignored))) {
    throw UsageError(
        fmt::format("{} is there already: give {} a new name", PathText(path), option));
  }
  zip.emplace(path, Readers::kOwner);
}

void RecordingOutput::Write(const Recording& recording) {
  if (!zip) {
    WriteRecording(recording, path);
    return;
  }
  try {
    WriteZippedRecording(recording, zip->Stream());
  } catch (const std::runtime_error& problem) {
    throw std::runtime_error(
        DescribeUnwritable(path, std::string(problem.what()) + "; a folder takes any size"));
  }
  zip->Complete();
}

std::string ComputeContentKey(const Recording& recording) {
  Manifest manifest;
  RecordingFiles(recording, [&](const std::string& name, std::string_view bytes) {
    manifest[name] = ComputeSha256(bytes);
  }).Make();
  return ComputeSha256(WriteManifest(manifest));
}

}  // namespace host
