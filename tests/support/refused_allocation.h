// Memory that runs out on request.
#pragma once

#include <cstddef>

namespace test {

/// While it lives, a nothrow array allocation of exactly `bytes` finds no memory.
class RefusedAllocation {
 public:
  explicit RefusedAllocation(std::size_t bytes);
  RefusedAllocation(const RefusedAllocation&) = delete;
  RefusedAllocation& operator=(const RefusedAllocation&) = delete;
  ~RefusedAllocation();
};

}  // namespace test
