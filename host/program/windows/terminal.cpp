#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h.
#include <shellapi.h>

#include <cstdio>
#include <cstdlib>

#include "host/files/file_stream.h"
#include "host/program/terminal.h"
#include "host/text/path_text.h"

namespace host {
namespace {

/// Turns escape sequences on; false when the handle is no console or its console knows none.
bool EnableEscapeSequences(DWORD handleName) {
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
  facts.inIsTerminal = IsConsole(STD_INPUT_HANDLE);
  facts.outIsTerminal = IsConsole(STD_OUTPUT_HANDLE);
  const bool outKnowsEscapes = EnableEscapeSequences(STD_OUTPUT_HANDLE);
  // The progress line needs escape sequences.
  facts.errorIsTerminal = EnableEscapeSequences(STD_ERROR_HANDLE);
  wchar_t noColor[2];
  facts.colors = outKnowsEscapes && GetEnvironmentVariableW(L"NO_COLOR", noColor, 2) == 0;
  if (facts.outIsTerminal || facts.errorIsTerminal) {
    // The console outlives this program, so its code page has to be put back.
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

std::unique_ptr<std::ostream> TakeStandardOutput() {
  constexpr int kOut = 1;
  constexpr int kError = 2;
  const int kept = _dup(kOut);
  if (kept < 0) return nullptr;  // There is no standard output.
  auto results = std::make_unique<FileStream>(FileHandle(kept));
  // Not for the programs that this one starts.
  SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(kept)), HANDLE_FLAG_INHERIT, 0);
  // A console shows all at once, before what standard error shows next.
  if (_isatty(kept)) *results << std::unitbuf;
  std::fflush(stdout);
  if (_dup2(kError, kOut) != 0) {
    // There is no standard error either.
    const int nowhere = _open("NUL", _O_WRONLY | _O_BINARY);
    _dup2(nowhere, kOut);
    _close(nowhere);
  }
  // A library with a C runtime of its own, and the programs that it starts, go by this.
  SetStdHandle(STD_OUTPUT_HANDLE, reinterpret_cast<HANDLE>(_get_osfhandle(kOut)));
  return results;
}

std::vector<std::string> GetProgramArguments(int /*argc*/, char** /*argv*/) {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; words != nullptr && i < count; ++i) arguments.push_back(PathText(words[i]));
  LocalFree(words);
  return arguments;
}

std::filesystem::path FindProgramFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return std::filesystem::path(path).parent_path();
}

}  // namespace host
