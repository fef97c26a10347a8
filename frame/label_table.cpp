#include "frame/label_table.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace pq {

LabelTable::LabelTable(const std::vector<std::string_view>& labels)
    : labels(labels.begin(), labels.end()) {
  if (labels.empty()) return;
  std::size_t shortest = labels.front().size();
  for (const std::string_view label : labels) shortest = std::min(shortest, label.size());
  pairLength = std::min<std::size_t>(shortest, 2);
  step = shortest - pairLength + 1;

  std::array<std::uint32_t, kBuckets> pairCounts{};
  for (const std::string& label : this->labels) {
    for (std::size_t i = 0; i + pairLength <= label.size(); ++i) {
      ++pairCounts[GetBucket(&label[i])];
    }
  }
  std::vector<std::pair<std::size_t, Probe>> byBucket;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    const std::size_t window = ChooseWindow(this->labels[i], pairCounts);
    for (std::size_t offset = window; offset < window + step; ++offset) {
      byBucket.push_back({GetBucket(&this->labels[i][offset]),
                          {static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(offset)}});
    }
  }
  std::stable_sort(byBucket.begin(), byBucket.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [bucket, probe] : byBucket) {
    watched[bucket] = true;
    ++firstProbe[bucket + 1];
    probes.push_back(probe);
  }
  std::partial_sum(firstProbe.begin(), firstProbe.end(), firstProbe.begin());
}

std::size_t LabelTable::GetBucket(const char* text) const {
  const auto first = static_cast<unsigned char>(text[0]);
  const auto last = static_cast<unsigned char>(text[pairLength - 1]);
  return ((first | last << 8U) * 40503U >> 4U) % kBuckets;
}

std::size_t LabelTable::ChooseWindow(const std::string& label,
                                     const std::array<std::uint32_t, kBuckets>& pairCounts) const {
  std::size_t chosen = 0;
  std::size_t fewest = static_cast<std::size_t>(-1);
  for (std::size_t start = 0; start + step + pairLength - 1 <= label.size(); ++start) {
    std::size_t count = 0;
    for (std::size_t i = start; i < start + step; ++i) count += pairCounts[GetBucket(&label[i])];
    if (count < fewest) {
      fewest = count;
      chosen = start;
    }
  }
  return chosen;
}

LabelMatch LabelTable::FindIn(std::string_view line) const {
  const std::size_t none = labels.size();
  std::size_t best = none;
  std::size_t position = 0;
  for (std::size_t at = step - 1; at + pairLength <= line.size(); at += step) {
    const std::size_t bucket = GetBucket(line.data() + at);
    if (!watched[bucket]) continue;
    for (std::uint32_t i = firstProbe[bucket]; i < firstProbe[bucket + 1]; ++i) {
      const auto [index, offset] = probes[i];
      if (index > best) break;
      if (offset > at) continue;
      const std::size_t start = at - offset;
      const std::string& label = labels[index];
      if (line[start] != label[0] || line.compare(start, label.size(), label) != 0) continue;
      if (index == best && start >= position) continue;
      best = index;
      position = start;
    }
  }
  if (best == none) return {};
  return {static_cast<int>(best), position};
}

}  // namespace pq
