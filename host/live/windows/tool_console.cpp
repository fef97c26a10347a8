#include "host/live/windows/tool_console.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <utility>

namespace host {
namespace {

constexpr DWORD kRoom = 1U << 16;
constexpr DWORD kTick = 20;  // milliseconds
/// A tool that says more than that says nothing to a person.
constexpr std::size_t kMostText = std::size_t{1} << 20;

}  // namespace

ToolConsole::ToolConsole() {
  SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, kRoom)) {
    readEnd = writeEnd = nullptr;
    return;
  }
  SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
  outputBefore = GetStdHandle(STD_OUTPUT_HANDLE);
  errorBefore = GetStdHandle(STD_ERROR_HANDLE);
  SetStdHandle(STD_OUTPUT_HANDLE, writeEnd);
  SetStdHandle(STD_ERROR_HANDLE, writeEnd);
  reader = std::thread([this] { DrainEveryTick(); });
}

ToolConsole::~ToolConsole() {
  if (readEnd == nullptr) return;
  SetStdHandle(STD_OUTPUT_HANDLE, outputBefore);
  SetStdHandle(STD_ERROR_HANDLE, errorBefore);
  {
    const std::lock_guard lock(mutex);
    isEnding = true;
  }
  reader.join();
  CloseHandle(writeEnd);
  CloseHandle(readEnd);
}

std::string ToolConsole::Take() {
  if (readEnd == nullptr) return {};
  const std::lock_guard lock(mutex);
  Drain();
  return std::exchange(text, {});
}

// Never waits: a program that a tool left behind may hold the other end for ever.
void ToolConsole::Drain() {
  std::array<char, 4096> buffer;
  DWORD available = 0;
  while (PeekNamedPipe(readEnd, nullptr, 0, nullptr, &available, nullptr) && available > 0) {
    DWORD count = 0;
    const DWORD wanted = std::min(available, static_cast<DWORD>(buffer.size()));
    if (!ReadFile(readEnd, buffer.data(), wanted, &count, nullptr)) return;
    if (text.size() < kMostText) text.append(buffer.data(), count);
  }
}

void ToolConsole::DrainEveryTick() {
  while (true) {
    {
      const std::lock_guard lock(mutex);
      if (isEnding) return;
      Drain();
    }
    Sleep(kTick);
  }
}

}  // namespace host
