#include "host/live/windows/watched_imports.h"

#include <io.h>
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frame/platform.h"
#include "host/files/text_store.h"
#include "host/live/hung_tools.h"
#include "host/live/windows/module_image.h"
#include "host/live/windows/tool_console.h"
#include "host/live/windows/tool_job.h"
#include "host/recorded/interpreter.h"
#include "host/secrets/amt_login.h"

namespace host {
namespace {

/// The state that the replaced functions share.
struct Watch {
  LiveWatch given;
  HANDLE process = nullptr;      ///< the process started last, until it was awaited
  HANDLE pipe = nullptr;         ///< read end of the pipe made last
  std::unique_ptr<ToolJob> job;  ///< of the tool started last
  std::unique_ptr<ToolConsole> console;
  ToolLimits limits;        ///< of that
  std::string startedLine;  ///< its command line, without a password
  HungTools hung;
  std::vector<std::unique_ptr<ToolJob>>
      left;                       ///< of tools that are over, but left programs running
  std::optional<AmtLogin> login;  ///< that the tool started last was given
  /// Of the tool started last, until its answer was told; without a password.
  std::string commandLine;
  Bytes output;  ///< through its pipe so far
};

Watch& GetWatch() {
  static Watch watch;
  return watch;
}

CollectionListener& GetObserver() { return *GetWatch().given.listener; }

/// Null as long as nothing is recorded.
Recorder* FindRecorder() {
  std::optional<Recorder>* recorder = GetWatch().given.recorder;
  return recorder != nullptr && recorder->has_value() ? &**recorder : nullptr;
}

/// Whether nothing may be started any more; says so.
bool IsRefused() {
  if (!GetObserver().WantsEnd()) return false;
  GetObserver().OnRefused();
  SetLastError(kErrorCancelled);
  return true;
}

/// Whether the tool of this command line hung before, and is not started again; says so.
bool IsHung(const std::string& shownLine, const char* commandLine, bool isPiped) {
  const std::optional<unsigned> seconds = GetWatch().hung.Find(shownLine);
  if (!seconds) return false;
  if (Recorder* recorder = FindRecorder()) {
    recorder->BeginRun(commandLine, isPiped);
    recorder->FailRun(kErrorCancelled);
  }
  GetObserver().OnToolRefused(*seconds);
  SetLastError(kErrorCancelled);
  return true;
}

/// Starts a process in a job of its own. Ctrl-C is for the host alone.
template <typename Start>
BOOL StartInJob(DWORD flags, PROCESS_INFORMATION& started, const Start& start) {
  flags |= CREATE_NEW_PROCESS_GROUP;
  if (!start(flags | CREATE_SUSPENDED)) return FALSE;
  Watch& watch = GetWatch();
  watch.limits = watch.given.toolLimits;
  watch.limits.seconds = GetSeconds(watch.limits, std::chrono::steady_clock::now());
  watch.job = std::make_unique<ToolJob>(started.hProcess, watch.limits);
  if ((flags & CREATE_SUSPENDED) == 0) ResumeThread(started.hThread);
  return TRUE;
}

/// Tells what tools wrote to the console.
void TellConsole() {
  const std::string text = GetWatch().console->Take();
  if (!text.empty()) GetObserver().OnToolConsole(text);
}

/// The tool started last is over, or the library abandoned it. What it left running goes on, but
/// ends with the library's use.
void EndTool() {
  Watch& watch = GetWatch();
  if (!watch.job) return;
  TellConsole();
  const ToolLimits& limits = watch.limits;
  const ToolJob::Met met = watch.job->Stop();
  std::erase_if(watch.left, [](const auto& job) { return !job->IsRunning(); });
  if (watch.job->IsRunning()) watch.left.push_back(std::move(watch.job));
  watch.job.reset();
  if (met.time) {
    watch.hung.Add(watch.startedLine, *limits.seconds);
    if (Recorder* recorder = FindRecorder()) recorder->MarkEnded();
    GetObserver().OnToolEnded(*limits.seconds);
  }
  if (met.memory) GetObserver().OnToolOutOfMemory(*limits.mebibytes);
}

/// The bytes of the file that a command line's output went to.
Bytes ReadOutputFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

/// Tells the output of the tool started last, once.
void TellAnswer() {
  Watch& watch = GetWatch();
  if (watch.commandLine.empty()) return;
  const Pipeline pipeline = ParseCommandLine(
      std::exchange(watch.commandLine, {}),
      [](std::string_view path) { return LocateProgram(std::string(path)).has_value(); });
  ToolAnswer answer{std::exchange(watch.output, {}), FindOutputFile(pipeline), {}};
  if (!answer.file.empty()) answer.fileText = ReadOutputFile(answer.file);
  answer.output = GetTextStore().Keep(std::move(answer.output));
  answer.fileText = GetTextStore().Keep(std::move(answer.fileText));
  GetObserver().OnAnswer(answer);
}

// Each of these replaces the function of that name in the library's table. The library reads
// GetLastError next, so none of them may change it after the original call.

BOOL WINAPI WatchedCreatePipe(PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES security,
                              DWORD size) {
  if (IsRefused()) return FALSE;
  const BOOL done = CreatePipe(readEnd, writeEnd, security, size);
  GetWatch().pipe = done ? *readEnd : nullptr;
  return done;
}

BOOL WINAPI WatchedCreateProcessA(LPCSTR application, LPSTR commandLine,
                                  LPSECURITY_ATTRIBUTES processSecurity,
                                  LPSECURITY_ATTRIBUTES threadSecurity, BOOL inheritHandles,
                                  DWORD flags, LPVOID environment, LPCSTR folder,
                                  LPSTARTUPINFOA startup, LPPROCESS_INFORMATION started) {
  EndTool();  // that the library abandoned
  TellAnswer();
  const bool pipe = (startup->dwFlags & STARTF_USESTDHANDLES) != 0;
  const std::string shownLine = HidePassword(commandLine);
  GetObserver().OnProcess(application, shownLine, inheritHandles != FALSE, pipe);
  if (IsRefused() || IsHung(shownLine, commandLine, pipe)) return FALSE;
  GetWatch().startedLine = shownLine;
  GetWatch().login = FindAmtLogin(commandLine);
  if (Recorder* recorder = FindRecorder()) recorder->BeginRun(commandLine, pipe);
  const BOOL done = StartInJob(flags, *started, [&](DWORD allFlags) {
    return CreateProcessA(application, commandLine, processSecurity, threadSecurity, inheritHandles,
                          allFlags, environment, folder, startup, started);
  });
  GetWatch().process = done ? started->hProcess : nullptr;
  if (done) GetWatch().commandLine = shownLine;
  if (!done) {
    const DWORD error = GetLastError();
    if (Recorder* recorder = FindRecorder()) recorder->FailRun(error);
    SetLastError(error);
  }
  return done;
}

BOOL WINAPI WatchedReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                            LPOVERLAPPED overlapped) {
  const BOOL done = ReadFile(file, buffer, size, count, overlapped);
  if (!done || file != GetWatch().pipe) return done;
  const std::string_view bytes(static_cast<const char*>(buffer), *count);
  GetWatch().output += bytes;
  if (Recorder* recorder = FindRecorder()) recorder->AddOutput(bytes);
  return done;
}

DWORD WINAPI WatchedWaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  const DWORD result = WaitForSingleObject(handle, milliseconds);
  if (result == WAIT_OBJECT_0 && handle == GetWatch().process) {
    GetWatch().process = nullptr;
    const DWORD error = GetLastError();
    DWORD exitCode = 0;
    GetExitCodeProcess(handle, &exitCode);
    EndTool();
    // Before anyone reads it: neither the tables nor the log folder are to show the password.
    if (GetWatch().login) HidePasswordInReport(*GetWatch().login);
    if (Recorder* recorder = FindRecorder()) recorder->EndRun(exitCode);
    TellAnswer();
    GetObserver().OnProcessEnd(exitCode);
    SetLastError(error);
  }
  return result;
}

