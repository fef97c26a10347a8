#include "host/files/output_file.h"

#include <gmock/gmock.h>

#include <string>

#include "host/text/usage_error.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

using test::TemporaryFolder;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(OutputFile, StandsInItsPlaceOnlyWhenItIsComplete) {
  const TemporaryFolder folder;
  folder.Write("o", "old");
  OutputFile file(folder.Path() / "o");
  file.Stream() << "new" << std::flush;
  EXPECT_EQ(folder.Read("o"), "old");
  EXPECT_THAT(folder.Files(), SizeIs(2));
  file.Complete();
  EXPECT_EQ(folder.Read("o"), "new");
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
}

TEST(OutputFile, LeavesNothingWhenItIsNotCompleted) {
  const TemporaryFolder folder;
  {
    OutputFile file(folder.Path() / "o");
    file.Stream() << "half";
  }
  EXPECT_THAT(folder.Files(), IsEmpty());
}

TEST(OutputFile, IsMadeAlsoWhenNothingIsWritten) {
  const TemporaryFolder folder;
  OutputFile(folder.Path() / "o").Complete();
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
  EXPECT_EQ(folder.Read("o"), "");
}

TEST(OutputFile, WritesBytesAsTheyAre) {
  const TemporaryFolder folder;
  OutputFile file(folder.Path() / "o");
  file.Stream() << "a\nb\r\n\x1a";
  file.Complete();
  EXPECT_EQ(folder.Read("o"), "a\nb\r\n\x1a");
}

TEST(OutputFile, DoesNotMeetAnotherRunsHalfFile) {
  const TemporaryFolder folder;
  OutputFile one(folder.Path() / "o");
  OutputFile other(folder.Path() / "o");
  one.Stream() << "one";
  other.Stream() << "other";
  other.Complete();
  one.Complete();
  EXPECT_EQ(folder.Read("o"), "one");
  EXPECT_THAT(folder.Files(), ElementsAre("o"));
}

TEST(OutputFile, IsRefusedWhereAFolderStands) {
  const TemporaryFolder folder;
  EXPECT_THROW(OutputFile file(folder.Path()), UsageError);
}

}  // namespace
}  // namespace host
