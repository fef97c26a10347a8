// pqhost diff: what changed between two collections of a machine. The exit code is that of diff.

#include <fmt/format.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/answers/difference/difference.h"
#include "host/formats/difference/difference_formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/compared_file.h"
#include "host/program/interruption.h"
#include "host/program/result_output.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kDiffFooter[] = R"(Examples:
  pqhost diff november.zip december.zip
  pqhost diff november.json december.zip --format html --output changes.html
  pqhost diff OLD NEW --part drives
  pqhost diff OLD NEW --ignore drives.link_speed --format json --output changes.json

Exit codes: 0 no difference; 1 differences; 2 wrong use, unreadable input, or
an interruption.
)";

struct DiffFormat {
  const char* name;
  void (*write)(const NamedDifference& named, const Screen& screen, std::ostream& out);
  bool isBinary = false;
};
constexpr DiffFormat kDiffFormats[] = {
    {"table", WriteDifferenceTable}, {"json", WriteDifferenceJson},
    {"csv", WriteDifferenceCsv},     {"sqlite", WriteDifferenceSqlite, /*isBinary=*/true},
    {"html", WriteDifferenceHtml},
};

struct DiffOptions {
  std::vector<std::string> words;  ///< the two files
  SourceOptions source;            ///< how they are read
  std::string format = kDiffFormats[0].name;
  Destination output;
  std::vector<std::string> ignored;
  std::vector<std::string> tables;
  std::vector<std::string> parts;
  bool showsAll = false;
  bool listsCompared = false;
};

/// Ctrl-C was pressed before there was anything to compare.
class ReadingInterrupted {};

SourceOptions MakeSource(const std::string& word, const DiffOptions& options) {
  SourceOptions source = options.source;
  source.replay = PathFromText(word);
  return source;
}

ComparedFile ReadSide(const std::string& word, const DiffOptions& options, const Console& console,
                      const std::function<void()>& beforeRun) {
  ComparedFile side = OpenComparedFile(MakeSource(word, options), console, beforeRun);
  if (IsInterruptionRequested()) throw ReadingInterrupted();
  return side;
}

DifferenceOptions SettleOptions(const DiffOptions& given) {
  DifferenceOptions options;
  for (const std::string& text : given.ignored) TakeIgnored(text, options);
  for (const std::string& name : given.tables) TakeTable(name, options);
  for (const std::string& name : given.parts) TakePart(name, options);
  options.comparesReports = given.showsAll;
  return options;
}

const DiffFormat& ChooseDiffFormat(const DiffOptions& options, const Console& console) {
  for (const DiffFormat& format : kDiffFormats) {
    if (format.name != options.format) continue;
    if (format.isBinary) RefuseBytesOnTerminal(format.name, options.output, console);
    return format;
  }
  return kDiffFormats[0];
}

int CompareAndWrite(const DiffOptions& given, const Console& console) {
  const DifferenceOptions options = SettleOptions(given);
  const DiffFormat& format = ChooseDiffFormat(given, console);
  for (const std::string& word : given.words) {
    RefuseInRecording(MakeSource(word, given), "--output", given.output);
  }
  std::optional<ResultOutput> output;
  const ComparedFile before = ReadSide(given.words[0], given, console, [] {});
  const ComparedFile after =
      ReadSide(given.words[1], given, console, [&] { output.emplace(given.output, console); });
  const NamedDifference named{before.name, after.name,
                              FindDifference({before.collection, before.assessment},
                                             {after.collection, after.assessment}, options)};
  if (named.difference.isOlder) {
    Complain(console, fmt::format("{} is newer than {}: the older one comes first", given.words[0],
                                  given.words[1]));
  }
  output->Write([&](Screen screen, std::ostream& out) {
    screen.showsAll = given.showsAll;
    format.write(named, screen, out);
  });
  TellWritten("Differences", given.output, console);
  return named.difference.IsNone() ? kExitDone : kExitDifferent;
}

int RunDiff(const DiffOptions& given, const Console& console) {
  if (given.listsCompared) {
    console.out << WriteDifferenceDocument();
    return kExitDone;
  }
  if (given.words.size() != 2) {
    throw UsageError("diff compares two files: give both, as in pqhost diff OLD NEW");
  }
  try {
    return CompareAndWrite(given, console);
  } catch (const ReadingInterrupted&) {
    Complain(console, "interrupted: nothing was compared");
    return kExitMisused;
  }
}

CommandRun DefineDiff(OptionSet& set) {
  const auto options = std::make_shared<DiffOptions>();
  set.AddArguments(
      "RECORDINGS", "OLD NEW", OptionValue::kRecording, 2, options->words,
      "The older first: recordings, folders or ZIP files; or results as json, html or sqlite");
  set.AddTexts("--ignore", "PART.COLUMN", options->ignored,
               "Leave a column out, as in drives.link_speed; * is any text; may be repeated");
  set.AddNames("--table", OptionValue::kTable, options->tables,
               "Compare this table by its cells, too, though parts cover it; may be repeated");
  set.AddTexts("--part", "NAME", options->parts,
               "Compare these parts and nothing else, as in drives; events: logs; may be repeated");
  set.AddFlag("--all", options->showsAll,
              "Show all new entries of logs, and count the changed lines of whole reports");
  std::vector<std::string> formats;
  for (const DiffFormat& format : kDiffFormats) formats.emplace_back(format.name);
  set.AddChoice("--format", formats, options->format,
                "Format of the differences: table, json, csv, sqlite or html");
  set.AddDestination("--output", options->output, "Write the differences to this file");
  AddReadingRules(set, options->source);
  set.AddFlag("--list-compared", options->listsCompared,
              "Show in Markdown what is compared, and compare nothing");
  return [options](const Console& console) { return RunDiff(*options, console); };
}

}  // namespace

const Command kDiffCommand = {"diff",
                              "Tell what changed between two recordings",
                              kDiffFooter,
                              &DefineDiff,
                              Command::TimeLimit::kOfProgram,
                              Command::ExitCodes::kOfDiff};

}  // namespace host
