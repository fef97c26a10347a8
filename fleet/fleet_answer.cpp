#include "fleet/fleet_answer.h"

#include <algorithm>
#include <array>

#include "host/formats/answer_builder.h"

namespace fleet {
namespace {

// PostgreSQL's numbers for its types.
constexpr std::array<Oid, 4> kIntegers = {20, 21, 23, 26};
constexpr std::array<Oid, 2> kReals = {700, 701};
constexpr Oid kNumeric = 1700;
constexpr Oid kBoolean = 16;

bool IsOneOf(const auto& types, Oid type) {
  return std::find(types.begin(), types.end(), type) != types.end();
}

host::Database::Value MakeValue(const std::string& text, Oid type) {
  // As a number, NaN and Infinity have no form that all formats know.
  const bool isNumber = text.find_first_not_of("+-.0123456789e") == std::string_view::npos;
  if (IsOneOf(kIntegers, type)) return {host::CellKind::kInteger, text};
  if (IsOneOf(kReals, type) && isNumber) return {host::CellKind::kReal, text};
  if (type == kNumeric && isNumber) {
    // count(*) of a sum, or an average.
    const bool isWhole = text.find('.') == std::string_view::npos && text.size() < 19;
    return {isWhole ? host::CellKind::kInteger : host::CellKind::kReal, text};
  }
  if (type == kBoolean) return {host::CellKind::kText, text == "t" ? "yes" : "no"};
  return {host::CellKind::kText, text};
}

}  // namespace

host::Collection MakeCollection(const Answer& answer, const std::string& question) {
  host::AnswerBuilder builder(question);
  host::Database::Names names;
  for (std::size_t i = 0; i < answer.ColumnCount(); ++i) names.push_back(answer.ColumnName(i));
  builder.NameColumns(names);
  for (std::size_t row = 0; row < answer.RowCount(); ++row) {
    host::Database::Values values;
    for (std::size_t i = 0; i < answer.ColumnCount(); ++i) {
      values.push_back(answer.IsNull(row, i)
                           ? host::Database::Value{}
                           : MakeValue(std::string(answer.At(row, i)), answer.ColumnType(i)));
    }
    builder.AddRow(values);
  }
  return builder.Take();
}

}  // namespace fleet
