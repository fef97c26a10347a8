// pqhost redact: a copy of a recording without what its sender keeps to himself.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

#include "host/files/places.h"
#include "host/files/whole_file.h"
#include "host/formats/csv_records.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/redaction_key.h"
#include "host/recording/recording_reader.h"
#include "host/recording/recording_writer.h"
#include "host/redact/redaction.h"
#include "host/text/count_text.h"
#include "host/text/path_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kRedactFooter[] = R"(Examples:
  pqhost redact server.zip to-send.zip
  pqhost redact --preview server.zip
  pqhost redact --profile support server.zip to-send.zip
  pqhost redact --kind serial --kind ipv4 server.zip to-send.zip
  pqhost redact --map names.csv FOLDER to-send.zip

Passwords and logins are always replaced. Profiles: support adds people and their
mail addresses, public all that names a machine, its network and its parts.

Exit codes: 0 done; 1 what cannot be searched was left out, or a value was still
there and nothing was written; 2 wrong use or unreadable input.
)";

struct RedactOptions {
  std::vector<std::string> words;  ///< recording and result
  SourceOptions source;            ///< how it is read
  std::string profile{kPublicProfile};
  std::vector<std::string> kinds;
  std::optional<std::filesystem::path> map;
  bool isPreview = false;
};

RedactionRules ChooseRules(const RedactOptions& options, bool isProfileGiven) {
  RedactionRules rules =
      options.kinds.empty() || isProfileGiven ? MakeRules(options.profile) : MakeLeastRules();
  for (const std::string& name : options.kinds) {
    const KindRow* kind = FindKind(name);
    if (kind == nullptr) {
      std::string known;
      for (const KindRow& row : GetKinds()) {
        known.append(known.empty() ? "" : ", ").append(row.name);
      }
      throw UsageError(fmt::format("--kind {} is not known; it has to be one of {}", name, known));
    }
    rules.kinds.insert(kind->kind);
  }
  return rules;
}

/// Throws UsageError for a `place` that is `folder`, or in it; `name` and `what` are for people.
void KeepApart(const std::string& name, const std::filesystem::path& place,
               const std::filesystem::path& folder, const char* what) {
  if (!IsInFolder(place, folder) && !AreSameFile(place, folder)) return;
  throw UsageError(
      fmt::format("{} {} is in the {}: name another place", name, PathText(place), what));
}

void CheckPlaces(const RedactOptions& options) {
  const std::size_t needed = options.isPreview ? 1 : 2;
  if (options.words.empty()) {
    throw UsageError("there is no recording: name one, as in pqhost redact server.zip to-send.zip");
  }
  if (options.words.size() < needed) {
    throw UsageError(
        "there is no name for the result: give one, as in pqhost redact server.zip to-send.zip, or "
        "look first with --preview");
  }
  const std::filesystem::path in = PathFromText(options.words[0]);
  if (options.isPreview) {
    if (options.words.size() > 1 || options.map) {
      throw UsageError("--preview writes nothing: leave the result and --map away");
    }
    return;
  }
  const std::filesystem::path out = PathFromText(options.words[1]);
  KeepApart("the result", out, in, "recording, which stays as it is");
  KeepApart("the recording", in, out, "result");
  if (!options.map) return;
  KeepApart("--map", *options.map, in, "recording, which stays as it is");
  KeepApart("--map", *options.map, out, "result, which is to be sent without it");
}

void ShowPreview(const RedactedRecording& redacted, const Console& console) {
  std::size_t kindWidth = 4;
  std::size_t valueWidth = 5;
  for (const ListedValue& value : redacted.values) {
    kindWidth = std::max(kindWidth, DescribeKind(value.kind).name.size());
    valueWidth = std::max(valueWidth, EscapeControls(value.text).size());
  }
  constexpr std::size_t kWidestValue = 40;
  valueWidth = std::min(valueWidth, kWidestValue);
  console.out << fmt::format("{:<{}}  {:<{}}  {:>5}  {}\n", "kind", kindWidth, "value", valueWidth,
                             "times", "first in");
  for (const ListedValue& value : redacted.values) {
    console.out << fmt::format("{:<{}}  {:<{}}  {:>5}  {}\n", DescribeKind(value.kind).name,
                               kindWidth, EscapeControls(value.text), valueWidth, value.count,
                               EscapeControls(value.where));
  }
}

