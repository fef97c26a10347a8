#include "host/redact/redaction.h"

#include <fmt/format.h>

#include <cstddef>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include "host/recording/recording_writer.h"
#include "host/redact/kept_names.h"
#include "host/redact/known_values.h"
#include "host/redact/recording_texts.h"
#include "host/redact/searchable_text.h"
#include "host/redact/text_redactor.h"
#include "host/redact/value_finder.h"

namespace host {
namespace {

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
    KeepNames(given, values);
    AddKnownValues(result.recording, values);
    ChangeTexts(result.recording, decode,
                [&](std::string_view text, TextPlace place, const std::string& /*name*/) {
                  textsWithOrdinary.push_back(FindIn(text, place));
                  return std::nullopt;
                });
    std::size_t next = 0;
    TextRedactor redactor(values);
    ChangeTexts(result.recording, decode,
                [&](std::string_view text, TextPlace place, const std::string& name) {
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
  void LeaveOutUnsearchable() {
    const auto check = [&](Bytes& bytes, const std::string& name) {
      if (IsSearchable(bytes, given.codePage)) return true;
      bytes.clear();
      result.leftOut.push_back(name);
      return false;
    };
    for (RecordedCommand& command : result.recording.commands) {
      check(command.standardOutput, "output of " + DescribeCommand(command, decode));
      check(command.standardError, "error output of " + DescribeCommand(command, decode));
    }
    std::map<std::string, Bytes>& files = result.recording.files;
    for (auto file = files.begin(); file != files.end();) {
      const bool isGood = check(file->second, decode(file->first));
      file = isGood ? std::next(file) : files.erase(file);
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
  std::vector<bool> textsWithOrdinary;  ///< in the order of ChangeTexts()
  RedactedRecording result;
};

}  // namespace

RedactedRecording RedactRecording(const Recording& recording, const RedactionRules& rules,
                                  const Pseudonyms& pseudonyms) {
  return RecordingRedactor(recording, rules, pseudonyms).Redact();
}

}  // namespace host
