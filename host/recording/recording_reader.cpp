#include "host/recording/recording_reader.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "frame/tool_runner.h"
#include "host/files/sha256.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recorded/own_commands.h"
#include "host/recording/json_members.h"
#include "host/recording/manifest.h"
#include "host/recording/named_files.h"
#include "host/recording/recording_format.h"
#include "host/recording/recording_writer.h"
#include "host/recording/stored_files.h"
#include "host/recording/strict_json.h"
#include "host/recording/submission_file.h"
#include "host/text/ascii.h"
#include "host/text/path_text.h"

namespace host {
namespace {

using Json = nlohmann::json;

void ReadCodePage(const Json& all, std::uint32_t& codePage) {
  std::uint32_t given = codePage;
  ReadNumber(all, "codePage", given);
  if (std::find(kRecordingCodePages.begin(), kRecordingCodePages.end(), given) ==
      kRecordingCodePages.end()) {
    std::string known;
    for (const std::uint32_t page : kRecordingCodePages) {
      known.append(known.empty() ? "" : ", ").append(std::to_string(page));
    }
    throw MemberError("codePage",
                      std::to_string(given) + " is not known; it has to be one of " + known);
  }
  codePage = given;
}

std::string ReadTool(const Json& entry) {
  if (FindMember(entry, "tool") == nullptr) {
    throw MemberError("tool", "is missing; it has to be a program's file name");
  }
  std::string tool;
  ReadBytes(entry, "tool", tool);
  if (ToolName(tool).empty() || tool.find_first_of("\\/\"") != std::string::npos) {
    throw MemberError("tool",
                      "has to be a program's file name, without folder, such as \"arp.exe\"");
  }
  return tool;
}

/// The interpreter's own commands work on the machine's files; an output recorded for one of them
/// would never be read.
void RefuseAnswerOfOwnCommand(const Json& entry, const std::string& tool) {
  if (!IsOwnCommand(tool)) return;
  for (const char* member : {"stdout", "stderr", "exitCode"}) {
    if (!entry.contains(member)) continue;
    throw MemberError(member, "the interpreter does " + ReplaceUnprintable(ToolName(tool)) +
                                  " by itself; its entry can only carry an error");
  }
}

class RecordingReader {
 public:
  RecordingReader(const StoredFiles& files, const RecordingLimits& limits)
      : namedFiles(files, limits), limits(limits) {}

  Bytes ReadDescription() { return namedFiles.ReadOwn(kRecordingFileName); }

  /// A line for each file that is not the one that the manifest tells of. Throws
  /// std::runtime_error when it cannot be read.
  std::vector<std::string> FindChanges() {
    const std::map<std::string, Bytes> read = namedFiles.All();
    // recording.json is in it as well.
    manifest = ReadManifest(namedFiles.ReadOwn(kManifestFileName), limits.files + 1);
    std::vector<std::string> changes;
    for (const auto& [name, bytes] : read) {
      if (manifest.count(name) == 0) {
        changes.push_back(QuoteText(name) + " is not in " + kManifestFileName);
      } else {
        CompareWithManifest(name, bytes, changes);
      }
    }
    return changes;
  }

  /// The same for the files that the manifest alone names, once FindChanges() read it.
  std::vector<std::string> FindUnnamedChanges() {
    std::vector<std::string> changes;
    for (const auto& [name, digest] : manifest) {
      if (namedFiles.All().count(name) > 0) continue;
      try {
        CompareWithManifest(name, namedFiles.Read(name), changes);
      } catch (const std::runtime_error& problem) {
        changes.emplace_back(problem.what());
      }
    }
    return changes;
  }

  /// SHA-256 of the manifest, once FindChanges() read it.
  std::optional<std::string> ComputeManifestDigest() const {
    const auto manifest = namedFiles.All().find(kManifestFileName);
    if (manifest == namedFiles.All().end()) return std::nullopt;
    return ComputeSha256(manifest->second);
  }

