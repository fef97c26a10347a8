#include "host/live/windows/tool_job.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>

#include "frame/platform.h"

namespace test {
namespace {

/// An interpreter that waits for a line that never comes, held suspended.
struct WaitingProcess {
  WaitingProcess() {
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    std::string line = "/c pause";
    CreateProcessA(pq::kInterpreter, line.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED,
                   nullptr, nullptr, &startup, &started);
  }
  WaitingProcess(const WaitingProcess&) = delete;
  WaitingProcess& operator=(const WaitingProcess&) = delete;
  ~WaitingProcess() {
    TerminateProcess(started.hProcess, 1);
    CloseHandle(started.hProcess);
    CloseHandle(started.hThread);
  }
  bool HasEnded(DWORD milliseconds) const {
    return WaitForSingleObject(started.hProcess, milliseconds) == WAIT_OBJECT_0;
  }

  PROCESS_INFORMATION started{};
};

TEST(ToolJob, EndsItsProcessesWithItself) {
  const WaitingProcess process;
  auto job = std::make_unique<host::ToolJob>(process.started.hProcess, host::ToolLimits{});
  EXPECT_TRUE(job->IsRunning());
  const host::ToolJob::Met met = job->Stop();
  EXPECT_FALSE(met.time);
  EXPECT_FALSE(met.memory);
  EXPECT_FALSE(process.HasEnded(0));
  job.reset();
  EXPECT_TRUE(process.HasEnded(10'000));
}

TEST(ToolJob, EndsItsProcessesWhenTheTimeIsUp) {
  const WaitingProcess process;
  host::ToolJob job(process.started.hProcess, {1, std::nullopt});
  EXPECT_TRUE(process.HasEnded(10'000));
  EXPECT_TRUE(job.Stop().time);
  EXPECT_FALSE(job.IsRunning());
}

TEST(ToolJob, TellsNoMemoryLimitThatWasNotMet) {
  const WaitingProcess process;
  host::ToolJob job(process.started.hProcess, {std::nullopt, 1024});
  EXPECT_FALSE(job.Stop().memory);
}

}  // namespace
}  // namespace test
