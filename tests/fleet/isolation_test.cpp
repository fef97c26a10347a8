#include "fleet/isolation.h"

#include <dirent.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>

#include "tests/support/temporary_folder.h"

namespace {

using fleet::IsolatedAnswer;
using fleet::IsolationLimits;
using fleet::RunIsolated;
using fleet::Sandbox;
using testing::HasSubstr;

IsolationLimits MakeLimits() {
  IsolationLimits limits;
  // More than the whole test program has already.
  limits.memory = std::uint64_t{8} << 30;
  limits.cpuSeconds = 1;
  limits.time = std::chrono::minutes(1);  // in which a busy machine gives that second, too
  limits.answer = std::uint64_t{4} << 20;
  return limits;
}

IsolatedAnswer Isolate(const std::function<std::string()>& work,
                       Sandbox sandbox = Sandbox::kStrict) {
  return RunIsolated(work, MakeLimits(), sandbox);
}

void ExpectRefused(const std::function<std::string()>& work) {
  const IsolatedAnswer answer = Isolate(work);
  EXPECT_EQ(answer.failure, "the parser did what it may not do, and was ended");
  EXPECT_FALSE(answer.mayPass);
  EXPECT_EQ(answer.answer, "");
}

TEST(Isolation, HandsTheAnswerOver) {
  const std::string large(std::size_t{3} << 20, 'x');
  for (const Sandbox sandbox : {Sandbox::kStrict, Sandbox::kLimits}) {
    const IsolatedAnswer answer = Isolate([&] { return large; }, sandbox);
    EXPECT_EQ(answer.failure, "");
    EXPECT_EQ(answer.answer, large);
  }
}

TEST(Isolation, LeavesThisProcessAsItIs) {
  int value = 1;
  EXPECT_EQ(Isolate([&] { return std::to_string(value = 2); }).answer, "2");
  EXPECT_EQ(value, 1);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
}

TEST(Isolation, HasNoDescriptorButThePipe) {
  const IsolatedAnswer answer = Isolate(
      [] {
        std::string open;
        for (int descriptor = 0; descriptor < 1024; ++descriptor) {
          if (fcntl(descriptor, F_GETFD) >= 0) open += std::to_string(descriptor) + ' ';
        }
        return open;
      },
      Sandbox::kLimits);
  EXPECT_EQ(answer.answer, "0 ");
}

TEST(Isolation, RefusesToOpenFiles) {
  ExpectRefused([] { return std::to_string(open("/etc/passwd", O_RDONLY)); });
  const test::TemporaryFolder folder;
  const std::string path = folder / "made";
  ExpectRefused([&] { return std::to_string(creat(path.c_str(), 0600)); });
  EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(Isolation, RefusesProcessesSocketsAndOthersMemory) {
  ExpectRefused([] { return std::to_string(fork()); });
  ExpectRefused([] { return std::to_string(system("true")); });
  ExpectRefused([] { return std::to_string(kill(getppid(), 0)); });
  ExpectRefused([] {
    return std::to_string(reinterpret_cast<std::uintptr_t>(
        mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)));
  });
}

TEST(Isolation, WritesNoFileEvenWithoutTheFilter) {
  const test::TemporaryFolder folder;
  const std::string path = folder / "made";
  const IsolatedAnswer answer = Isolate(
      [&] {
        const int file = creat(path.c_str(), 0600);
        return std::to_string(write(file, "x", 1));
      },
      Sandbox::kLimits);
  EXPECT_THAT(answer.failure, HasSubstr("signal 25 (XFSZ)"));
  EXPECT_TRUE(!std::filesystem::exists(path) || std::filesystem::file_size(path) == 0);
}

TEST(Isolation, EndsAnEndlessLoop) {
  volatile bool isEndless = true;
  const IsolatedAnswer answer = Isolate([&] {
    while (isEndless) {
    }
    return std::string();
  });
  EXPECT_EQ(answer.failure, "parsing needs more than 1 s of CPU");
  EXPECT_FALSE(answer.mayPass);
}

TEST(Isolation, EndsWhoeverWaits) {
  IsolationLimits limits = MakeLimits();
  limits.time = std::chrono::milliseconds(50);
  const IsolatedAnswer answer = RunIsolated(
      [] {
        pause();
        return std::string();
      },
      limits, Sandbox::kLimits);
  EXPECT_EQ(answer.failure, "parsing took longer than 50 ms");
  EXPECT_TRUE(answer.mayPass);
}

TEST(Isolation, EndsWhoeverClosesThePipeAndWaits) {
  IsolationLimits limits = MakeLimits();
  limits.time = std::chrono::milliseconds(50);
  const IsolatedAnswer answer = RunIsolated(
      [] {
        close(0);
        pause();
        return std::string();
      },
      limits, Sandbox::kLimits);
  EXPECT_EQ(answer.failure, "parsing took longer than 50 ms");
  EXPECT_TRUE(answer.mayPass);
}

TEST(Isolation, EndsEndlessAllocation) {
  IsolationLimits limits = MakeLimits();
  limits.memory = std::uint64_t{512} << 20;
  const IsolatedAnswer answer = RunIsolated(
      [] {
        std::string all;
        while (true) all.append(std::size_t{1} << 20, 'x');
        return all;
      },
      limits, Sandbox::kStrict);
  EXPECT_EQ(answer.failure, "parsing needs more than 512 MiB");
  EXPECT_FALSE(answer.mayPass);
}

TEST(Isolation, RefusesTooLongAnAnswer) {
  const IsolatedAnswer answer = Isolate([] { return std::string(std::size_t{5} << 20, 'x'); });
  EXPECT_EQ(answer.failure, "its rows are more than 4 MiB");
}

TEST(Isolation, TellsHowItCrashed) {
  IsolatedAnswer answer = Isolate([]() -> std::string {
    std::raise(SIGSEGV);
    return {};
  });
  EXPECT_EQ(answer.failure, "the parser was ended by signal 11 (SEGV)");
  EXPECT_TRUE(answer.mayPass);
  answer = Isolate([]() -> std::string { std::abort(); });
  EXPECT_EQ(answer.failure, "the parser was ended by signal 6 (ABRT)");
  answer = Isolate([]() -> std::string { throw std::runtime_error("x"); });
  EXPECT_EQ(answer.failure, "the parser ended with code 71");
}

}  // namespace
