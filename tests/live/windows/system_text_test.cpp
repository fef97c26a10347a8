#include "host/live/windows/system_text.h"

#include <gmock/gmock.h>
#include <windows.h>

namespace test {
namespace {

TEST(SystemText, HasAFormInACodePageOrNone) {
  EXPECT_EQ(host::ToCodePage(L"caf\u00e9", 1252), "caf\xe9");
  EXPECT_EQ(host::ToCodePage(L"caf\u00e9", CP_UTF8), "caf\xc3\xa9");
  EXPECT_EQ(host::ToCodePage(L"", 1252), "");
  EXPECT_EQ(host::ToCodePage(L"\u4e2d", 1252), std::nullopt);
  EXPECT_EQ(host::ToCodePage(L"text", 64'999), std::nullopt) << "no code page has that number";
}

TEST(SystemText, DescribesAnErrorByItsNumberWhereTheSystemHasNoWords) {
  EXPECT_THAT(host::DescribeSystemError(ERROR_FILE_NOT_FOUND),
              testing::AllOf(testing::EndsWith(" (system error 2)"),
                             testing::Not(testing::HasSubstr("  "))));
  EXPECT_EQ(host::DescribeSystemError(0x2FFFFFFF), "system error 805306367");
}

}  // namespace
}  // namespace test