  /// Members are read, and complained about, in the order of this function, not of the text.
  Recording Read(std::string_view json) {
    const Json all =
        ReadStrictJson(json, "commands", [&](const Json& entry) { AddCommand(entry); });
    if (!all.is_object()) throw MemberError("", "has to be an object, { ... }");
    CheckFormat(all);
    CheckMembers(all, {"format", "description", "languageId", "codePage", "hostExecutable",
                       "logFolder", "console", "commands", "files", "readOnly"});
    ReadText(all, "description", recording.description);
    ReadNumber(all, "languageId", recording.languageId);
    ReadCodePage(all, recording.codePage);
    ReadBytes(all, "hostExecutable", recording.hostExecutable);
    ReadBytes(all, "logFolder", recording.logFolder);
    if (recording.hostExecutable.empty()) {
      throw MemberError("hostExecutable", "is empty; it has to be a path");
    }
    if (!recording.logFolder.ends_with('\\')) {
      throw MemberError("logFolder", "has to end with a backslash (\"\\\\\" in JSON)");
    }
    if (recording.logFolder.size() >= pq::kLogFolderRoom) {
      throw MemberError("logFolder", "is longer than " + std::to_string(pq::kLogFolderRoom - 1) +
                                         " characters, its last backslash included");
    }
    ReadBytes(all, "console", recording.console);
    FindList(all, "commands");
    if (badCommand) throw *badCommand;
    ReadFiles(all);
    ReadReadOnly(all);
    return std::move(recording);
  }

 private:
  void CompareWithManifest(const std::string& name, std::string_view bytes,
                           std::vector<std::string>& changes) const {
    if (manifest.at(name) == ComputeSha256(bytes)) return;
    changes.push_back(QuoteText(name) + " differs from " + kManifestFileName);
  }

  void AddCommand(const Json& entry) {
    if (badCommand) return;
    if (recording.commands.size() == limits.commands) {
      badCommand.emplace("commands", "has more than " + std::to_string(limits.commands) +
                                         "; --limit commands=NUMBER allows more");
      return;
    }
    try {
      recording.commands.push_back(ReadCommand(entry));
    } catch (const MemberError& error) {
      std::string place = "commands[" + std::to_string(recording.commands.size()) + "]";
      if (!error.Place().empty()) place += "." + error.Place();
      badCommand.emplace(std::move(place), error.what());
    }
  }

  RecordedCommand ReadCommand(const Json& entry) {
    if (!entry.is_object()) {
      throw MemberError("", "has to be an object, { ... }, not " + ShowValue(entry));
    }
    CheckMembers(entry, {"tool", "arguments", "stdout", "stderr", "exitCode", "startError",
                         "pipeError", "exitCodeError"});
    RecordedCommand command;
    command.tool = ReadTool(entry);
    ReadBytes(entry, "arguments", command.arguments);
    RefuseAnswerOfOwnCommand(entry, command.tool);
    ReadOutput(entry, "stdout", command.standardOutput);
    ReadOutput(entry, "stderr", command.standardError);
    ReadNumber(entry, "exitCode", command.exitCode);
    ReadNumber(entry, "startError", command.startError);
    ReadNumber(entry, "pipeError", command.pipeError);
    ReadNumber(entry, "exitCodeError", command.exitCodeError);
    return command;
  }

  void ReadOutput(const Json& entry, const char* name, Bytes& output) {
    if (const Json* file = FindMember(entry, name)) output = ReadNamedFile(*file, name);
  }

  void ReadFiles(const Json& all) {
    const Json* members = FindMember(all, "files");
    if (members == nullptr) return;
    if (!members->is_object()) {
      throw MemberError("files", "has to be an object, { ... }, not " + ShowValue(*members));
    }
    Recording nothing;
    const MachineFiles paths(nothing);
    std::set<std::string> known;
    for (const auto& [name, file] : members->items()) {
      const std::string place = "files[" + QuoteText(name) + "]";
      const std::string path = BytesOf(name, place);
      if (path.empty() || path.ends_with('\\')) {
        throw MemberError(place, "has to be the Windows path of a file");
      }
      if (!known.insert(LowerCase(paths.FullPath(path))).second) {
        throw MemberError(place,
                          "names a file that another member names too; paths compare without case");
      }
      recording.files[path] = ReadNamedFile(file, place);
    }
  }

  void ReadReadOnly(const Json& all) {
    const Json* list = FindList(all, "readOnly");
    if (list == nullptr) return;
    for (const Json& entry : *list) {
      const std::string place = "readOnly[" + std::to_string(recording.readOnly.size()) + "]";
      recording.readOnly.push_back(BytesOf(TextOf(entry, place), place));
      if (recording.readOnly.back().empty()) {
        throw MemberError(place, "is empty; it has to be a Windows path");
      }
    }
  }

  Bytes ReadNamedFile(const Json& name, const std::string& place) {
    const std::string& text = TextOf(name, place);
    try {
      return namedFiles.Read(text);
    } catch (const std::runtime_error& error) {
      throw MemberError(place, error.what());
    }
  }

