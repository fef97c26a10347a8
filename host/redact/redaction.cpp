#include "host/redact/redaction.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "host/answers/parts/part_tables.h"
#include "host/answers/parts/read_parts.h"
#include "host/collect/collect.h"
#include "host/recorded/interpreter.h"
#include "host/recorded/machine_files.h"
#include "host/recording/recording_writer.h"
#include "host/redact/searchable_text.h"
#include "host/redact/text_redactor.h"
#include "host/redact/value_finder.h"
#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::size_t kLongestCell = 80;

bool StartsWith(std::string_view text, std::string_view start) {
  return LowerCase(text.substr(0, start.size())) == LowerCase(start);
}

/// What a tool prints, by its name and the start of its arguments.
struct OutputRow {
  std::string_view tool;
  std::string_view arguments;
  TextPlace place;
};
constexpr OutputRow kOutputs[] = {
    {"netstat", "", TextPlace::kConnections},
    {"net", "share", TextPlace::kShares},
};

TextPlace PlaceOfOutput(const RecordedCommand& command) {
  const std::string tool = LowerCase(ToolName(command.tool));
  for (const OutputRow& row : kOutputs) {
    if (tool == row.tool && StartsWith(command.arguments, row.arguments)) return row.place;
  }
  return TextPlace::kOther;
}

TextPlace PlaceOfArguments(const RecordedCommand& command) {
  return LowerCase(ToolName(command.tool)) == "amt_log" ? TextPlace::kAmtArguments
                                                        : TextPlace::kArguments;
}

TextPlace PlaceOfFile(std::string_view path) {
  const std::string name = LowerCase(FileNameOf(path));
  return name.starts_with("hosts") || name.starts_with("lmhosts") ? TextPlace::kHosts
                                                                  : TextPlace::kOther;
}

class RecordingRedactor {
 public:
  RecordingRedactor(const Recording& given, const RedactionRules& rules,
                    const Pseudonyms& pseudonyms)
      : given(given),
        rules(rules),
        decode(given.codePage),
        values(rules, pseudonyms, given.codePage) {
    result.recording = given;
  }

  RedactedRecording Redact() {
    LeaveOutUnsearchable();
    KeepNames();
    FindInParts();
    VisitTexts([&](std::string_view text, TextPlace place, const std::string& /*name*/) {
      textsWithOrdinary.push_back(FindIn(text, place));
      return std::string(text);
    });
    std::size_t next = 0;
    TextRedactor redactor(values);
    VisitTexts([&](std::string_view text, TextPlace place, const std::string& name) {
      return redactor.Redact(text, place, textsWithOrdinary[next++], name);
    });
    NoteRedaction();
    CheckFiles(redactor);
    for (ListedValue& value : values.Values()) {
      if (value.count > 0) result.values.push_back(std::move(value));
    }
    return std::move(result);
  }

 private:
  std::string Describe(const RecordedCommand& command) const {
    std::string name = ToolName(command.tool);
    if (!command.arguments.empty()) name.append(" ").append(command.arguments);
    return decode(name);
  }

