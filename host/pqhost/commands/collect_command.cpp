// pqhost collect: from options to results. The machine is a recording, or this one.

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <optional>
#include <stdexcept>

#include "host/collect/trace.h"
#include "host/files/output_file.h"
#include "host/files/whole_file.h"
#include "host/formats/formats.h"
#include "host/pqhost/commands/commands.h"
#include "host/pqhost/gather.h"
#include "host/text/json_text.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

/// The trace while it is written. It is not put aside until complete: it must tell what happened
/// also when the collection ends the process.
class TraceOutput {
 public:
  TraceOutput(const Destination& destination, const Console& console, Passwords passwords)
      : path(destination.path),
        forTerminal(console.out),
        writer(destination.IsStandardOutput() ? StandardOutput(console) : Open(destination.path),
               passwords) {}
  TraceOutput(const TraceOutput&) = delete;
  TraceOutput& operator=(const TraceOutput&) = delete;

  TraceWriter& Writer() { return writer; }

  /// Throws std::runtime_error when the file could not be written.
  void Close() {
    if (!file.is_open()) return;
    errno = 0;
    file.close();
    if (!file) throw std::runtime_error(DescribeUnwritable(path));
  }

 private:
  std::ostream& Open(const std::filesystem::path& target) {
    errno = 0;
    file.open(target, std::ios::binary);
    if (!file.is_open()) throw UsageError(DescribeUnwritable(target));
    return file;
  }

  std::ostream& StandardOutput(const Console& console) {
    return console.outIsTerminal ? forTerminal.Stream() : console.out;
  }

  std::ofstream file;
  std::filesystem::path path;
  JsonForTerminal forTerminal;
  TraceWriter writer;
};

void WriteResults(const Options& options, const Console& console, const Collection& collection,
                  std::optional<OutputFile>& output) {
  const Format& format = *FindFormat(options.format);
  if (output) {
    format.write(collection, Screen{false, false, console.width}, output->Stream());
    output->Complete();
  } else {
    const Screen screen{console.outIsTerminal, console.colors, console.width};
    format.write(collection, screen, console.out);
  }
}

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
  std::optional<OutputFile> output;
  std::optional<TraceOutput> trace;
  const auto openOutputs = [&](CollectionListeners& listeners) {
    if (!options.output.IsStandardOutput()) output.emplace(options.output.path);
    if (!options.trace) return;
    const Passwords passwords = options.replay ? Passwords::kShown : Passwords::kHidden;
    trace.emplace(*options.trace, console, passwords);
    listeners.Add(trace->Writer());
  };
  auto [source, collection] =
      Gather(options, console, FindFormat(options.format)->wantsLog ? KeepLog::kYes : KeepLog::kNo,
             openOutputs);

  // What the machine answered is shown also when it could not be kept.
  try {
    source->KeepRecording(console);
  } catch (const std::runtime_error& error) {
    collection.problems.emplace_back(error.what());
  }
  WriteResults(options, console, collection, output);
  if (trace) trace->Close();
  for (const std::string& problem : source->KeepLogFiles(collection, console)) {
    collection.problems.push_back(problem);
  }
  for (const std::string& problem : collection.problems) Complain(console, problem);
  ReportStatus(collection, console);
  return collection.problems.empty() ? kExitDone : kExitIncomplete;
}

}  // namespace host