  NamedFiles namedFiles;
  RecordingLimits limits;
  Manifest manifest;
  Recording recording;
  std::optional<MemberError> badCommand;  ///< the first of them; its turn comes after the format's
};

/// What FindChanges() says, or why it cannot.
std::vector<std::string> CheckManifest(RecordingReader& reader) {
  try {
    return reader.FindChanges();
  } catch (const std::runtime_error& problem) {
    return {std::string(kManifestFileName) + ": " + problem.what()};
  }
}

/// Throws RecordingError with `place` and the reason.
template <typename Work>
auto ExplainProblems(const std::string& place, const Work& work) {
  try {
    return work();
  } catch (const MemberError& problem) {
    throw RecordingError(place + ": " + problem.Explain());
  } catch (const std::filesystem::filesystem_error& problem) {
    throw RecordingError(place +
                         ": cannot be read: " + ReplaceUnprintable(problem.code().message()));
  } catch (const std::bad_alloc&) {
    throw RecordingError(place + ": the recording is too large for this machine's memory");
  } catch (const std::runtime_error& problem) {
    throw RecordingError(place + ": " + problem.what());
  }
}

/// A recording, and in what it is not as its manifest says.
struct ComparedRecording {
  Recording recording;               ///< its doubts are those about submission.json
  std::vector<std::string> changes;  ///< in the files that it names
  /// In the files that the manifest alone names, or that there is none.
  std::vector<std::string> otherChanges;
};

enum class Thoroughness { kNamedFiles, kWholeManifest };

/// `open` gives the files of what is at `path`.
template <typename Open>
ComparedRecording ReadAndCompare(const std::filesystem::path& path, const RecordingLimits& limits,
                                 Thoroughness thoroughness, const Open& open) {
  const std::unique_ptr<StoredFiles> files = ExplainProblems(PathText(path), open);
  RecordingReader reader(*files, limits);
  ComparedRecording all;
  Recording& recording = all.recording;
  recording = ExplainProblems(files->Describe(kRecordingFileName), [&] {
    const Bytes description = reader.ReadDescription();
    return reader.Read(description);
  });
  ExplainProblems(PathText(path), [&] {
    if (files->Has(kManifestFileName)) {
      all.changes = CheckManifest(reader);
      if (thoroughness == Thoroughness::kWholeManifest) {
        all.otherChanges = reader.FindUnnamedChanges();
      }
    } else {
      all.otherChanges.push_back("there is no " + std::string(kManifestFileName) +
                                 ", so nothing tells whether it is as it was made");
    }
    const std::optional<std::string> key =
        all.changes.empty() ? reader.ComputeManifestDigest() : std::nullopt;
    recording.contentKey = key ? *key : ComputeContentKey(recording);
    try {
      recording.submission = ReadSubmission(*files);
    } catch (const std::runtime_error& problem) {
      recording.doubts.push_back(
          std::string(problem.what()) +
          ", so it is not known which machine this is, nor when it was recorded: " +
          "correct that file or take it away");
    }
  });
  return all;
}

template <typename Open>
Recording Load(const std::filesystem::path& path, const ReadingRules& rules, const Open& open) {
  auto [recording, changes, unused] =
      ReadAndCompare(path, rules.limits, Thoroughness::kNamedFiles, open);
  if (!changes.empty() && !rules.allowChanges) {
    throw RecordingError(PathText(path) + ": " + changes.front() +
                         ", so the recording is not as it was made: get it again, or read it all "
                         "the same with --unverified");
  }
  for (std::string& change : changes) change.insert(0, "the recording is not as it was made: ");
  recording.doubts.insert(recording.doubts.begin(), changes.begin(), changes.end());
  return std::move(recording);
}

}  // namespace

Recording LoadRecording(const std::filesystem::path& given, const ReadingRules& rules) {
  const std::filesystem::path path = given.empty() ? "." : given;
  return Load(path, rules, [&] { return OpenStoredFiles(path, rules.limits); });
}

Recording LoadZippedRecording(std::string bytes, const std::filesystem::path& name,
                              const ReadingRules& rules) {
  return Load(name, rules, [&] { return OpenZippedFiles(std::move(bytes), name, rules.limits); });
}

Verification VerifyRecording(const std::filesystem::path& path, const RecordingLimits& limits) {
  auto [recording, differences, others] = ReadAndCompare(
      path, limits, Thoroughness::kWholeManifest, [&] { return OpenStoredFiles(path, limits); });
  differences.insert(differences.end(), others.begin(), others.end());
  differences.insert(differences.end(), recording.doubts.begin(), recording.doubts.end());
  return {recording.contentKey, std::move(differences)};
}

}  // namespace host
