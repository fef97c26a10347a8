#include "host/answers/columns_fit.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "host/answers/bmc_columns.h"
#include "host/answers/intel_columns.h"
#include "host/answers/lsi_columns.h"
#include "host/answers/microchip_columns.h"
#include "host/answers/network_columns.h"
#include "host/catalogue/table_sources.h"
#include "host/text/ascii.h"
#include "host/text/count_text.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace host {
namespace {

struct FoundReport {
  DecodedText text;
  std::string where;
};

/// Of a Windows path.
std::string_view FindFileName(std::string_view path) {
  return path.substr(path.find_last_of('\\') + 1);
}

/// The report that went to one of the files of `table`'s tools.
std::optional<FoundReport> FindLeftReport(const Collection& collection,
                                          const CollectedTable& table) {
  const pq::TableDescription* description = FindTableDescription(table.className);
  if (description == nullptr) return std::nullopt;
  for (const CollectedAnswer& answer : collection.answers) {
    if (answer.module != table.module || answer.fileText.empty()) continue;
    const std::string name = LowerCase(FindFileName(answer.file));
    const bool isItsOwn =
        std::any_of(description->commands.begin(), description->commands.end(),
                    [&](const pq::ToolCommand& command) {
                      return !command.file.empty() && LowerCase(command.file) == name;
                    });
    // The next of several tools overwrote what one that failed had left.
    const bool isOverwritten = description->commandsAreAlternatives && answer.exitCode != 0U;
    if (!isItsOwn || isOverwritten) continue;
    const TextDecoder decoder(collection.machine.codePage);
    return FoundReport{decoder.Decode(answer.fileText), name + " in the log folder"};
  }
  return std::nullopt;
}

/// The output of the command that `table` is made of.
std::optional<FoundReport> FindPrintedReport(const CollectedRows& rows,
                                             const CollectedTable& table) {
  const pq::TableDescription* description = FindTableDescription(table.className);
  if (description == nullptr) return std::nullopt;
  for (const pq::ToolCommand& command : description->commands) {
    if (!command.file.empty()) continue;
    const std::string program = LowerCase(FindFileName(command.program));
    for (const CollectedAnswer* answer : rows.ListAnswers(program, command.arguments)) {
      if (answer->module != table.module || answer->output.empty()) continue;
      const std::string asked =
          command.arguments.empty() ? program : program + ' ' + command.arguments;
      return FoundReport{rows.Decode(answer->output), "what a recording keeps of " + asked};
    }
  }
  return std::nullopt;
}

/// The report that another table carries whole, in its first row.
std::optional<FoundReport> FindAttachedReport(const CollectedRows& rows, const ColumnCheck& check) {
  const CollectedRowList carriers = rows.ListRows(check.attachmentClass);
  if (carriers.empty()) return std::nullopt;
  auto text = carriers.front().FindText(check.attachmentKey);
  if (!text || text->View().empty()) return std::nullopt;
  return FoundReport{std::move(*text),
                     fmt::format("{}, row 1, {}", check.attachmentClass, check.attachmentKey)};
}

constexpr std::size_t kWidth = 60;  ///< of a value in a sentence

std::vector<ColumnCheck> ListChecks() {
  std::vector<ColumnCheck> checks;
  for (const auto& some :
       {ListLsiColumnChecks(), ListMicrochipColumnChecks(), ListIntelColumnChecks(),
        ListBmcColumnChecks(), ListNetworkColumnChecks()}) {
    checks.insert(checks.end(), some.begin(), some.end());
  }
  return checks;
}

}  // namespace

void NoteUnfitColumns(Collection& collection) {
  const CollectedRows rows(collection);
  const std::vector<ColumnCheck> checks = ListChecks();
  for (CollectedTable& table : collection.tables) {
    for (const ColumnCheck& check : checks) {
      if (check.className != table.className) continue;
      // What the table was made of, rather than what another step was told later.
      auto left = FindLeftReport(collection, table);
      if (!left) left = FindPrintedReport(rows, table);
      const auto attached = FindAttachedReport(rows, check);
      if (!left && !attached) continue;
      const Misfit misfit = check.findMisfit(
          {table.className, rows.ListRows(table.className), (left ? left : attached)->text.View()});
      if (misfit.text.empty()) continue;
      table.status.unfitLabels = misfit.labels;
      table.status.notes.push_back(fmt::format("{}{}; the report itself: {}", kUnfitNote,
                                               misfit.text, (attached ? attached : left)->where));
      // The note tells, more closely, why there are none.
      if (table.status.outcome == "no rows in output") table.status.text = "no rows";
    }
  }
}

std::string TellOtherValue(std::string_view label, std::string_view shown,
                           std::string_view printed) {
  return fmt::format("{} is \"{}\", the report has \"{}\"", label, CutText(shown, kWidth),
                     CutText(printed, kWidth));
}

std::string TellStranger(std::string_view label, std::string_view shown) {
  return fmt::format("{} is \"{}\", the report has no such line", label, CutText(shown, kWidth));
}

void OtherRows::Take(std::int64_t row, std::string_view label, std::string_view shown,
                     std::string_view printed) {
  Add(row, label, TellOtherValue(label, shown, printed));
}

void OtherRows::TakeStranger(std::int64_t row, std::string_view label, std::string_view shown) {
  Add(row, label, TellStranger(label, shown));
}

void OtherRows::Add(std::int64_t row, std::string_view label, const std::string& told) {
  const auto known = std::find_if(columns.begin(), columns.end(),
                                  [&](const OtherColumn& one) { return one.label == label; });
  if (known != columns.end()) {
    ++known->more;
    return;
  }
  columns.push_back({std::string(label), fmt::format("row {}: {}", row, told)});
}

std::string OtherRows::Tell() const {
  std::vector<std::string> told;
  for (const OtherColumn& one : columns) {
    told.push_back(one.first);
    if (one.more > 0)
      told.back() += fmt::format(" (and {} like that)", FormatCount(one.more, "more row"));
  }
  return fmt::format("{}", fmt::join(told, "; "));
}

}  // namespace host
