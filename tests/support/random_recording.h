// Recordings for tests of what holds for every machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/recorded/recording.h"

namespace test {

/// Draws the same numbers from the same seed on every system; the standard's distributions do not.
class RandomNumbers {
 public:
  explicit RandomNumbers(std::uint64_t seed) : engine(seed) {}

  /// A number from 0 to `count` - 1.
  std::size_t DrawBelow(std::size_t count) { return engine() % count; }
  bool DrawOneIn(std::size_t count) { return DrawBelow(count) == 0; }
  template <typename Items>
  const auto& DrawFrom(const Items& items) {
    return *std::next(std::begin(items), static_cast<std::ptrdiff_t>(DrawBelow(std::size(items))));
  }

 private:
  std::mt19937_64 engine;
};

/// A tool's report, changed in a few places: lines that are missing, doubled, cut, exchanged or too
/// long, other numbers and labels, bytes of any kind, other ends of lines.
std::string GarbleReport(std::string_view report, RandomNumbers& random);

/// A machine on which every module finds something to do: the tools that the samples have, each
/// with the answers of one or another sample, some of them garbled, missing, repeated or with a
/// fault, and a host in one folder or another. A seed always gives the same recording.
host::Recording MakeRandomRecording(std::uint64_t seed);

}  // namespace test
