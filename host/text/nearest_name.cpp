#include "host/text/nearest_name.h"

#include <algorithm>
#include <numeric>

#include "host/text/ascii.h"

namespace host {
namespace {

/// How many characters have to be inserted, deleted or changed to turn one into the other.
std::size_t CountEdits(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t changed = diagonal + (LowerCase(from[i]) == LowerCase(to[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row[to.size()];
}

}  // namespace

std::string FindNearestName(std::string_view typed, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t fewest = std::max<std::size_t>(2, typed.size() / 3) + 1;
  for (const std::string& name : names) {
    const std::size_t edits = CountEdits(typed, name);
    if (edits < fewest && edits < name.size()) {
      fewest = edits;
      nearest = name;
    }
  }
  return nearest;
}

std::string SuggestName(std::string_view typed, const std::vector<std::string>& names) {
  const std::string nearest = FindNearestName(typed, names);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

}  // namespace host
