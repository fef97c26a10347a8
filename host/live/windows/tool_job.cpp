#include "host/live/windows/limited_tool.h"

#include <windows.h>

namespace host {
namespace {

/// Exit code of ended tools. Small numbers are answers of the tools that test for AMT and a BMC.
constexpr UINT kEndedCode = ERROR_TIMEOUT;

}  // namespace

LimitedTool::LimitedTool(void* given, std::chrono::seconds limit)
    : job(CreateJobObjectA(nullptr, nullptr)) {
  DuplicateHandle(GetCurrentProcess(), given, GetCurrentProcess(), &process, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  AssignProcessToJobObject(job, given);
  clock = std::thread([this, limit] { EndWhenTimeIsUp(limit); });
}

LimitedTool::~LimitedTool() {
  Stop();
  CloseHandle(process);
  CloseHandle(job);
}

bool LimitedTool::Stop() {
  {
    const std::lock_guard lock(mutex);
    stopped = true;
  }
  wake.notify_one();
  if (clock.joinable()) clock.join();
  return ended;
}

void LimitedTool::EndWhenTimeIsUp(std::chrono::seconds limit) {
  std::unique_lock lock(mutex);
  if (wake.wait_for(lock, limit, [this] { return stopped; })) return;
  ended = true;
  TerminateJobObject(job, kEndedCode);
  // Where the job could not take it (a system before Windows 8 that runs us in a job), at least the
  // process itself is to end.
  TerminateProcess(process, kEndedCode);
}

}  // namespace host
