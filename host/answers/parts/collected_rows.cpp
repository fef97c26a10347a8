#include "host/answers/parts/collected_rows.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/answers/parts/report_lines.h"
#include "host/collect/command_text.h"
#include "host/text/ascii.h"

namespace host {

const Rows CollectedRowList::kNone;

std::string CollectedRow::Get(std::string_view key) const {
  const std::optional<DecodedText> text = FindText(key);
  return text ? std::string(Trim(text->View())) : std::string();
}

std::string CollectedRow::GetLabel(std::string_view key) const {
  for (const Column& column : row.shape->columns) {
    if (column.key == key) return std::string(Trim(decoder->Decode(column.label).View()));
  }
  return {};
}

std::optional<DecodedText> CollectedRow::FindText(std::string_view key) const {
  const std::vector<Column>& columns = row.shape->columns;
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const Column& column) { return column.key == key; });
  if (found == columns.end()) return std::nullopt;
  return decoder->Decode(
      SkipByteOrderMark(row.Value(static_cast<std::size_t>(found - columns.begin()))));
}

Place CollectedRow::PlaceOf(std::string_view key, std::string_view tool) const {
  return {row.shape->className, number, std::string(key), 0, std::string(tool)};
}

CollectedRows::CollectedRows(const Collection& collection)
    : collection(collection), decoder(collection.machine.codePage) {
  questions.reserve(collection.answers.size());
  for (const CollectedAnswer& answer : collection.answers) {
    questions.push_back(
        {LowerCase(FindTool(answer.commandLine)), FindArguments(answer.commandLine)});
  }
}

const CollectedTable* CollectedRows::FindTable(std::string_view className) const {
  const auto found =
      std::find_if(collection.tables.begin(), collection.tables.end(),
                   [&](const CollectedTable& table) { return table.className == className; });
  return found == collection.tables.end() ? nullptr : &*found;
}

std::vector<const CollectedAnswer*> CollectedRows::ListAnswers(std::string_view program,
                                                               std::string_view arguments) const {
  std::vector<const CollectedAnswer*> found;
  for (std::size_t i = 0; i < questions.size(); ++i) {
    const bool isIt = questions[i].program == program && questions[i].arguments == arguments;
    if (isIt) found.push_back(&collection.answers[i]);
  }
  return found;
}

const CollectedAnswer* CollectedRows::FindAnswer(std::string_view program,
                                                 std::string_view arguments) const {
  // The interpreter names a program that it does not find, in the system's language.
  constexpr std::uint32_t kNotFound[] = {1, 9009};
  const auto answers = ListAnswers(program, arguments);
  if (answers.empty()) return nullptr;
  const CollectedAnswer& last = *answers.back();
  const bool mayBeMissing =
      std::find(std::begin(kNotFound), std::end(kNotFound), last.exitCode) != std::end(kNotFound);
  const bool isMissing =
      mayBeMissing && LowerCase(last.output.Text()).find(program) != std::string::npos;
  return isMissing ? nullptr : &last;
}

std::optional<DecodedText> CollectedRows::FindFile(std::string_view path) const {
  const std::string wanted = LowerCase(path);
  for (const auto& [name, text] : collection.files) {
    const bool isIt = name.size() == wanted.size() && LowerCase(name) == wanted;
    if (isIt) return decoder.Decode(SkipByteOrderMark(text.Text()));
  }
  return std::nullopt;
}

CollectedRowList CollectedRows::ListRows(std::string_view className) const {
  const CollectedTable* table = FindTable(className);
  if (table == nullptr || table->rows == nullptr) return {};
  return {decoder, table->rows->rows};
}

std::string DescribeEnd(const CollectedAnswer* answer) {
  if (answer == nullptr || answer->exitCode.value_or(0) == 0) return {};
  if (answer->WasEnded()) return "did not end by itself and was ended";
  return fmt::format("ended with code {}", *answer->exitCode);
}

}  // namespace host
