#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/support/posix/shell_command.h"
#include "tests/support/sanitizers.h"

namespace {

TEST(RepeatedCollections, GiveTheSameTracesAndNeverGrow) {
  // The samples a thousand times take a quarter of a minute; ./test.sh asks for that.
  const char* wanted = std::getenv("PQ_REPETITIONS");
  const std::string count = wanted == nullptr ? (PQ_HAS_ADDRESS_SANITIZER ? "5" : "20") : wanted;
  const std::string collections = std::to_string(10 * std::stoul(count));
  EXPECT_EQ(
      test::RunShellCommand(test::FindBuiltProgram("repeat_collections").string() + " " + count),
      collections + " collections, 0 different, 0 bytes more\n");
}

}  // namespace
