#include "host/recording/named_files.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

TEST(NamedFiles, AreReadOnceAndShared) {
  const test::TemporaryFolder folder;
  folder.Write("a", "bytes");
  folder.Write("b", "bytes");
  const auto stored = OpenStoredFiles(folder.Path(), {});
  NamedFiles files(*stored, {});
  const auto read = files.Read("a");
  EXPECT_EQ(read, "bytes");
  EXPECT_TRUE(files.Read("a").SharesWith(read));
  EXPECT_FALSE(files.Read("b").SharesWith(read));
}

TEST(NamedFiles, AreRefusedEveryTime) {
  const test::TemporaryFolder folder;
  const auto stored = OpenStoredFiles(folder.Path(), {});
  NamedFiles files(*stored, {});
  for (int i = 0; i < 2; ++i) {
    EXPECT_THAT([&] { files.Read("a"); },
                testing::ThrowsMessage<std::runtime_error>("\"a\": there is no such file"));
  }
}

}  // namespace
}  // namespace host