std::string WriteMap(const RedactedRecording& redacted) {
  std::ostringstream text;
  text.exceptions(std::ios::badbit);  // Else a map for which memory is short is cut.
  CsvRecords csv(/*escapes=*/false, text);
  for (const char* head : {"kind", "value", "pseudonym", "times"}) csv.WriteField(head);
  csv.EndRecord();
  for (const ListedValue& value : redacted.values) {
    csv.WriteField(DescribeKind(value.kind).name);
    csv.WriteField(value.text);
    csv.WriteField(value.pseudonym);
    csv.WriteField(std::to_string(value.count));
    csv.EndRecord();
  }
  return std::move(text).str();
}

/// What was replaced, by kind, as one line.
std::string Summarize(const RedactedRecording& redacted) {
  std::string text;
  for (const auto& [kind, count] : redacted.recording.submission->redacted->counts) {
    if (count > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, kind);
  }
  return text.empty() ? "nothing was found to replace" : "replaced: " + text;
}

int RunRedact(const RedactOptions& options, const RedactionRules& rules, const Console& console) {
  CheckPlaces(options);
  const Recording recording = LoadRecording(PathFromText(options.words[0]), options.source.rules);
  for (const std::string& doubt : recording.doubts) Complain(console, doubt);
  // A preview shows no pseudonyms and makes no key.
  const Pseudonyms pseudonyms(options.isPreview ? "preview"
                                                : ObtainRedactionKey(options.source.redactionKey));
  const RedactedRecording redacted = RedactRecording(recording, rules, pseudonyms);
  for (const std::string& text : redacted.leftOut) {
    Complain(console, "left out, as it cannot be searched: " + text);
  }
  if (options.isPreview) {
    ShowPreview(redacted, console);
    console.error << fmt::format("{}; nothing was written\n",
                                 FormatCount(redacted.values.size(), "value"));
    return redacted.leftOut.empty() ? kExitDone : kExitIncomplete;
  }
  if (!redacted.leaks.empty()) {
    for (const std::string& leak : redacted.leaks) Complain(console, leak);
    Complain(console, "nothing was written: do not pass this recording on as it is");
    return kExitIncomplete;
  }
  const std::filesystem::path out = PathFromText(options.words[1]);
  RecordingOutput output(out, "the result");
  // The map first: without it nobody could read the answer to what was sent.
  if (options.map) CreateWholeFile(*options.map, WriteMap(redacted), Readers::kOwnerAnywhere);
  try {
    output.Write(redacted.recording);
  } catch (...) {
    std::error_code ignored;
    if (options.map) std::filesystem::remove(*options.map, ignored);
    throw;
  }
  console.error << fmt::format("Redacted: {} ({})\n", EscapeControls(PathText(out)),
                               Summarize(redacted));
  if (options.map) {
    console.error << fmt::format("Map, for you alone: {}\n",
                                 EscapeControls(PathText(*options.map)));
  }
  return redacted.leftOut.empty() ? kExitDone : kExitIncomplete;
}

CommandRun DefineRedact(OptionSet& set) {
  const auto options = std::make_shared<RedactOptions>();
  set.AddArguments("RECORDING", "IN OUT", OptionValue::kRecording, 2, options->words,
                   "The recording, and the new folder or ZIP file for what may be passed on");
  set.AddChoice("--profile", {std::string(kSupportProfile), std::string(kPublicProfile)},
                options->profile, "What is replaced");
  set.AddTexts("--kind", "KIND", options->kinds,
               "Replace this kind of values beside passwords and logins, or beside those of "
               "--profile; may be repeated");
  set.AddFlag("--preview", options->isPreview,
              "Show what would be replaced, where and how often, and write nothing");
  set.AddPath("--map", OptionValue::kFile, options->map,
              "Write values and pseudonyms to this new file, for you alone");
  AddRedactionKey(set, options->source);
  AddReadingRules(set, options->source);
  return [options, &set](const Console& console) {
    return RunRedact(*options, ChooseRules(*options, set.IsGiven("--profile")), console);
  };
}

}  // namespace

const Command kRedactCommand = {"redact", "Copy a recording without what must not be passed on",
                                kRedactFooter, &DefineRedact};

}  // namespace host
