#include "host/pqhost/commands/collection_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

#include "host/files/whole_file.h"
#include "host/formats/csv_folder.h"
#include "host/formats/machine_summary.h"
#include "host/text/screen_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr char kCsvFormat[] = "csv";

bool IsFolder(const Destination& output) {
  if (output.IsStandardOutput()) return false;
  std::error_code error;
  return !output.path.has_filename() || std::filesystem::is_directory(output.path, error);
}

/// Whether rows of the format can tell their machine.
bool TakesIdentity(const std::string& format) {
  return format == kCsvFormat || format == "ndjson" || format == "prometheus";
}

}  // namespace

void AddShownMuch(OptionSet& set, ShownMuch& much) {
  set.AddFlag("--no-attachments", much.leavesAttachmentsOut,
              "Leave the whole files out of the results, such as the tools' reports");
  set.AddFlag("--all", much.showsAll,
              "Show all of each log; without it, --format table shows its newest lines");
}

void RefuseIdentityOfOthers(const ResultOptions& result) {
  if (!result.identifiesRows || TakesIdentity(result.format)) return;
  throw UsageError(
      fmt::format("--identify is for csv and prometheus: {} tells the machine in its own place; "
                  "leave it away",
                  result.format));
}

CollectionOutput::CollectionOutput(const ResultOptions& result, const ShownMuch& much,
                                   const Console& console)
    : result(result),
      much(much),
      console(console),
      format(ChooseFormat(result, console)),
      isFolder(result.format == kCsvFormat && IsFolder(result.output)) {}

void CollectionOutput::Open() {
  if (isFolder) {
    CreateEmptyFolder(result.output.path, "--output");
  } else {
    output.emplace(result.output, console);
  }
}

void CollectionOutput::Write(Collection& collection) {
  if (format.describeCuts != nullptr) {
    for (std::string& cut : format.describeCuts(collection)) {
      collection.problems.push_back(std::move(cut));
    }
  }
  if (isFolder) {
    WriteCsvFolder(collection,
                   {.identifiesRows = result.identifiesRows,
                    .leavesAttachmentsOut = much.leavesAttachmentsOut},
                   result.output.path);
    return;
  }
  const std::optional<NamedDifference> changes = FindChanges(collection);
  output->Write([&](Screen screen, std::ostream& out) {
    screen.showsAll = much.showsAll;
    screen.leavesAttachmentsOut = much.leavesAttachmentsOut;
    screen.identifiesRows = result.identifiesRows;
    if (changes) {
      WriteReport(collection, &*changes, screen, out);
    } else if (format.writeLast != nullptr && collection.machineIsKnown) {
      format.writeLast(collection, screen, out);
    } else {
      format.write(collection, screen, out);
    }
  });
}

std::optional<NamedDifference> CollectionOutput::FindChanges(const Collection& collection) const {
  if (earlier == nullptr) return std::nullopt;
  return NamedDifference{
      earlier->name, NameMachine(collection),
      FindDifference({earlier->collection, earlier->assessment}, {collection, Assess(collection)})};
}

void CollectionOutput::TellStatus(const Collection& collection) const {
  if (format.tellsStatus && result.output.IsStandardOutput() && console.outIsTerminal &&
      console.errorIsTerminal) {
    return;
  }
  for (const std::string& problem : collection.problems) Complain(console, problem);
  std::size_t width = 0;
  for (const CollectedTable& table : collection.tables) {
    width = std::max(width, table.className.size());
  }
  for (const CollectedTable& table : collection.tables) {
    console.error << fmt::format("{:<{}}  {}\n", EscapeControls(table.className), width,
                                 EscapeControls(DescribeStatus(table.status)));
  }
}

void CollectionOutput::TellPlace() const {
  if (result.format != "none") TellWritten(format.resultName, result.output, console);
}

}  // namespace host
