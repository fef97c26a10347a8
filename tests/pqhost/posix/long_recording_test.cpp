// Recordings that are larger than the memory that there is for them.
#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "host/recording/recording_writer.h"
#include "tests/support/posix/shell_command.h"
#include "tests/support/sanitizers.h"
#include "tests/support/temporary_folder.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::size_t kMegabyte = 1'000'000;
constexpr std::size_t kTextBytes = 5 * kMegabyte;

/// Memory of the program's own, in KiB as the shell counts it: 64 MiB of texts, one or two more
/// that are worked on, and the program itself. Pages of files, which the system takes back when it
/// is short of memory, do not count.
constexpr const char* kMemory = "ulimit -d 100000; ";

class LongRecording : public testing::Test {
 protected:
  /// Of so many texts.
  void WriteRecording(int texts) const {
    host::Recording machine;
    const std::string lines = "Address 10.24.8.12\r\n" + std::string(1000, '.') + "\r\n";
    for (int i = 0; i < texts; ++i) {
      std::string text = "Report " + std::to_string(i) + "\r\n";
      while (text.size() < kTextBytes) text += lines;
      machine.commands.push_back({"storcli.exe", "/c" + std::to_string(i) + " show x", text, {}});
    }
    host::WriteRecording(machine, made.Path() / "in");
  }

  /// The exit code of pqhost with temporary files in `folder`.
  int Run(const std::string& before, const std::string& folder, const std::string& arguments) {
    const std::string line = before + "TMPDIR='" + folder + "' '" +
                             test::FindBuiltProgram("pqhost").string() + "' " + arguments + " 2>'" +
                             (made / "error") + "' >/dev/null";
    return WEXITSTATUS(std::system(line.c_str()));
  }

  std::string Error() const { return made.Read("error"); }

  const test::TemporaryFolder made;
  const test::TemporaryFolder temporary;
  const std::string redact = "redact --key '" + (made / "key") + "' '" + (made / "in") + "' '" +
                             made.Path().string() + "/";
};

TEST_F(LongRecording, IsRedactedInLessMemoryThanItAndTheCopyTake) {
  if (PQ_HAS_ADDRESS_SANITIZER) return;
  WriteRecording(16);
  EXPECT_EQ(Run(kMemory, temporary.Path(), redact + "out.zip'"), 0) << Error();
  EXPECT_THAT(Error(), Not(HasSubstr("temporary")));
  EXPECT_THAT(temporary.Files(), IsEmpty());

  // In memory alone, for which that is not enough.
  EXPECT_NE(Run(kMemory, made / "missing", redact + "short.zip'"), 0);
  EXPECT_THAT(Error(), HasSubstr("the folder for temporary files takes no more"));
  EXPECT_EQ(Run("", made / "missing", redact + "memory.zip'"), 0) << Error();
  EXPECT_THAT(Error(), HasSubstr("the folder for temporary files takes no more"));
  EXPECT_TRUE(made.Read("out.zip") == made.Read("memory.zip"));
}

TEST_F(LongRecording, IsWrittenAgainInLessMemoryThanItTakes) {
  if (PQ_HAS_ADDRESS_SANITIZER) return;
  WriteRecording(24);
  const std::string collect = "collect --no-open --report --replay '" + (made / "in") +
                              "' --output '" + made.Path().string() + "/";
  // 1: no module asks for these reports.
  EXPECT_EQ(Run(kMemory, temporary.Path(), collect + "out.html'"), 1);
  EXPECT_THAT(Error(), AllOf(Not(HasSubstr("memory")), HasSubstr("Recording: ")));
  EXPECT_THAT(temporary.Files(), IsEmpty());
  EXPECT_EQ(Run("", made / "missing", collect + "memory.html'"), 1);
  EXPECT_THAT(Error(), HasSubstr("the folder for temporary files takes no more"));
  EXPECT_TRUE(made.Read("out.zip") == made.Read("memory.zip"));
}

TEST_F(LongRecording, IsKeptInMemoryWhenTheDiskIsFull) {
  if (PQ_HAS_ADDRESS_SANITIZER) return;
  WriteRecording(16);
  const std::string full = "PQ_ROOM=20000000 PQ_DISK='" + temporary.Path().string() +
                           "' LD_PRELOAD='" +
                           test::FindBuiltProgram("troubled_system.so").string() + "' ";
  EXPECT_EQ(Run(full, temporary.Path(), redact + "full.zip'"), 0) << Error();
  EXPECT_THAT(Error(), HasSubstr("the folder for temporary files, " + temporary.Path().string() +
                                 ", takes no more: No space left on device; the rest was kept in "
                                 "memory, which may run short. Give the folder room, or name "
                                 "another one in TMPDIR"));
  EXPECT_THAT(temporary.Files(), IsEmpty());
  EXPECT_EQ(Run("", temporary.Path(), redact + "out.zip'"), 0) << Error();
  EXPECT_TRUE(made.Read("out.zip") == made.Read("full.zip"));
}

}  // namespace
