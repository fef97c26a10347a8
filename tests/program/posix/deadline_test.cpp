// Work that does not end by itself.
#include "host/program/deadline.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

#include "host/files/partial_file.h"
#include "tests/support/temporary_folder.h"

namespace host {
namespace {

const Console& TestConsole() {
  static const Console console{.programName = "pqhost", .out = std::cout, .error = std::cerr};
  return console;
}

TEST(DeadlineDeathTest, EndsTheProgramAndLeavesNoHalfFile) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        const PartialFile partial(folder.Path() / "result", Readers::kOwner);
        const auto deadline = EndProgramAfter(1, TestConsole());
        std::this_thread::sleep_for(std::chrono::seconds(60));
      },
      testing::ExitedWithCode(kExitIncomplete),
      "^pqhost: took longer than 1 second \\(--time-limit\\)\n$");
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(Deadline, IsForgottenOnceTheWorkIsDone) {
  EXPECT_NE(EndProgramAfter(86400, TestConsole()), nullptr);
  EXPECT_EQ(EndProgramAfter(std::nullopt, TestConsole()), nullptr);
}

}  // namespace
}  // namespace host
