// pqhost show: any file that this program wrote, in any format.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "host/files/places.h"
#include "host/pqhost/commands/collection_output.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/commands/shared_options.h"
#include "host/pqhost/open_file.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kShowFooter[] = R"(Examples:
  pqhost show server.zip
  pqhost show server.html --format json --output server.json
  pqhost show server.db --format html --output report.html

The file may be a recording, a report, or results as json or sqlite, whatever it
is called. What it does not keep is left out and never made up.

Exit codes: 0 done; 1 something could not be collected when the file was made,
with a line for each on standard error; 2 wrong use or unreadable input.
)";

struct ShowOptions {
  std::vector<std::string> words;  ///< the file
  SourceOptions source;            ///< how a recording is read
  ResultOptions result;
  ShownMuch much;
};

int RunShow(ShowOptions& options, const Console& console) {
  if (options.words.empty()) {
    throw UsageError("there is no file: name one, as in pqhost show server.zip");
  }
  RefuseIdentityOfOthers(options.result);
  options.source.replay = PathFromText(options.words.front());
  RefuseInRecording(options.source, "--output", options.result.output);
  CollectionOutput output(options.result, options.much, console);
  Collection collection =
      OpenFile(options.source, console, output.GetFormat().wantsLog ? KeepLog::kYes : KeepLog::kNo,
               [&] { output.Open(); });
  output.Write(collection);
  output.TellStatus(collection);
  output.TellPlace();
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

CommandRun DefineShow(OptionSet& set) {
  const auto options = std::make_shared<ShowOptions>();
  set.AddArguments("FILE", "FILE", OptionValue::kFile, 1, options->words,
                   "A recording, or a result of this program");
  AddFormat(set, options->result, "results", FormatsFor::kMachine);
  AddOutput(set, options->result, "results");
  AddIdentify(set, options->result);
  AddShownMuch(set, options->much);
  AddReadingRules(set, options->source);
  return [options](const Console& console) { return RunShow(*options, console); };
}

}  // namespace

const Command kShowCommand = {"show", "Show a file that pqhost wrote, in any format", kShowFooter,
                              &DefineShow};

}  // namespace host
