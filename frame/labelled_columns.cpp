#include "frame/labelled_columns.h"

namespace pq {
namespace {

LabelTable CollectLabels(std::span<const LabelledColumn> columns) {
  std::vector<std::string_view> labels;
  labels.reserve(columns.size());
  for (const LabelledColumn& column : columns) labels.push_back(column.label);
  return LabelTable(labels);
}

}  // namespace

LabelledColumns::LabelledColumns(std::span<const LabelledColumn> columns)
    : columns(columns), labels(CollectLabels(columns)) {}

LabelledFact LabelledColumns::FindIn(std::string_view line) const {
  const LabelMatch match = labels.FindIn(line);
  if (!match) return {};
  const LabelledColumn& column = columns[static_cast<std::size_t>(match.index)];
  return {&column, GetTextFrom(line, match.position + column.valueAt)};
}

void Fill(RowBuffer& row, const LabelledFact& fact) {
  if (!fact) return;
  row.Set(fact.source->column, fact.value);
  if (fact.source->endsRow) row.Commit();
}

}  // namespace pq
