#include "frame/labelled_columns.h"

#include <utility>

namespace pq {
namespace {

LabelTable LabelsOf(const std::vector<LabelledColumn>& columns) {
  std::vector<std::string_view> labels;
  labels.reserve(columns.size());
  for (const LabelledColumn& column : columns) labels.push_back(column.label);
  return LabelTable(labels);
}

}  // namespace

LabelledColumn BehindLabel(std::string_view label, Column column, bool endsRow) {
  return {label, label.size(), std::move(column), endsRow};
}

LabelledColumns::LabelledColumns(std::initializer_list<LabelledColumn> columns)
    : columns(columns), labels(LabelsOf(this->columns)) {}

LabelledFact LabelledColumns::FindIn(std::string_view line) const {
  const LabelMatch match = labels.FindIn(line);
  if (!match) return {};
  const LabelledColumn& column = columns[static_cast<std::size_t>(match.index)];
  return {&column, TextFrom(line, match.position + column.valueAt)};
}

void Fill(RowBuffer& row, const LabelledFact& fact) {
  if (!fact) return;
  row.Set(fact.source->column, fact.value);
  if (fact.source->endsRow) row.Commit();
}

std::vector<Column> ColumnsOf(const LabelledColumns& labelled) {
  std::vector<Column> columns;
  for (const LabelledColumn& one : labelled.All()) columns.push_back(one.column);
  return columns;
}

}  // namespace pq
