// Where a user's settings are.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/files/places.h"
#include "tests/support/posix/changed_variable.h"

namespace host {
namespace {

std::filesystem::path FindSettingsWith(const char* settings, const char* home) {
  const test::ChangedVariable first("XDG_CONFIG_HOME", settings);
  const test::ChangedVariable second("HOME", home);
  return FindSettingsFolder();
}

TEST(SettingsFolder, IsWhereTheUserSaysOrInHisOwn) {
  EXPECT_EQ(FindSettingsWith("/etc/mine", "/home/ann"), "/etc/mine/pqhost");
  EXPECT_EQ(FindSettingsWith(nullptr, "/home/ann"), "/home/ann/.config/pqhost");
  EXPECT_EQ(FindSettingsWith("", "/home/ann"), "/home/ann/.config/pqhost");
}

// A relative one would be another in each folder.
TEST(SettingsFolder, IsNeverRelative) {
  EXPECT_EQ(FindSettingsWith("mine", "/home/ann"), "/home/ann/.config/pqhost");
  EXPECT_EQ(FindSettingsWith("mine", "ann"), "");
  EXPECT_EQ(FindSettingsWith(nullptr, nullptr), "");
}

}  // namespace
}  // namespace host