/// Does the work of `system` with a process that this host knows: `system` gives the host no
/// process to end, and a Ctrl-C meant for the host would end that one.
int RunSystem(const char* command) {
  const char* variable = std::getenv("COMSPEC");
  const std::string interpreter = variable != nullptr ? variable : pq::kInterpreter;
  std::string line = interpreter + " /c " + command;
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION started{};
  const BOOL done = StartInJob(0, started, [&](DWORD flags) {
    return CreateProcessA(interpreter.c_str(), line.data(), nullptr, nullptr, TRUE, flags, nullptr,
                          nullptr, &startup, &started);
  });
  if (!done) return -1;
  CloseHandle(started.hThread);
  WaitForSingleObject(started.hProcess, INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(started.hProcess, &exitCode);
  CloseHandle(started.hProcess);
  EndTool();
  return static_cast<int>(exitCode);
}

int WatchedSystem(const char* command) {
  EndTool();  // that the library abandoned
  TellAnswer();
  GetObserver().OnSystem(command);
  const std::string line = std::string("/c ") + command;
  if (IsRefused() || IsHung(line, line.c_str(), /*isPiped=*/false)) return -1;
  GetWatch().startedLine = line;
  Recorder* recorder = FindRecorder();
  if (recorder != nullptr) recorder->BeginRun(line, /*isPiped=*/false);
  const int result = RunSystem(command);
  GetWatch().commandLine = line;
  TellAnswer();
  if (recorder != nullptr) recorder->EndRun(static_cast<std::uint32_t>(result));
  return result;
}

std::FILE* WatchedOpen(const char* path, const char* mode) {
  GetObserver().OnOpen(path, mode);
  if (Recorder* recorder = FindRecorder()) recorder->KeepOpened(path);
  return std::fopen(path, mode);
}

int WatchedAccess(const char* path, int mode) {
  const int result = _access(path, mode);
  Recorder* recorder = FindRecorder();
  if (result == 0 && recorder != nullptr) recorder->KeepTested(path);
  return result;
}

int WatchedGetCharacter(std::FILE* file) {
  if (file != stdin) return std::getc(file);
  // An operator who ended the collection is not asked any more.
  if (GetObserver().WantsEnd()) return EOF;
  LoginPrompt& prompt = *GetWatch().given.prompt;
  const int character = prompt.ReadCharacter();
  if (character == EOF) {
    if (!prompt.WhyNoLogin().empty()) GetObserver().OnNoLogin(prompt.WhyNoLogin());
  } else if (Recorder* recorder = FindRecorder()) {
    const char typed = static_cast<char>(character);
    recorder->AddTyped({&typed, 1});
  }
  return character;
}

std::size_t WatchedWrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (file == stdout) GetObserver().OnConsole({static_cast<const char*>(data), size * count});
  return std::fwrite(data, size, count, file);
}

