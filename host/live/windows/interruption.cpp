#include "host/live/interruption.h"

#include <windows.h>

#include <atomic>

namespace host {
namespace {

std::atomic<bool> requested = false;

/// Called on a thread of its own. An event that is not dealt with here ends the process.
BOOL WINAPI OnControl(DWORD event) {
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
  return requested.exchange(true) ? FALSE : TRUE;
}

}  // namespace

bool IsInterruptionRequested() { return requested; }

InterruptionWatch::InterruptionWatch() {
  requested = false;
  SetConsoleCtrlHandler(&OnControl, TRUE);
}

InterruptionWatch::~InterruptionWatch() { SetConsoleCtrlHandler(&OnControl, FALSE); }

}  // namespace host
