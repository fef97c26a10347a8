// Facts about this very machine, and its log folder.

#include <windows.h>

#include <array>
#include <chrono>
#include <system_error>

#include "frame/platform.h"
#include "frame/tool_runner.h"
#include "host/files/places.h"
#include "host/live/live.h"
#include "host/live/windows/hardware.h"
#include "host/live/windows/own_folder.h"
#include "host/live/windows/system_text.h"
#include "host/live/windows_name.h"
#include "host/recorded/program_search.h"

namespace host {
namespace {

/// What the interpreter takes for programs where PATHEXT is not set.
constexpr char kUsualExtensions[] = ".COM;.EXE;.BAT;.CMD";

/// Where the system describes itself.
constexpr wchar_t kVersionKey[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";

std::string ReadVersionValue(const wchar_t* name) {
  std::array<wchar_t, 128> value{};
  DWORD size = sizeof(value);
  const LSTATUS status = RegGetValueW(HKEY_LOCAL_MACHINE, kVersionKey, name, RRF_RT_REG_SZ, nullptr,
                                      value.data(), &size);
  return status == ERROR_SUCCESS ? ToUtf8(value.data()) : std::string();
}

/// Minutes from UTC of the clock that people on this machine see now.
std::chrono::minutes ReadClockOffset() {
  TIME_ZONE_INFORMATION zone{};
  const DWORD season = GetTimeZoneInformation(&zone);
  LONG bias = zone.Bias;
  if (season == TIME_ZONE_ID_STANDARD) bias += zone.StandardBias;
  if (season == TIME_ZONE_ID_DAYLIGHT) bias += zone.DaylightBias;
  return std::chrono::minutes(-bias);
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
std::string EncodeForTools(const std::wstring& text, std::uint32_t codePage) {
  const std::optional<std::string> exact = ToCodePage(text, codePage);
  return exact ? *exact : ToUtf8(text);
}

/// The code page in which tools print: the console's, which they share, or, without one, that of
/// the console which the system makes for them.
std::uint32_t ReadToolCodePage() {
  const UINT console = GetConsoleOutputCP();
  return console != 0 ? console : GetOEMCP();
}

std::filesystem::path AddSeparator(const std::filesystem::path& folder) {
  std::filesystem::path path = std::filesystem::absolute(folder).make_preferred();
  if (path.has_filename()) path /= L"";
  return path;
}

/// The log folder's path as the plug-in hands it to the system's narrow functions.
std::string NarrowLogFolder(const std::filesystem::path& path) {
  const std::wstring& text = path.native();
  const std::optional<std::string> narrow = ToCodePage(text, GetACP());
  if (!narrow) {
    throw LiveError("the log folder " + ToUtf8(text) +
                    " has characters that the system's code page " + std::to_string(GetACP()) +
                    " lacks; choose another with --log-folder");
  }
  if (narrow->size() >= pq::kLogFolderRoom) {
    throw LiveError("the log folder's path is longer than " +
                    std::to_string(pq::kLogFolderRoom - 1) +
                    " characters; choose another with --log-folder");
  }
  return *narrow;
}

/// `folder`, or the nearest one above it that is there.
std::filesystem::path FindExisting(const std::filesystem::path& folder) {
  std::filesystem::path path = std::filesystem::absolute(folder);
  std::error_code ignored;
  while (!std::filesystem::is_directory(path, ignored) && path.has_relative_path()) {
    path = path.parent_path();
  }
  return path;
}

bool CanWriteInto(const std::filesystem::path& folder) {
  const std::wstring name =
      folder / (L"pqhost-" + std::to_wstring(GetCurrentProcessId()) + L".check");
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  CloseHandle(file);
  return true;
}

/// In the system's code page, as the interpreter gets it from narrow command lines; empty when it
/// is not set.
std::string ReadVariable(const char* name) {
  std::string value(32768, '\0');
  value.resize(GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size())));
  return value;
}

bool IsFile(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

}  // namespace

bool IsElevated() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
  TOKEN_ELEVATION elevation{};
  DWORD size = 0;
  const bool isRead =
      GetTokenInformation(token, TokenElevation, &elevation, sizeof(elevation), &size) != 0;
  CloseHandle(token);
  return isRead && elevation.TokenIsElevated != 0;
}

std::optional<std::string> LocateProgram(const std::string& program) {
  std::string extensions = ReadVariable("PATHEXT");
  if (extensions.empty()) extensions = kUsualExtensions;
  for (std::string& path : ListProgramPaths(program, ReadVariable("PATH"), extensions)) {
    if (IsFile(path)) return std::move(path);
  }
  return std::nullopt;
}

MachineFacts DescribeThisMachine(const std::filesystem::path& logFolder) {
  const std::filesystem::path path = AddSeparator(logFolder);
  NarrowLogFolder(path);

  MachineFacts facts;
  facts.system =
      NameWindows(ReadVersionValue(L"ProductName"), ReadVersionValue(L"CurrentBuildNumber"));
  facts.description = facts.system;
  facts.recordedAt = LocalTime{std::chrono::system_clock::now(), ReadClockOffset()};
  facts.name = ReadMachineName();
  facts.languageId = GetSystemDefaultLCID();
  facts.codePage = ReadToolCodePage();
  facts.hostExecutable = EncodeForTools(ReadHostExecutable(), facts.codePage);
  facts.logFolder = EncodeForTools(path.native(), facts.codePage);
  return facts;
}

std::filesystem::path FindDefaultLogFolder() {
  const std::filesystem::path logs = std::filesystem::current_path() / "logs";
  std::error_code ignored;
  const bool isThere = std::filesystem::exists(std::filesystem::symlink_status(logs, ignored));
  if (isThere && IsOwnFolder(logs) && CanWriteInto(logs)) return logs;
  if (!isThere && CanWriteInto(logs.parent_path())) return logs;
  const std::filesystem::path own = FindSettingsFolder();
  return own.empty() ? logs : own / "logs";
}

LiveMachine PrepareLiveMachine(const std::filesystem::path& logFolder, FolderAccess access) {
  MachineFacts facts = DescribeThisMachine(logFolder);
  const std::filesystem::path path = AddSeparator(logFolder);
  std::error_code failure;
  const bool isOwn = access == FolderAccess::kOwn;
  // Ends with a separator, so its parent is the folder itself.
  const std::filesystem::path folder = path.parent_path();
  std::filesystem::create_directories(isOwn ? folder.parent_path() : folder, failure);
  std::uint32_t error = static_cast<std::uint32_t>(failure.value());
  if (error == 0 && isOwn) error = CreateOwnFolder(folder);
  if (error != 0) {
    throw LiveError("cannot create the log folder " + ToUtf8(path.native()) + ": " +
                    DescribeSystemError(error));
  }
  if (isOwn && !IsOwnFolder(folder)) {
    throw LiveError("the log folder " + ToUtf8(path.native()) +
                    " belongs to someone else; choose another with --log-folder");
  }
  return {std::move(facts), NarrowLogFolder(path)};
}

Surroundings LookAround(const std::filesystem::path& logFolder) {
  const std::filesystem::path folder = FindExisting(logFolder);
  Surroundings found;
  found.hasInterpreter = GetFileAttributesA(pq::kInterpreter) != INVALID_FILE_ATTRIBUTES;
  found.canWriteLogFolder = CanWriteInto(folder);
  found.isElevated = IsElevated();
  std::error_code ignored;
  const std::filesystem::space_info space = std::filesystem::space(folder, ignored);
  found.freeBytes = ignored ? 0 : space.available;
  found.hardware = FindHardware();
  return found;
}

}  // namespace host
