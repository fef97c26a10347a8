// Want of memory of which nobody can be told.
#include "host/program/short_of_memory.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>
#include <new>
#include <stdexcept>

#include "host/files/partial_file.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

/// Runs what throws, where nobody catches it.
template <typename Work>
void FailUnheard(const Work& work) noexcept {
  work();
}

TEST(ShortOfMemoryDeathTest, EndsTheProgramAndLeavesNoHalfFile) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        EndCleanlyWithoutMemory(1);
        EndCleanlyWithoutMemory(5);
        const PartialFile partial(folder.Path() / "result", Readers::kOwner);
        FailUnheard([] { throw std::bad_alloc(); });
      },
      testing::ExitedWithCode(5), "^pqhost: this machine is short of memory: [^\n]*\n$");
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(ShortOfMemoryDeathTest, IsNotWhatAFaultOfTheProgramIsTakenFor) {
  EXPECT_EXIT(
      {
        EndCleanlyWithoutMemory(5);
        EndCleanlyWithoutMemory(5);
        FailUnheard([] { throw std::logic_error("a fault"); });
      },
      testing::KilledBySignal(SIGABRT), "a fault");
}

}  // namespace
}  // namespace host
