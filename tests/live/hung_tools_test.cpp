#include "host/live/hung_tools.h"

#include <gtest/gtest.h>

namespace {

TEST(HungTools, AreKnownByTheirProgramWhateverTheyAreAskedFor) {
  host::HungTools hung;
  hung.Add("/c \"\"C:\\H\\storcli.exe\" /c0 show events > \"C:\\l\\x.txt\"\"", 30);
  EXPECT_EQ(hung.Find("/c \"\"C:\\H\\STORCLI.EXE\" /c1 show > \"C:\\l\\y.txt\"\""), 30U);
  EXPECT_EQ(hung.Find("/c \"C:\\H\\storcli2.exe\" show"), std::nullopt);
}

TEST(HungTools, AreNoneAtFirst) {
  EXPECT_EQ(host::HungTools().Find("/c arp.exe -a"), std::nullopt);
}

}  // namespace
