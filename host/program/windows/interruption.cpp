#include "host/program/interruption.h"

#include <windows.h>

#include <atomic>

#include "host/files/partial_file.h"

namespace host {
namespace {

std::atomic<bool> requested = false;
std::atomic<bool> isWatched = false;
std::atomic<int> exitCodeWhenAsked = 1;

/// Called on a thread of its own.
BOOL WINAPI OnControl(DWORD event) {
  const bool isKey = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  if (isKey && isWatched && !requested.exchange(true)) return TRUE;
  RemovePartialFiles();
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), kLastWords.data(),
            static_cast<DWORD>(kLastWords.size()), &written, nullptr);
  // Not ExitProcess: it waits for locks that the main thread may hold.
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(exitCodeWhenAsked));
  return TRUE;
}

}  // namespace

void EndCleanlyWhenAsked(int exitCode) {
  exitCodeWhenAsked = exitCode;
  SetConsoleCtrlHandler(&OnControl, FALSE);  // only once
  SetConsoleCtrlHandler(&OnControl, TRUE);
}

bool IsInterruptionRequested() { return requested; }

InterruptionWatch::InterruptionWatch() {
  requested = false;
  isWatched = true;
}

InterruptionWatch::~InterruptionWatch() { isWatched = false; }

}  // namespace host
