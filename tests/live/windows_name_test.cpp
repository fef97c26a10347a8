#include "host/live/windows_name.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(WindowsName, HasProductAndBuild) {
  EXPECT_EQ(NameWindows("Windows Server 2022 Standard", "20348"),
            "Windows Server 2022 Standard, build 20348");
  EXPECT_EQ(NameWindows("Windows 10 Pro", "19045"), "Windows 10 Pro, build 19045");
}

TEST(WindowsName, KnowsWindows11ByItsBuild) {
  EXPECT_EQ(NameWindows("Windows 10 Pro", "22000"), "Windows 11 Pro, build 22000");
  EXPECT_EQ(NameWindows("Windows 10 Pro", "21999"), "Windows 10 Pro, build 21999");
  EXPECT_EQ(NameWindows("Windows Server 2025 Datacenter", "26100"),
            "Windows Server 2025 Datacenter, build 26100");
}

TEST(WindowsName, DoesWithoutWhatIsNotKnown) {
  EXPECT_EQ(NameWindows("", "20348"), "Windows, build 20348");
  EXPECT_EQ(NameWindows("Windows 8.1", ""), "Windows 8.1");
  EXPECT_EQ(NameWindows("", ""), "Windows");
}

}  // namespace
}  // namespace host
