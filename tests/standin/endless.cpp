// Stands in for a tool that never ends; for one that ends and leaves a child behind, which
// inherited what the tool writes to; or for one that takes its time. Which of them it is comes from
// the environment of the test.

#include <windows.h>

#include <string_view>

#include "tests/standin/console_bytes.h"

namespace test {
namespace {

/// Far beyond the test's limit, but not for ever: a test that fails leaves nothing behind for good.
constexpr DWORD kEndlessMilliseconds = 120'000;
/// Long enough for a test to press Ctrl-C.
constexpr DWORD kSlowMilliseconds = 6'000;

std::string_view ReadMode() {
  static char mode[32] = {};
  GetEnvironmentVariableA("PQ_STANDIN_MODE", mode, sizeof(mode));
  return mode;
}

void LeaveChild() {
  SetEnvironmentVariableA("PQ_STANDIN_MODE", "hang");
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started{};
  char path[MAX_PATH] = {};
  GetModuleFileNameA(nullptr, path, MAX_PATH);
  if (!CreateProcessA(path, nullptr, nullptr, nullptr, /*bInheritHandles=*/TRUE, 0, nullptr,
                      nullptr, &startup, &started)) {
    WriteBytes(GetStdHandle(STD_ERROR_HANDLE), "stand-in tool: cannot start a child\r\n");
  }
}

}  // namespace
}  // namespace test

int main() {
  test::WriteBytes(GetStdHandle(STD_OUTPUT_HANDLE), "Interface: 192.0.2.10\r\n");
  if (test::ReadMode() == "leave-child") {
    test::LeaveChild();
  } else if (test::ReadMode() == "slow") {
    Sleep(test::kSlowMilliseconds);
    test::WriteBytes(GetStdHandle(STD_OUTPUT_HANDLE), "slow tool is done\r\n");
  } else {
    Sleep(test::kEndlessMilliseconds);
  }
}
