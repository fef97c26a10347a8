#include "host/live/windows/tool_job.h"

#include <windows.h>

#include <chrono>

#include "host/recorded/machine_observer.h"

namespace host {
namespace {

static_assert(kEndedExitCode == ERROR_TIMEOUT);

void SetJobLimits(HANDLE job, const ToolLimits& limits) {
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION information{};
  information.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (const auto memory = GetMemoryLimit(limits)) {
    information.BasicLimitInformation.LimitFlags |= JOB_OBJECT_LIMIT_JOB_MEMORY;
    information.JobMemoryLimit = *memory;
  }
  SetInformationJobObject(job, JobObjectExtendedLimitInformation, &information,
                          sizeof(information));
}

/// Where the job reports to; null when it does not.
HANDLE OpenReports(HANDLE job) {
  const HANDLE reports = CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, 1);
  JOBOBJECT_ASSOCIATE_COMPLETION_PORT port{job, reports};
  if (reports != nullptr) {
    SetInformationJobObject(job, JobObjectAssociateCompletionPortInformation, &port, sizeof(port));
  }
  return reports;
}

}  // namespace

ToolJob::ToolJob(void* given, const ToolLimits& limits)
    : limits(limits), job(CreateJobObjectA(nullptr, nullptr)) {
  SetJobLimits(job, limits);
  if (limits.mebibytes) reports = OpenReports(job);
  DuplicateHandle(GetCurrentProcess(), given, GetCurrentProcess(), &process, 0, FALSE,
                  DUPLICATE_SAME_ACCESS);
  AssignProcessToJobObject(job, given);
  if (limits.seconds) clock = std::thread([this] { EndWhenTimeIsUp(); });
}

ToolJob::~ToolJob() {
  Stop();
  CloseHandle(process);
  if (reports != nullptr) CloseHandle(reports);
  CloseHandle(job);
}

ToolJob::Met ToolJob::Stop() {
  {
    const std::lock_guard lock(mutex);
    stopped = true;
  }
  wake.notify_one();
  if (clock.joinable()) clock.join();
  return {ended, HasMetMemory()};
}

bool ToolJob::IsRunning() const {
  JOBOBJECT_BASIC_ACCOUNTING_INFORMATION information{};
  return QueryInformationJobObject(job, JobObjectBasicAccountingInformation, &information,
                                   sizeof(information), nullptr) != 0 &&
         information.ActiveProcesses > 0;
}

void ToolJob::EndWhenTimeIsUp() {
  std::unique_lock lock(mutex);
  const std::chrono::seconds limit(*limits.seconds);
  if (wake.wait_for(lock, limit, [this] { return stopped; })) return;
  ended = true;
  TerminateJobObject(job, kEndedExitCode);
  // Where the job could not take it (a system before Windows 8 that runs us in a job), at least the
  // process itself is to end.
  TerminateProcess(process, kEndedExitCode);
}

bool ToolJob::HasMetMemory() {
  if (reports == nullptr) return false;
  bool wasReported = false;
  DWORD message = 0;
  ULONG_PTR key = 0;
  OVERLAPPED* about = nullptr;
  while (GetQueuedCompletionStatus(reports, &message, &key, &about, 0)) {
    if (message == JOB_OBJECT_MSG_JOB_MEMORY_LIMIT) wasReported = true;
  }
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION used{};
  QueryInformationJobObject(job, JobObjectExtendedLimitInformation, &used, sizeof(used), nullptr);
  return HasMetMemoryLimit(limits, wasReported, used.PeakJobMemoryUsed);
}

}  // namespace host
