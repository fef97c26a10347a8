#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>

#include "host/program/terminal.h"

namespace host {
namespace {

std::string Utf8(const wchar_t* text) {
  const std::u8string utf8 = std::filesystem::path(text).u8string();
  return {utf8.begin(), utf8.end()};
}

/// Whether the handle is a console that understands escape sequences; asks it to.
bool PrepareConsole(DWORD handleName) {
  HANDLE handle = GetStdHandle(handleName);
  DWORD mode = 0;
  if (!GetConsoleMode(handle, &mode)) return false;
  return SetConsoleMode(handle, mode | ENABLE_PROCESSED_OUTPUT | 0x0004 /* virtual terminal */) !=
         0;
}

bool IsConsole(DWORD handleName) {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(handleName), &mode) != 0;
}

}  // namespace

TerminalFacts PrepareTerminal() {
  TerminalFacts facts;
  facts.outIsTerminal = IsConsole(STD_OUTPUT_HANDLE);
  const bool outObeys = PrepareConsole(STD_OUTPUT_HANDLE);
  // The progress line cannot do without escape sequences.
  facts.errorIsTerminal = PrepareConsole(STD_ERROR_HANDLE);
  wchar_t noColor[2];
  facts.colors = outObeys && GetEnvironmentVariableW(L"NO_COLOR", noColor, 2) == 0;
  if (facts.outIsTerminal || facts.errorIsTerminal) {
    // The console outlives this program, and so would its code page.
    static const UINT codePageBefore = GetConsoleOutputCP();
    std::atexit([] { SetConsoleOutputCP(codePageBefore); });
    SetConsoleOutputCP(CP_UTF8);
  }
  CONSOLE_SCREEN_BUFFER_INFO info;
  const DWORD screen = facts.outIsTerminal ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE;
  if (GetConsoleScreenBufferInfo(GetStdHandle(screen), &info)) {
    facts.width = static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1);
  }
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  return facts;
}

std::vector<std::string> ProgramArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; words != nullptr && i < count; ++i) arguments.push_back(Utf8(words[i]));
  LocalFree(words);
  return arguments;
}

std::filesystem::path ProgramFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return std::filesystem::path(path).parent_path();
}

}  // namespace host