struct Replacement {
  std::string_view function;
  void* replacement;
};

const Replacement kReplacements[] = {
    {"CreatePipe", reinterpret_cast<void*>(&WatchedCreatePipe)},
    {"CreateProcessA", reinterpret_cast<void*>(&WatchedCreateProcessA)},
    {"ReadFile", reinterpret_cast<void*>(&WatchedReadFile)},
    {"WaitForSingleObject", reinterpret_cast<void*>(&WatchedWaitForSingleObject)},
    {"_access", reinterpret_cast<void*>(&WatchedAccess)},
    {"fopen", reinterpret_cast<void*>(&WatchedOpen)},
    {"fwrite", reinterpret_cast<void*>(&WatchedWrite)},
    {"getc", reinterpret_cast<void*>(&WatchedGetCharacter)},
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

WatchedImports::WatchedImports(void* module, const LiveWatch& watch) {
  GetWatch().given = watch;
  GetWatch().console = std::make_unique<ToolConsole>();
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
  Watch& watch = GetWatch();
  watch.job.reset();
  watch.left.clear();
  watch.console.reset();
  watch.login.reset();
  watch.given = {};
  watch.process = watch.pipe = nullptr;
  watch.commandLine.clear();
  watch.startedLine.clear();
  watch.hung = {};
  watch.output.clear();
}

}  // namespace host