  /// Every text with the bytes that it has, and those that shall take their place.
  template <typename Change>
  void VisitTexts(const Change& change) {
    Recording& recording = result.recording;
    recording.description = change(recording.description, TextPlace::kOther, "description");
    recording.hostExecutable =
        change(recording.hostExecutable, TextPlace::kOther, "hostExecutable");
    recording.logFolder = change(recording.logFolder, TextPlace::kOther, "logFolder");
    recording.console = change(recording.console, TextPlace::kConsole, "console");
    // Several commands may have one text, and a file too.
    std::map<const char*, std::pair<Bytes, Bytes>> done;
    const auto changeBytes = [&](Bytes& bytes, TextPlace place, const std::string& name) {
      if (bytes.empty()) return;
      const auto known = done.find(bytes.Text().data());
      if (known != done.end()) {
        bytes = known->second.second;
        return;
      }
      Bytes changed = change(bytes.Text(), place, name);
      if (changed == bytes) changed = bytes;
      done.emplace(bytes.Text().data(), std::pair(bytes, changed));
      bytes = std::move(changed);
    };
    for (RecordedCommand& command : recording.commands) {
      const std::string name = Describe(command);
      const TextPlace place = PlaceOfOutput(command);
      changeBytes(command.standardOutput, place, name);
      changeBytes(command.standardError, place, name);
      command.arguments =
          change(command.arguments, PlaceOfArguments(command), "arguments of " + name);
    }
    std::map<std::string, Bytes> files;
    for (auto& [path, bytes] : recording.files) {
      changeBytes(bytes, PlaceOfFile(path), decode(path));
      files.emplace(ChangeLogPath(path), std::move(bytes));
    }
    recording.files = std::move(files);
    for (std::string& path : recording.readOnly) path = ChangeLogPath(path);
    if (!recording.submission) return;
    Submission& submission = *recording.submission;
    for (std::string* text : {&submission.name, &submission.system, &submission.program}) {
      *text = change(*text, TextPlace::kOther, "submission.json");
    }
    for (std::string& serial : submission.serials) {
      serial = change(serial, TextPlace::kOther, "submission.json");
    }
    for (auto& [tool, version] : submission.tools) {
      version = change(version, TextPlace::kOther, "submission.json");
    }
  }

  /// A path that modules look for has to stay, but for the log folder, which may be elsewhere now.
  std::string ChangeLogPath(const std::string& path) const {
    if (!StartsWith(path, given.logFolder)) return path;
    return result.recording.logFolder + path.substr(given.logFolder.size());
  }

  void LeaveOutUnsearchable() {
    const auto check = [&](Bytes& bytes, const std::string& name) {
      if (IsSearchable(bytes, given.codePage)) return true;
      bytes.clear();
      result.leftOut.push_back(name);
      return false;
    };
    for (RecordedCommand& command : result.recording.commands) {
      check(command.standardOutput, "output of " + Describe(command));
      check(command.standardError, "error output of " + Describe(command));
    }
    std::map<std::string, Bytes>& files = result.recording.files;
    for (auto file = files.begin(); file != files.end();) {
      const bool isGood = check(file->second, decode(file->first));
      file = isGood ? std::next(file) : files.erase(file);
    }
  }

