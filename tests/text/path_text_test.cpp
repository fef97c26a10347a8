#include "host/text/path_text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(PathText, IsThePathAsUtf8) {
  EXPECT_EQ(PathText(PathFromText("grün/€ 💾.txt")), "grün/€ 💾.txt");
}

TEST(PathText, HasNothingThatATerminalWouldObey) {
  EXPECT_EQ(PathText("a\nb\x1B[2J\x7F.txt"), "a?b?[2J?.txt");
}

}  // namespace
}  // namespace host
