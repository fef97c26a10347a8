#include "host/recording/recording_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <system_error>
#include <utility>
#include <vector>

#include "host/files/sha256.h"
#include "host/files/whole_file.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recording/manifest.h"
#include "host/recording/recording_format.h"
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

class RecordingWriter {
 public:
  RecordingWriter(const Recording& recording, std::filesystem::path folder)
      : recording(recording), folder(std::move(folder)) {}

  void Write() {
    OrderedJson all{{"format", kRecordingFormat},
                    {"description", recording.description},
                    {"languageId", recording.languageId}};
    const bool isKnown = std::find(kRecordingCodePages.begin(), kRecordingCodePages.end(),
                                   recording.codePage) != kRecordingCodePages.end();
    if (isKnown) all["codePage"] = recording.codePage;
    all["hostExecutable"] = ByteText(recording.hostExecutable);
    all["logFolder"] = ByteText(recording.logFolder);
    if (!recording.console.empty()) all["console"] = ByteText(recording.console);
    all["commands"] = OrderedJson::array();
    for (const RecordedCommand& command : recording.commands) {
      all["commands"].push_back(WriteCommand(command, all["commands"].size() + 1));
    }
    all["files"] = OrderedJson::object();
    for (const auto& [path, bytes] : recording.files) {
      const std::string name =
          fmt::format("files/{:03}_{}", all["files"].size() + 1, MakeNamePart(FileNameOf(path)));
      WriteFile(name, bytes);
      all["files"][ByteText(path)] = name;
    }
    for (const std::string& path : recording.readOnly) all["readOnly"].push_back(ByteText(path));
    WriteFile(
        kRecordingFileName,
        all.dump(2, ' ', /*ensure_ascii=*/false, OrderedJson::error_handler_t::replace) + "\n");
    CreateWholeFile(folder / kManifestFileName, WriteManifest(manifest));
  }

 private:
  OrderedJson WriteCommand(const RecordedCommand& command, std::size_t number) {
    OrderedJson entry{{"tool", ByteText(command.tool)}};
    if (!command.arguments.empty()) entry["arguments"] = ByteText(command.arguments);
    const std::string name =
        fmt::format("commands/{:03}_{}", number,
                    MakeNamePart(ToolName(command.tool) + " " + command.arguments));
    if (!command.standardOutput.empty()) {
      entry["stdout"] = name + ".txt";
      WriteFile(name + ".txt", command.standardOutput);
    }
    if (!command.standardError.empty()) {
      entry["stderr"] = name + ".err";
      WriteFile(name + ".err", command.standardError);
    }
    for (const auto& [member, value] :
         {std::pair{"exitCode", command.exitCode}, std::pair{"startError", command.startError},
          std::pair{"pipeError", command.pipeError},
          std::pair{"exitCodeError", command.exitCodeError}}) {
      if (value != 0) entry[member] = value;
    }
    return entry;
  }

  /// `name` has a "/" after each folder.
  void WriteFile(const std::string& name, const std::string& bytes) {
    CreateWholeFile(folder / name, bytes);
    manifest[name] = ComputeSha256(bytes);
  }

  const Recording& recording;
  std::filesystem::path folder;
  Manifest manifest;
};

}  // namespace

void WriteRecording(const Recording& recording, const std::filesystem::path& folder) {
  RecordingWriter(recording, folder).Write();
}

}  // namespace host
