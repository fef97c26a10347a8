#include "host/collect/status_explainer.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "frame/tool_runner.h"
#include "host/catalogue/table_sources.h"
#include "host/collect/empty_table.h"
#include "host/collect/explained_runs.h"
#include "host/recorded/machine_files.h"
#include "host/text/ascii.h"

namespace host {

TableStatus StatusExplainer::FindStatus(const std::string& module, const std::string& className,
                                        std::size_t rowCount) const {
  const pq::TableDescription* table = FindTableDescription(className);
  if (rowCount > 0) return DescribeRows(module, table, rowCount);
  if (table == nullptr) return {"not reached", "no step of the collection asked for it"};
  return ExplainEmptyTable(history, module, *table);
}

TableStatus StatusExplainer::DescribeRows(const std::string& module,
                                          const pq::TableDescription* table,
                                          std::size_t rowCount) const {
  TableStatus status{"rows", fmt::format("{} row{}", rowCount, rowCount == 1 ? "" : "s")};
  std::string& text = status.text;
  if (table != nullptr) {
    std::string error;
    const std::vector<const ToolRun*> found = history.FindRuns(module, *table);
    const bool areMissing = !found.empty() && std::ranges::none_of(found, [](const ToolRun* run) {
      return run->isThere || run->oldFile;
    });
    // The rows are the interpreter's own words then, or empty files.
    if (areMissing && !table->hasHollowRows) {
      status.missing = ExplainMissing(history, found).text;
      text += ", but " + status.missing;
    }
    for (const ToolRun* run : found) {
      if (run->wasCut) {
        text += fmt::format(", of the first {} MiB that {} printed", pq::kPipeOutputLimit >> 20,
                            FileNameOf(run->program));
      }
      // Rows show that an error text, if there is one, was none; not so a whole line of it.
      const bool seemsToFail = run->reportedError && !run->printedErrorLine;
      if (!error.empty() || !run->isThere || run->oldFile || seemsToFail ||
          IsMadeUpFor(history, *run, *table)) {
        continue;
      }
      error = DescribeError(*run);
      if (!error.empty()) text += fmt::format(", but {} {}", FileNameOf(run->program), error);
    }
  }
  return status;
}

std::vector<std::string> StatusExplainer::FindNotes(const std::string& module,
                                                    const std::string& className) const {
  std::vector<std::string> notes;
  const pq::TableDescription* table = FindTableDescription(className);
  if (table == nullptr) return notes;
  for (const ToolRun* run : history.FindRuns(module, *table)) {
    if (!run->oldFile) continue;
    std::string note = fmt::format("from files of {}; {} {}", FormatAge(*run->oldFile),
                                   FileNameOf(run->program), DescribeOldFile(*run));
    if (std::ranges::find(notes, note) == notes.end()) notes.push_back(std::move(note));
  }
  return notes;
}

std::vector<std::string> StatusExplainer::DescribeEmptyFiles(
    const std::string& module, const std::vector<std::string>& fileNames) const {
  std::vector<std::string> reasons;
  std::vector<std::vector<std::string>> files;  // by their reason
  for (const std::string& fileName : fileNames) {
    const auto run = std::ranges::find_if(history.Runs(), [&](const ToolRun& candidate) {
      return candidate.module == module &&
             LowerCase(candidate.file).starts_with(LowerCase(fileName) + '.');
    });
    if (run == history.Runs().end()) continue;
    const std::string error = DescribeError(*run);
    const std::string reason = !run->isThere
                                   ? ExplainMissing(history, {&*run}).text
                                   : fmt::format("{} {}", FileNameOf(run->program),
                                                 error.empty() ? "printed nothing" : error);
    const auto known = std::ranges::find(reasons, reason);
    if (known == reasons.end()) {
      reasons.push_back(reason);
      files.push_back({run->file});
    } else {
      files[static_cast<std::size_t>(known - reasons.begin())].push_back(run->file);
    }
  }
  std::vector<std::string> notes;
  for (std::size_t i = 0; i < reasons.size(); ++i) {
    notes.push_back(fmt::format("{} {} empty: {}", fmt::join(files[i], ", "),
                                files[i].size() == 1 ? "is" : "are", reasons[i]));
  }
  return notes;
}

}  // namespace host
