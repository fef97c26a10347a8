#include "host/program/desktop.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace host {
namespace {

TEST(Desktop, IsAFolderOfTheUsers) { EXPECT_EQ(FindDesktopFolder().filename(), "Desktop"); }

}  // namespace
}  // namespace host
