#include <gtest/gtest.h>

#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/sanitizers.h"

namespace {

// The allocator that refuses is one of its own, as a sanitizer's is.
#if !PQ_HAS_ADDRESS_SANITIZER
TEST(RefusedAllocations, AreToldAndLeaveNothingBehind) {
  const std::string program = test::FindBuiltProgram("refuse_allocations").string();
  for (const char* sample : {"hba-only", "two-socket-server", "amt-desktop"}) {
    EXPECT_EQ(test::RunShellCommand(program + " " + sample + " 30"), "") << sample;
  }
}
#endif

}  // namespace
