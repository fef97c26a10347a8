#include "host/files/file_stream.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <fstream>

#include "tests/support/temporary_folder.h"

namespace host {
namespace {

/// How many files of this process a program that it starts would get as well.
int CountInheritableFiles() {
  int count = 0;
  for (std::uintptr_t value = 4; value < 4096; value += 4) {
    auto* const handle = reinterpret_cast<HANDLE>(value);
    DWORD flags = 0;
    if (!GetHandleInformation(handle, &flags) || GetFileType(handle) != FILE_TYPE_DISK) continue;
    if ((flags & HANDLE_FLAG_INHERIT) != 0) ++count;
  }
  return count;
}

TEST(FileStream, HandsItsFileDownToNoProgram) {
  const test::TemporaryFolder folder;
  const int before = CountInheritableFiles();
  {
    const std::ofstream ordinary(folder.Path() / "ordinary");
    EXPECT_EQ(CountInheritableFiles(), before + 1);
  }
  const FileStream own(CreateNewFile(folder.Path() / "own", Readers::kOwner));
  ASSERT_TRUE(own.Handle().IsOpen());
  EXPECT_EQ(CountInheritableFiles(), before);
}

}  // namespace
}  // namespace host
