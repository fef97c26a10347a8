#include "host/recorded/interpreter.h"

#include <gtest/gtest.h>

TEST(Interpreter, FirstAndLastQuoteGoWhenThereIsNoBlankBetweenThem) {
  const auto isProgram = [](std::string_view) { return true; };
  EXPECT_EQ(host::ApplyQuoteRule(R"("C:\Halyard\tool.exe" amt)", isProgram),
            R"(C:\Halyard\tool.exe amt)");
}
