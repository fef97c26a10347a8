#include "frame/label_table.h"

namespace pq {

LabelTable::LabelTable(const std::vector<std::string_view>& labels) : labels(labels) {}

LabelMatch LabelTable::FindIn(std::string_view line) const {
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::size_t position = line.find(labels[i]);
    if (position != std::string_view::npos) return {static_cast<int>(i), position};
  }
  return {};
}

}  // namespace pq
