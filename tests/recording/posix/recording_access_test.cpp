// A recording holds addresses and serial numbers: it is its maker's.
#include <gtest/gtest.h>

#include <filesystem>

#include "host/recording/recording_writer.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(RecordingOutput, IsForItsOwnerAlone) {
  const test::TemporaryFolder folder;
  RecordingOutput(folder.Path() / "r.zip", "--record").Write({});
  EXPECT_EQ(std::filesystem::status(folder.Path() / "r.zip").permissions(),
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace
}  // namespace host
