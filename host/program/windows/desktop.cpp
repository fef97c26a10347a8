#include "host/program/desktop.h"

#include <windows.h>
// After windows.h.
#include <shellapi.h>
#include <shlobj.h>

#include <cstdio>

#include "host/text/path_text.h"

namespace host {
namespace {

/// Above it ShellExecute has started something.
constexpr INT_PTR kMostShellError = 32;

/// The word as CommandLineToArgvW reads it back.
std::wstring QuoteWord(const std::wstring& word) {
  std::wstring quoted = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : word) {
    if (c == L'"') quoted.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    quoted += c;
  }
  return quoted.append(backslashes, L'\\') + L'"';
}

}  // namespace

bool HasOwnConsole() {
  DWORD processes[2];
  return GetConsoleProcessList(processes, 2) == 1;
}

std::filesystem::path FindDesktopFolder() {
  wchar_t folder[MAX_PATH];
  // Its successor, for longer paths, would bring another library along.
  const bool isThere = SHGetFolderPathW(nullptr, CSIDL_DESKTOPDIRECTORY, nullptr,
                                        SHGFP_TYPE_CURRENT, folder) == S_OK;
  return isThere ? std::filesystem::path(folder) : std::filesystem::path();
}

bool OpenOnDesktop(const std::filesystem::path& file) {
  // The user's own Explorer opens it with the user's rights, whatever those of this program are.
  wchar_t windows[MAX_PATH];
  const UINT length = GetWindowsDirectoryW(windows, MAX_PATH);
  if (length == 0 || length >= MAX_PATH) return false;
  const std::wstring explorer = std::filesystem::path(windows) / L"explorer.exe";
  const std::wstring argument = QuoteWord(std::filesystem::absolute(file).native());
  const HINSTANCE result =
      ShellExecuteW(nullptr, L"open", explorer.c_str(), argument.c_str(), nullptr, SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > kMostShellError;
}

bool StartElevated(const std::vector<std::string>& arguments) {
  std::wstring program(32768, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  std::wstring words;
  for (const std::string& argument : arguments) {
    words += QuoteWord(PathFromText(argument).native()) + L' ';
  }
  const std::wstring folder = std::filesystem::current_path();
  const HINSTANCE result = ShellExecuteW(nullptr, L"runas", program.c_str(), words.c_str(),
                                         folder.c_str(), SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > kMostShellError;
}

void WaitForEnter() {
  for (int c = std::getc(stdin); c != '\n' && c != EOF;) c = std::getc(stdin);
}

}  // namespace host
