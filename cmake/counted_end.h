// Included into what is counted: counts are written when a process ends, and would be lost when it
// ends itself at once.
#pragma once

#include <windows.h>

extern "C" void __gcov_dump(void);

inline BOOL TerminateCounted(HANDLE process, UINT exitCode) {
  if (process == GetCurrentProcess()) __gcov_dump();
  return TerminateProcess(process, exitCode);
}

#define TerminateProcess TerminateCounted