  void KeepNames() {
    const auto keepPath = [&](std::string_view path) {
      while (!path.empty()) {
        const std::size_t end = std::min(path.find('\\'), path.size());
        values.Keep(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
      }
    };
    const auto keepMachinePath = [&](std::string_view path) {
      if (StartsWith(path, given.logFolder)) path.remove_prefix(given.logFolder.size());
      keepPath(path);
    };
    for (const auto& [path, bytes] : given.files) keepMachinePath(path);
    for (const std::string& path : given.readOnly) keepMachinePath(path);
    values.Keep(FileNameOf(given.hostExecutable));
    for (const RecordedCommand& command : given.commands) {
      const std::string arguments = LowerCase(command.arguments);
      const std::string folder = LowerCase(given.logFolder);
      for (std::size_t at = arguments.find(folder); at != std::string::npos;
           at = arguments.find(folder, at + 1)) {
        const std::size_t begin = at + folder.size();
        const std::size_t end = std::min(arguments.find_first_of("\" ", begin), arguments.size());
        keepPath(std::string_view(arguments).substr(begin, end - begin));
      }
    }
  }

  /// Whether there are values among them that are ordinary words.
  bool FindIn(std::string_view text, TextPlace place) {
    bool hasOrdinary = false;
    const NarrowText narrow(text);
    FindValues(narrow.View(), place, [&](ValueKind kind, std::size_t begin, std::size_t end) {
      const std::optional<std::size_t> number =
          values.Add(kind, narrow.View().substr(begin, end - begin));
      hasOrdinary = hasOrdinary || (number && values.Values()[*number].isOrdinary);
    });
    return hasOrdinary;
  }

  /// What the parts and the tables of a replay know to be of a kind.
  void FindInParts() {
    if (given.submission) {
      values.Add(ValueKind::kHost, given.submission->name);
      for (const std::string& serial : given.submission->serials) {
        values.Add(ValueKind::kSerial, serial);
      }
    }
    const Collection collection = Collect(result.recording);
    const Parts parts = ReadParts(collection);
    for (const PartTable& table : GetPartTables()) {
      for (std::size_t column = 0; column < table.columns.size(); ++column) {
        if (table.columns[column].name != "serial") continue;
        for (std::size_t row = 0; row < table.count(parts); ++row) {
          const PartValue value = table.Get(parts, row, column);
          if (const auto* text = std::get_if<std::string_view>(&value)) {
            values.Add(ValueKind::kSerial, *text);
          }
        }
      }
    }
    for (const CollectedTable& table : collection.tables) {
      if (table.rows != nullptr) FindInRows(*table.rows);
    }
  }

  void FindInRows(const Table& table) {
    std::map<const RowShape*, std::vector<std::pair<std::size_t, ValueKind>>> kinds;
    for (const Row& row : table.rows) {
      const auto [known, isNew] = kinds.try_emplace(row.shape);
      for (std::size_t i = 0; isNew && i < row.shape->columns.size(); ++i) {
        const Column& column = row.shape->columns[i];
        const ValueKind* kind = FindLabelKind(column.label);
        if (kind == nullptr) kind = FindLabelKind(column.key);
        if (kind != nullptr) known->second.emplace_back(i, *kind);
      }
      for (const auto& [place, kind] : known->second) {
        const std::string_view value = row.Value(place);
        const std::size_t begin = value.find_first_not_of(' ');
        if (begin == std::string_view::npos || value.size() > kLongestCell) continue;
        values.Add(kind, value.substr(begin, value.find_last_not_of(' ') + 1 - begin));
      }
    }
  }

  void NoteRedaction() {
    Redaction redaction{.profile = rules.profile, .counts = {}};
    for (const KindRow& row : GetKinds()) {
      if (rules.kinds.contains(row.kind)) redaction.counts[std::string(row.name)] = 0;
    }
    for (const ListedValue& value : values.Values()) {
      redaction.counts[std::string(DescribeKind(value.kind).name)] += value.count;
    }
    redaction.leftOut = result.leftOut.size();
    Recording& recording = result.recording;
    recording.contentKey.clear();
    if (!recording.submission) recording.submission.emplace();
    recording.submission->redacted = std::move(redaction);
  }

  void NoteLeak(std::size_t number, const std::string& name) {
    const ListedValue& value = values.Values()[number];
    result.leaks.push_back(fmt::format("{}: a value of the kind {} is still there", name,
                                       DescribeKind(value.kind).name));
  }

  /// The files as they will be written, names included.
  void CheckFiles(const TextRedactor& redactor) {
    VisitRecordingFiles(result.recording, [&](const std::string& name, std::string_view bytes) {
      for (const std::size_t leak : redactor.FindLeaks(name)) NoteLeak(leak, name);
      for (const std::size_t leak : redactor.FindLeaks(bytes)) NoteLeak(leak, name);
    });
  }

  const Recording& given;
  const RedactionRules& rules;
  TextDecoder decode;
  ValueList values;
  std::vector<bool> textsWithOrdinary;  ///< in the order of VisitTexts()
  RedactedRecording result;
};

}  // namespace

RedactedRecording RedactRecording(const Recording& recording, const RedactionRules& rules,
                                  const Pseudonyms& pseudonyms) {
  return RecordingRedactor(recording, rules, pseudonyms).Redact();
}

}  // namespace host
