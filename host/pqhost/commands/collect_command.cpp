// pqhost collect: from options to results. The machine is a recording, or this one.

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "host/formats/formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/gather.h"
#include "host/pqhost/trace_output.h"
#include "host/program/result_output.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

/// A line on standard error for every table: its rows, or why there are none.
void ReportStatus(const Collection& collection, const Console& console) {
  std::size_t width = 0;
  for (const CollectedTable& table : collection.tables) {
    width = std::max(width, table.className.size());
  }
  for (const CollectedTable& table : collection.tables) {
    console.error << fmt::format("{:<{}}  {}\n", EscapeControls(table.className), width,
                                 EscapeControls(table.status.text));
  }
}

}  // namespace

int RunCollectCommand(const Options& options, const Console& console) {
  // All that can be refused is refused before a tool runs.
  std::optional<ResultOutput> output;
  std::optional<TraceOutput> trace;
  const auto openOutputs = [&](CollectionListeners& listeners) {
    output.emplace(options.output, console);
    if (!options.trace) return;
    const Passwords passwords = options.replay ? Passwords::kShown : Passwords::kHidden;
    trace.emplace(*options.trace, console, passwords);
    listeners.Add(trace->Writer());
  };
  const Format& format = *FindFormat(options.format);
  auto [source, collection] = Gather(options, console, format.wantsLog, openOutputs);

  // What the machine answered is shown also when it could not be kept.
  try {
    source->KeepRecording(console);
  } catch (const std::runtime_error& error) {
    collection.problems.emplace_back(error.what());
  }
  output->Write([&, &results = collection](const Screen& screen, std::ostream& out) {
    format.write(results, screen, out);
  });
  if (trace) trace->Close();
  for (const std::string& problem : source->KeepLogFiles(console)) {
    collection.problems.push_back(problem);
  }
  for (const std::string& problem : collection.problems) Complain(console, problem);
  ReportStatus(collection, console);
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

}  // namespace host
