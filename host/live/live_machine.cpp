// Facts about this very machine, and its log folder.

#include <windows.h>

#include <array>
#include <system_error>

#include "host/live/system_text.h"
#include "host/logger/logger.h"
#include "host/pqhost/live.h"

namespace host {
namespace {

/// Room that the plug-in has for the log folder, terminator included.
constexpr std::size_t kLogFolderRoom = 256;

/// Where the system describes itself.
constexpr wchar_t kVersionKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::string ReadVersionValue(const wchar_t* name) {
  std::array<wchar_t, 128> value{};
  DWORD size = sizeof(value);
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, kVersionKey, name, RRF_RT_REG_SZ, nullptr,
                                      value.data(), &size);
  return status == ERROR_SUCCESS ? ToUtf8(value.data()) : std::string();
}

/// As "Windows Server 2022 Standard, build 20348".
std::string DescribeSystem() {
  std::string words = ReadVersionValue(L"ProductName");
  if (words.empty()) words = "Windows";
  const std::string build = ReadVersionValue(L"CurrentBuildNumber");
  return build.empty() ? words : words + ", build " + build;
}

std::string ReadMachineName() {
  std::array<wchar_t, 256> name{};
  DWORD size = static_cast<DWORD>(name.size());
  if (!GetComputerNameExW(ComputerNameDnsHostname, name.data(), &size)) return {};
  return ToUtf8({name.data(), size});
}

std::wstring ReadHostExecutable() {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  return {path.data(), length};
}

/// In `codePage`; a path with a character that has no form there stays UTF-8.
std::string ToTools(const std::wstring& text, std::uint32_t codePage) {
  const std::optional<std::string> exact = ToCodePage(text, codePage);
  return exact ? *exact : ToUtf8(text);
}

/// The code page of what tools print: the console's, which they share, or, without one, the code
/// page of the console that the system makes for them.
std::uint32_t ReadToolCodePage() {
  const UINT console = GetConsoleOutputCP();
  return console != 0 ? console : GetOEMCP();
}

}  // namespace

bool HasProgram(const std::string& program) {
  std::array<char, MAX_PATH> found{};
  return SearchPathA(nullptr, program.c_str(), ".exe", static_cast<DWORD>(found.size()),
                     found.data(), nullptr) > 0;
}

MachineFacts PrepareLiveMachine(const std::filesystem::path& folder) {
  std::filesystem::path path = std::filesystem::absolute(folder).make_preferred();
  if (path.has_filename()) path /= L"";  // ends with a backslash then
  const std::wstring& text = path.native();

  // The plug-in hands this path to the system's narrow functions.
  const std::optional<std::string> narrow = ToCodePage(text, GetACP());
  if (!narrow) {
    throw LiveError("the log folder " + ToUtf8(text) +
                    " has characters that the system's code page " + std::to_string(GetACP()) +
                    " lacks; choose another with --log-folder");
  }
  if (narrow->size() >= kLogFolderRoom) {
    throw LiveError("the log folder's path is longer than " + std::to_string(kLogFolderRoom - 1) +
                    " characters; choose another with --log-folder");
  }
  std::error_code failure;
  std::filesystem::create_directories(path, failure);
  if (failure) {
    throw LiveError("cannot create the log folder " + ToUtf8(path.native()) + ": " +
                    DescribeSystemError(static_cast<std::uint32_t>(failure.value())));
  }
  SetLogFolder(*narrow);

  MachineFacts facts;
  facts.description = DescribeSystem();
  facts.name = ReadMachineName();
  facts.languageId = GetSystemDefaultLCID();
  facts.codePage = ReadToolCodePage();
  facts.hostExecutable = ToTools(ReadHostExecutable(), facts.codePage);
  facts.logFolder = ToTools(text, facts.codePage);
  return facts;
}

}  // namespace host
