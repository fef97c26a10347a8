#include "host/pqhost/tool_chatter.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

std::string Tell(const std::vector<std::string>& texts, std::uint32_t codePage = 1252) {
  host::ToolChatter chatter;
  for (const std::string& text : texts) chatter.OnToolConsole(text);
  std::ostringstream out;
  chatter.Tell(codePage, out);
  return out.str();
}

TEST(ToolChatter, IsToldOnceWithItsCount) {
  EXPECT_EQ(Tell({"Can't recognize 'a'\r\n", "no BMC here\r\n", "Can't recognize 'a'\r\n\r\n"}),
            "Tools said: Can't recognize 'a' (2 times)\n"
            "Tools said: no BMC here\n");
}

TEST(ToolChatter, IsNothingWhereToolsAreSilent) { EXPECT_EQ(Tell({"", "\r\n \r\n"}), ""); }

TEST(ToolChatter, IsReadInTheMachinesCodePageAndObeyedByNoTerminal) {
  EXPECT_EQ(Tell({"gr\x81n\x1b[2J"}, 850), "Tools said: grün\\x1b[2J\n");
}

TEST(ToolChatter, KeepsAFewLines) {
  std::string many;
  for (int i = 0; i < 1000; ++i) many += "line " + std::to_string(i) + "\n";
  const std::string told = Tell({many, "line 0\n"});
  EXPECT_EQ(told.find("Tools said: line 0 (2 times)\n"), 0U);
  EXPECT_NE(told.find("Tools said: line 39\nTools said: 960 more lines\n"), std::string::npos);
}

TEST(ToolChatter, CutsALongLine) {
  EXPECT_EQ(Tell({std::string(100'000, 'x')}), "Tools said: " + std::string(400, 'x') + "\n");
}

}  // namespace
