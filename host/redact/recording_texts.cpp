#include "host/redact/recording_texts.h"

#include <map>
#include <utility>

#include "host/files/text_store.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// What a tool prints, by its name and the start of its arguments, in small letters.
struct OutputRow {
  std::string_view tool;
  std::string_view arguments;
  TextPlace place;
};
constexpr OutputRow kOutputs[] = {
    {"netstat", "", TextPlace::kConnections},
    {"net", "share", TextPlace::kShares},
};

TextPlace PlaceOfArguments(const RecordedCommand& command) {
  return LowerCase(ToolName(command.tool)) == "amt_log" ? TextPlace::kAmtArguments
                                                        : TextPlace::kArguments;
}

TextPlace PlaceOfFile(std::string_view path) {
  const std::string name = LowerCase(FileNameOf(path));
  return name.starts_with("hosts") || name.starts_with("lmhosts") ? TextPlace::kHosts
                                                                  : TextPlace::kOther;
}

}  // namespace

TextPlace PlaceOfOutput(const RecordedCommand& command) {
  const std::string tool = LowerCase(ToolName(command.tool));
  const std::string arguments = LowerCase(command.arguments);
  for (const OutputRow& row : kOutputs) {
    if (tool == row.tool && arguments.starts_with(row.arguments)) return row.place;
  }
  return TextPlace::kOther;
}

void ChangeTexts(Recording& recording, const TextDecoder& decode, const ChangeText& change) {
  // It may get another name, with which the paths of its files begin then.
  const std::string logFolder = recording.logFolder;
  const auto changeShort = [&](std::string& text, TextPlace place, const std::string& name) {
    if (std::optional<std::string> changed = change(text, place, name)) text = std::move(*changed);
  };
  changeShort(recording.description, TextPlace::kOther, "description");
  changeShort(recording.hostExecutable, TextPlace::kOther, "hostExecutable");
  changeShort(recording.logFolder, TextPlace::kOther, "logFolder");
  changeShort(recording.console, TextPlace::kConsole, "console");
  // Several commands may have one text, and a file too.
  std::map<const char*, std::pair<Bytes, Bytes>> done;
  const auto changeBytes = [&](Bytes& bytes, TextPlace place, const std::string& name) {
    if (bytes.empty()) return;
    const auto known = done.find(bytes.Text().data());
    if (known != done.end()) {
      bytes = known->second.second;
      return;
    }
    std::optional<std::string> text = change(bytes, place, name);
    Bytes changed = text && bytes != *text ? GetTextStore().Keep(std::move(*text)) : bytes;
    done.emplace(bytes.Text().data(), std::pair(bytes, changed));
    bytes = std::move(changed);
  };
  for (RecordedCommand& command : recording.commands) {
    const std::string name = DescribeCommand(command, decode);
    const TextPlace place = PlaceOfOutput(command);
    changeBytes(command.standardOutput, place, name);
    changeBytes(command.standardError, place, name);
    changeShort(command.arguments, PlaceOfArguments(command), "arguments of " + name);
  }
  // A path that modules look for has to stay, but for the log folder.
  const auto changeLogPath = [&](const std::string& path) {
    if (!IsInLogFolder(path, logFolder)) return path;
    return recording.logFolder + path.substr(logFolder.size());
  };
  std::map<std::string, Bytes> files;
  for (auto& [path, bytes] : recording.files) {
    changeBytes(bytes, PlaceOfFile(path), decode(path));
    files.emplace(changeLogPath(path), std::move(bytes));
  }
  recording.files = std::move(files);
  for (std::string& path : recording.readOnly) path = changeLogPath(path);
  if (!recording.submission) return;
  Submission& submission = *recording.submission;
  for (std::string* text : {&submission.name, &submission.system, &submission.program}) {
    changeShort(*text, TextPlace::kOther, "submission.json");
  }
  for (std::string& serial : submission.serials) {
    changeShort(serial, TextPlace::kOther, "submission.json");
  }
  for (auto& [tool, version] : submission.tools) {
    changeShort(version, TextPlace::kOther, "submission.json");
  }
}

std::string DescribeCommand(const RecordedCommand& command, const TextDecoder& decode) {
  std::string name = ToolName(command.tool);
  if (!command.arguments.empty()) name.append(" ").append(command.arguments);
  return decode(name);
}

bool IsInLogFolder(std::string_view path, std::string_view logFolder) {
  return LowerCase(path.substr(0, logFolder.size())) == LowerCase(logFolder);
}

}  // namespace host
