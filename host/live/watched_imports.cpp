#include "host/live/watched_imports.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "host/live/module_image.h"

namespace host {
namespace {

/// What the replaced functions share.
struct Watch {
  MachineObserver* observer = nullptr;
  HANDLE process = nullptr;  ///< the process started last, until it was awaited
};

Watch& TheWatch() {
  static Watch watch;
  return watch;
}

// Each of these stands in the library's table for the function of that name. None of them may
// change what GetLastError answers behind the call that it stands for: the library reads it next.

BOOL WINAPI WatchedCreateProcessA(LPCSTR application, LPSTR commandLine,
                                  LPSECURITY_ATTRIBUTES processSecurity,
                                  LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles,
                                  DWORD flags, LPVOID environment, LPCSTR folder,
                                  LPSTARTUPINFOA startup, LPPROCESS_INFORMATION started) {
  const bool pipe = (startup->dwFlags & STARTF_USESTDHANDLES) != 0;
  TheWatch().observer->OnProcess(application, commandLine, inheritHandles != FALSE, pipe);
  const BOOL done = CreateProcessA(application, commandLine, processSecurity, threadSecurity,
                                   inheritHandles, flags, environment, folder, startup, started);
  TheWatch().process = done ? started->hProcess : nullptr;
  return done;
}

DWORD WINAPI WatchedWaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  const DWORD result = WaitForSingleObject(handle, milliseconds);
  if (result == WAIT_OBJECT_0 && handle == TheWatch().process) {
    TheWatch().process = nullptr;
    const DWORD error = GetLastError();
    DWORD exitCode = 0;
    GetExitCodeProcess(handle, &exitCode);
    TheWatch().observer->OnProcessEnd(exitCode);
    SetLastError(error);
  }
  return result;
}

int WatchedSystem(const char* command) {
  TheWatch().observer->OnSystem(command);
  return std::system(command);
}

std::FILE* WatchedOpen(const char* path, const char* mode) {
  TheWatch().observer->OnOpen(path, mode);
  return std::fopen(path, mode);
}

std::size_t WatchedWrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (file == stdout)
    TheWatch().observer->OnConsole({static_cast<const char*>(data), size * count});
  return std::fwrite(data, size, count, file);
}

struct Replacement {
  std::string_view function;
  void* replacement;
};

const Replacement kReplacements[] = {
    {"CreateProcessA", reinterpret_cast<void*>(&WatchedCreateProcessA)},
    {"WaitForSingleObject", reinterpret_cast<void*>(&WatchedWaitForSingleObject)},
    {"fopen", reinterpret_cast<void*>(&WatchedOpen)},
    {"fwrite", reinterpret_cast<void*>(&WatchedWrite)},
    {"system", reinterpret_cast<void*>(&WatchedSystem)},
};

/// Writes to a table that the loader has made read-only.
void SetSlot(void** slot, void* function) {
  DWORD protection = 0;
  if (!VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection)) return;
  *slot = function;
  VirtualProtect(slot, sizeof(*slot), protection, &protection);
}

}  // namespace

WatchedImports::WatchedImports(void* module, MachineObserver& observer) {
  TheWatch() = {&observer};
  for (const Import& import : ListImports(module)) {
    for (const Replacement& replacement : kReplacements) {
      if (import.function != replacement.function) continue;
      replaced.push_back({import.slot, *import.slot});
      SetSlot(import.slot, replacement.replacement);
    }
  }
}

WatchedImports::~WatchedImports() {
  for (const Replaced& entry : replaced) SetSlot(entry.slot, entry.original);
  TheWatch() = {};
}

}  // namespace host
