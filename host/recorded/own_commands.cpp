#include "host/recorded/own_commands.h"

#include <optional>
#include <utility>
#include <vector>

#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// A file on its way from one place to another.
struct Copy {
  std::string from;
  std::string to;
  Bytes bytes;
};

std::string Join(const std::string& folder, std::string_view name) {
  return folder.ends_with('\\') ? folder + std::string(name) : folder + '\\' + std::string(name);
}

std::vector<std::string> WithoutSwitches(std::vector<std::string> words) {
  std::erase_if(words, [](const std::string& word) { return word.starts_with('/'); });
  return words;
}

CommandOutcome DoCopies(const std::vector<Copy>& copies, bool namesEach, MachineFiles& files) {
  std::string said;
  std::size_t done = 0;
  CommandOutcome outcome;
  for (const Copy& copy : copies) {
    if (namesEach) said.append(copy.from).append(kLineEnd);
    if (LowerCase(files.FullPath(copy.from)) == LowerCase(files.FullPath(copy.to))) {
      outcome = FailWith("The file cannot be copied onto itself.");
      break;
    }
    const FileResult result = files.Create(copy.to);
    if (result != FileResult::kDone) {
      outcome = FailWith(result);
      break;
    }
    files.Store(copy.to, copy.bytes);
    ++done;
  }
  said.append("        ").append(std::to_string(done)).append(" file(s) copied.").append(kLineEnd);
  outcome.standardOutput = std::move(said);
  return outcome;
}

CommandOutcome CopyFiles(const std::string& arguments, MachineFiles& files) {
  const std::vector<std::string> paths = WithoutSwitches(SplitWords(arguments));
  if (paths.empty() || paths.size() > 2) return FailWith(kBadSyntax);
  const std::string& source = paths[0];
  const std::string target = paths.size() == 2 ? paths[1] : ".";
  const std::optional<Bytes> bytes = files.Find(source);
  if (bytes && !source.ends_with('\\')) {
    const bool isIntoFolder = target.ends_with('\\') || files.FolderExists(target);
    const std::string to = isIntoFolder ? Join(target, FileNameOf(source)) : target;
    return DoCopies({{source, to, *bytes}}, /*namesEach=*/false, files);
  }
  if (!files.FolderExists(source)) return FailWith(kNoSuchFile);
  if (!files.FolderExists(target)) return FailWith(kNoSuchPath);
  std::vector<Copy> copies;
  for (const auto& [name, content] : files.ListFiles(source)) {
    copies.push_back({Join(source, name), Join(target, name), content});
  }
  if (copies.empty()) return FailWith(kNoSuchFile);
  return DoCopies(copies, /*namesEach=*/true, files);
}

CommandOutcome MakeFolders(const std::string& arguments, MachineFiles& files) {
  const std::vector<std::string> folders = SplitWords(arguments);
  if (folders.empty()) return FailWith(kBadSyntax);
  CommandOutcome outcome;
  for (const std::string& folder : folders) {
    const FileResult result = files.MakeFolder(folder);
    if (result == FileResult::kExists) {
      outcome = FailWith("A subdirectory or file " + folder + " already exists.");
    } else if (result != FileResult::kDone) {
      outcome = FailWith(result);
    }
  }
  return outcome;
}

CommandOutcome FindLines(const std::string& arguments, const Bytes& input) {
  const std::vector<std::string> texts = FindstrTexts(arguments);
  CommandOutcome outcome;
  if (texts.empty()) {
    outcome = FailWith("FINDSTR: Bad command line");
    outcome.exitCode = 2;
    return outcome;
  }
  outcome.standardOutput = FilterLines(input, texts);
  outcome.exitCode = outcome.standardOutput.empty() ? 1 : 0;
  return outcome;
}

}  // namespace

CommandOutcome FailWith(std::string_view words) {
  return {{}, std::string(words).append(kLineEnd), 1};
}

CommandOutcome FailWith(FileResult result) {
  return FailWith(result == FileResult::kAccessDenied ? kAccessDenied : kNoSuchPath);
}

std::string NotRecognized(std::string_view program) {
  std::string words = "'";
  words.append(program).append("' is not recognized as an internal or external command,");
  return words.append(kLineEnd).append("operable program or batch file.").append(kLineEnd);
}

bool IsOwnCommand(std::string_view program) {
  const std::string name = LowerCase(program);
  return name == "copy" || name == "md" || name == "findstr" || name == "findstr.exe";
}

CommandOutcome RunOwnCommand(const Stage& stage, const Bytes& input, MachineFiles& files) {
  const std::string tool = ToolName(stage.program);
  if (tool == "copy") return CopyFiles(stage.arguments, files);
  if (tool == "md") return MakeFolders(stage.arguments, files);
  return FindLines(stage.arguments, input);
}

}  // namespace host
