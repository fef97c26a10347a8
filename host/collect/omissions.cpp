#include "host/collect/omissions.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>

#include "host/collect/command_text.h"
#include "host/text/ascii.h"
#include "host/text/trim.h"

namespace host {
namespace {

/// Of a value from a tool's text; a longer one is no number.
constexpr std::size_t kLongestValue = 40;

std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

/// The last answer to `command`; null when the module did not run it.
const CollectedAnswer* FindAnswer(const pq::ToolCommand& command, const std::string& module,
                                  std::span<const CollectedAnswer> answers) {
  const std::string program = LowerCase(command.program);
  const auto found = std::find_if(answers.rbegin(), answers.rend(), [&](const auto& answer) {
    return answer.module == module &&
           LowerCase(FindProgram(answer.commandLine)).ends_with(program) &&
           FindArguments(answer.commandLine) == command.arguments;
  });
  return found == answers.rend() ? nullptr : &*found;
}

/// As for the interpreter, also of a call of the standard library's `system`.
std::string MakeCommandLine(const CollectedAnswer& answer) {
  return (answer.commandLine.starts_with("/c ") ? "" : "/c ") + answer.commandLine;
}

std::string_view GetText(const CollectedAnswer& answer) {
  return answer.file.empty() ? answer.output : answer.fileText;
}

using Found = std::optional<std::string>;

Found FindCount(const pq::Omission& omission, std::string_view text) {
  const std::size_t label = text.rfind(omission.label);
  if (label == std::string_view::npos) return std::nullopt;
  text.remove_prefix(label + omission.label.size());
  const std::string_view value = Trim(TakeLine(text));
  int count = 0;
  std::from_chars(value.data(), value.data() + value.size(), count);
  return count > omission.most ? Found(std::to_string(count)) : std::nullopt;
}

Found FindOpenRecord(const pq::Omission& omission, std::string_view text) {
  const std::size_t last = text.rfind(omission.label);
  if (last == std::string_view::npos) return std::nullopt;
  text.remove_prefix(last + omission.label.size());
  if (text.find(omission.end) != std::string_view::npos) return std::nullopt;
  return std::string(Trim(TakeLine(text)).substr(0, kLongestValue));
}

Found FindLackingLines(const pq::Omission& omission, const pq::TableDescription& table,
                       std::string_view text) {
  struct Label {
    std::string_view column;
    bool isInRow = false;
    bool cameBefore = false;
    std::size_t lacking = 0;  ///< rows with the value of one before
  };
  std::vector<Label> labels;
  for (const pq::ColumnDescription& column : table.columns) {
    // One that no row has lacks in none.
    const bool isThere = text.find(column.label + omission.label) != std::string_view::npos;
    if (isThere) labels.push_back({.column = column.label});
  }
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    for (std::size_t at = line.find(omission.label); at != std::string_view::npos;
         at = line.find(omission.label, at + 1)) {
      for (Label& label : labels) {
        label.isInRow = label.isInRow || line.substr(0, at).ends_with(label.column);
      }
    }
    if (line.find(omission.end) == std::string_view::npos) continue;
    for (Label& label : labels) {
      if (!label.isInRow && label.cameBefore) ++label.lacking;
      label.cameBefore = label.cameBefore || label.isInRow;
      label.isInRow = false;
    }
  }
  std::vector<std::string> lacking;
  for (const Label& label : labels) {
    const std::size_t rows = label.lacking;
    if (rows == 0) continue;
    lacking.push_back(fmt::format("{} ({} row{})", label.column, rows, rows == 1 ? "" : "s"));
  }
  return lacking.empty() ? std::nullopt : Found(fmt::format("{}", fmt::join(lacking, ", ")));
}

/// What the omission's sign found; none: the machine does not have it.
Found FindSign(const pq::Omission& omission, const pq::TableDescription& table,
               const std::string& module, std::size_t rowCount, const OmissionEvidence& evidence) {
  constexpr auto kHolds = [](bool holds) { return holds ? Found("") : std::nullopt; };
  using enum pq::OmissionSign;
  if (omission.sign == kNone) return std::nullopt;
  if (omission.sign == kRows) return kHolds(rowCount > 0);
  if (omission.sign == kAttachedCount) {
    return FindCount(omission, evidence.firstValue(omission.className, omission.end));
  }
  const CollectedAnswer* answer = FindAnswer(omission.command, module, evidence.answers);
  if (answer == nullptr) return std::nullopt;
  switch (omission.sign) {
    case kToolRuns:
      return kHolds(evidence.hasPrograms(MakeCommandLine(*answer)));
    case kFile:
      return kHolds(evidence.hasLogFile(omission.command.file + '\\' + omission.label));
    case kCount:
      return FindCount(omission, GetText(*answer));
    case kOpenRecord:
      return FindOpenRecord(omission, GetText(*answer));
    default:
      return FindLackingLines(omission, table, GetText(*answer));
  }
}

}  // namespace

std::vector<std::string> FindOmissions(const pq::TableDescription& table, const std::string& module,
                                       std::size_t rowCount, const OmissionEvidence& evidence) {
  std::vector<std::string> notes;
  // A page that was not reached leaves nothing out.
  if (rowCount == 0 && !table.whyNoRow.empty()) return notes;
  bool isTold = false;
  for (const pq::Omission& omission : table.leavesOut) {
    if (!omission.text.empty()) isTold = false;
    if (isTold) continue;
    const Found found = FindSign(omission, table, module, rowCount, evidence);
    if (!found) continue;
    isTold = true;
    std::string note = omission.note;
    if (const std::size_t place = note.find("{}"); place != std::string::npos) {
      note.replace(place, 2, *found);
    }
    notes.push_back(std::move(note));
  }
  return notes;
}

}  // namespace host
