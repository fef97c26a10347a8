// The plain way to find the first label of a table in a line: one search per label. The
// answers of pq::LabelTable are compared with it.
#pragma once

#include <string_view>
#include <vector>

#include "frame/label_table.h"

namespace test {

inline pq::LabelMatch FindLabelPlainly(const std::vector<std::string_view>& labels,
                                       std::string_view line) {
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::size_t position = line.find(labels[i]);
    if (position != std::string_view::npos) return {static_cast<int>(i), position};
  }
  return {};
}

}  // namespace test
