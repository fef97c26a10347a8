// Collects every sample COUNT times in random order, as a program that serves many recordings does:
//   repeat_collections COUNT
// Prints how many traces differed from the first one of their sample, and how many bytes more are
// allocated in the end than after each sample came once.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "bench/support/heap.h"
#include "tests/support/allocated_bytes.h"
#include "tests/support/samples.h"
#include "tests/support/sanitizers.h"

namespace {

std::size_t CountBytes() {
#if PQ_HAS_ADDRESS_SANITIZER
  return test::CountAllocatedBytes();
#else
  return bench::HeapInUse();  // The allocator itself counts what it keeps for later as allocated.
#endif
}

struct Sample {
  host::Recording recording;
  std::string trace;
};

std::vector<Sample> CollectEachOnce() {
  std::vector<Sample> samples;
  for (const auto& [name, recording] : test::LoadSamples()) {
    samples.push_back({recording, test::CollectTrace(recording)});
  }
  return samples;
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t count = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1;
  const std::vector<Sample> samples = CollectEachOnce();
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < samples.size() * count; ++i) order.push_back(i % samples.size());
  std::mt19937 random(20261122);
  std::shuffle(order.begin(), order.end(), random);
  std::size_t different = 0;
  const std::size_t before = CountBytes();
  for (const std::size_t sample : order) {
    if (test::CollectTrace(samples[sample].recording) != samples[sample].trace) ++different;
  }
  const auto grown = static_cast<long long>(CountBytes()) - static_cast<long long>(before);
  std::printf("%zu collections, %zu different, %lld bytes more\n", order.size(), different, grown);
  return 0;
}
