// A table of labels (the lines of the input up to an empty one) answers as one search per label
// does, in every line of the rest.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "frame/label_table.h"
#include "tests/support/label_reference.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  const auto nextLine = [&rest] {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    return line;
  };
  std::vector<std::string_view> labels;
  for (std::string_view label = nextLine(); !label.empty(); label = nextLine()) {
    labels.push_back(label);
  }
  const pq::LabelTable table(labels);
  while (!rest.empty()) {
    const std::string_view line = nextLine();
    const pq::LabelMatch match = table.FindIn(line);
    const pq::LabelMatch expected = test::FindLabelPlainly(labels, line);
    if (match.index != expected.index || match.position != expected.position) std::abort();
  }
  return 0;
}
