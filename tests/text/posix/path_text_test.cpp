// Only here can a path be no text at all.

#include "host/text/path_text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(PathText, IsUtf8AlsoOfAPathThatIsNot) {
  EXPECT_EQ(PathText("gr\xFCn\xC3\xA4/a"),
            "gr?n?"
            "?/a");
}

}  // namespace
}  // namespace host
