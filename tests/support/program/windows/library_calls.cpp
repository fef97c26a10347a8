#include "tests/support/program/windows/library_calls.h"

#include <windows.h>
// The machine has a function of that name.
#undef WriteConsole

#include <algorithm>
#include <boost/shared_ptr.hpp>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "frame/halyard/repository.h"
#include "frame/sentences.h"
#include "host/live/windows/module_image.h"
#include "host/logger/logger.h"
#include "host/recorded/recorded_machine.h"
#include "host/recording/recording_writer.h"
#include "tests/support/temporary_folder.h"

namespace test {
namespace {

namespace fs = std::filesystem;

/// Handles have lower numbers here, and are multiples of 4.
constexpr std::uintptr_t kHandleRange = 0x4000;

/// The last error after a handle was closed: no line of the log may tell this one.
constexpr DWORD kLaterError = 1117;

fs::path GetProgramFolder() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path();
}

void ReplaceEach(std::string& text, std::string_view from, std::string_view to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

std::string DoubleEachBackslash(std::string path) {
  ReplaceEach(path, "\\", "\\\\");
  return path;
}

host::Recording MoveHost(host::Recording recording, const fs::path& folder) {
  recording.hostExecutable = (folder / "host" / "halyard.exe").string();
  recording.logFolder = (folder / "logs").string() + "\\";
  return recording;
}

/// What the library was given, and in which step.
struct Given {
  std::string role;  ///< of a file its name
  int step;
  bool isFile;
};

}  // namespace

struct CallWatch {
  CallWatch(const host::Recording& given, Tools tools)
      : recording(tools == Tools::kReal ? MoveHost(given, folder.Path()) : given),
        hasRealTools(tools == Tools::kReal),
        machine(recording) {}

  void PlaceStandIns() const;
  std::string Spell(std::string text) const;
  std::string Name(const void* object) const;
  std::string Describe(const STARTUPINFOA& startup) const;
  BOOL Answer(const char* commandLine, bool inherits, const STARTUPINFOA& startup,
              PROCESS_INFORMATION& started);
  BOOL StartStandIn(char* commandLine, BOOL inherits, STARTUPINFOA* startup,
                    PROCESS_INFORMATION* started) const;

  const TemporaryFolder folder;  ///< of the stand-ins, or of copies of recorded files
  const host::Recording recording;
  const bool hasRealTools;
  host::RecordedMachine machine;
  /// Those that are answered from the recording.
  std::map<HANDLE, std::unique_ptr<pq::Process>> processes;
  std::size_t charactersTyped = 0;
  HANDLE hostInput = nullptr;
  STARTUPINFOA hostStartup{};
  int pipes = 0;
  int failingPipe = 0;
  std::uint32_t pipeError = 0;

  int step = 0;  ///< one for each pipe and for each process without a pipe
  std::map<const void*, Given> open;
  std::vector<std::string> calls;

  HMODULE library = nullptr;
  struct Replaced {
    void** slot;
    void* original;
  };
  std::vector<Replaced> replaced;
};

void CallWatch::PlaceStandIns() const {
  const fs::path standIns = GetProgramFolder().parent_path() / "standin";
  const fs::path tools = folder.Path() / "host" / "pq_tools";
  fs::create_directories(tools);
  for (const char* name : {"logs", "state"}) fs::create_directories(folder.Path() / name);
  for (const host::RecordedCommand& command : recording.commands) {
    fs::copy_file(standIns / "standin_tool.exe", tools / command.tool,
                  fs::copy_options::skip_existing);
  }
  host::WriteRecording(recording, folder.Path() / "recording");
  SetEnvironmentVariableW(L"PQ_STANDIN_RECORDING", (folder.Path() / "recording").c_str());
  SetEnvironmentVariableW(L"PQ_STANDIN_STATE", (folder.Path() / "state").c_str());
}

std::string CallWatch::Spell(std::string text) const {
  const std::string host = fs::path(recording.hostExecutable).parent_path().string() + "\\";
  for (const std::string& left : {recording.logFolder, host}) {
    ReplaceEach(text, DoubleEachBackslash(left), "");
    ReplaceEach(text, left, "");
  }
  return text;
}

std::string CallWatch::Name(const void* object) const {
  const auto found = open.find(object);
  if (found == open.end()) return "what is not open";
  const Given& given = found->second;
  return (given.isFile || given.step == step ? "" : "an earlier ") + given.role;
}

std::string CallWatch::Describe(const STARTUPINFOA& startup) const {
  STARTUPINFOA rest = startup;
  rest.cb = 0;
  const std::string size = std::to_string(startup.cb) + " bytes";
  const STARTUPINFOA nothing{};
  if (std::memcmp(&rest, &nothing, sizeof(rest)) == 0) return size + ", else empty";
  rest = hostStartup;
  rest.cb = startup.cb;
  rest.dwFlags = startup.dwFlags;
  rest.wShowWindow = startup.wShowWindow;
  rest.hStdOutput = startup.hStdOutput;
  rest.hStdError = startup.hStdError;
  const bool isTheHosts = std::memcmp(&rest, &startup, sizeof(rest)) == 0;
  return size + ", flags " + std::to_string(startup.dwFlags) + ", show " +
         std::to_string(startup.wShowWindow) + ", output " + Name(startup.hStdOutput) + ", error " +
         Name(startup.hStdError) + ", else " + (isTheHosts ? "the host's" : "neither's");
}

/// Answers at once: into the pipe's write end, or into the recorded machine's files.
BOOL CallWatch::Answer(const char* commandLine, bool inherits, const STARTUPINFOA& startup,
                       PROCESS_INFORMATION& started) {
  std::unique_ptr<pq::Pipe> pipe;
  if ((startup.dwFlags & STARTF_USESTDHANDLES) != 0) pipe = machine.CreatePipe(commandLine).object;
  auto process = machine.StartInterpreter(commandLine, inherits, pipe.get());
  if (!process) {
    SetLastError(process.error);
    return FALSE;
  }
  if (pipe) {
    pipe->CloseWriteEnd();
    char text[512];  // what the system's pipe holds is more than tests have tools say
    std::size_t count = 0;
    while (pipe->Read(text, sizeof(text), count)) {
      DWORD written = 0;
      WriteFile(startup.hStdOutput, text, static_cast<DWORD>(count), &written, nullptr);
    }
  }
  started.hProcess = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  started.hThread = CreateEventW(nullptr, TRUE, TRUE, nullptr);
  processes[started.hProcess] = std::move(process.object);
  return TRUE;
}

BOOL CallWatch::StartStandIn(char* commandLine, BOOL inherits, STARTUPINFOA* startup,
                             PROCESS_INFORMATION* started) const {
  const fs::path interpreter =
      GetProgramFolder().parent_path() / "standin" / "standin_interpreter.exe";
  return CreateProcessA(interpreter.string().c_str(), commandLine, nullptr, nullptr, inherits, 0,
                        nullptr, nullptr, startup, started);
}

namespace {

CallWatch* current = nullptr;

void Note(const std::string& call) { current->calls.push_back(current->Spell(call)); }

void NoteGiven(const void* object, const std::string& role, bool isFile = false) {
  current->open[object] = {role, current->step, isFile};
}

void NoteClosed(const void* object) {
  Note("close " + current->Name(object));
  current->open.erase(object);
}

// Each of these takes the place of the function of that name.

BOOL WINAPI NoteCreatePipe(PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES security,
                           DWORD size) {
  ++current->step;
  std::string call = "create pipe: size " + std::to_string(size);
  if (security == nullptr) {
    call += ", no security attributes";
  } else {
    call += ", security attributes of " + std::to_string(security->nLength) + " bytes, " +
            (security->lpSecurityDescriptor == nullptr ? "no" : "a") + " descriptor, " +
            (security->bInheritHandle == TRUE ? "inheritable" : "not inheritable");
  }
  Note(call);
  if (++current->pipes == current->failingPipe) {
    SetLastError(current->pipeError);
    return FALSE;
  }
  if (!CreatePipe(readEnd, writeEnd, security, size)) return FALSE;
  NoteGiven(*readEnd, "read end");
  NoteGiven(*writeEnd, "write end");
  return TRUE;
}

void WINAPI NoteGetStartupInfo(LPSTARTUPINFOA startup) {
  static char title[] = "the host's";
  Note("get start-up record");
  GetStartupInfoA(startup);
  startup->cb = 0;  // whoever uses the record sets the size
  startup->lpTitle = title;
  startup->dwXSize = 640;
  startup->dwFlags = STARTF_USESIZE;
  startup->wShowWindow = SW_SHOWMAXIMIZED;
  startup->hStdInput = current->hostInput;
  current->hostStartup = *startup;
}

BOOL WINAPI NoteCreateProcess(LPCSTR application, LPSTR commandLine,
                              LPSECURITY_ATTRIBUTES processSecurity,
                              LPSECURITY_ATTRIBUTES threadSecurity, BOOL inherits, DWORD flags,
                              LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                              LPPROCESS_INFORMATION started) {
  if ((startup->dwFlags & STARTF_USESTDHANDLES) == 0) ++current->step;
  const PROCESS_INFORMATION nothing{};
  const bool isEmpty = std::memcmp(started, &nothing, sizeof(nothing)) == 0;
  Note(std::string("start ") + (application != nullptr ? application : "nothing") + " " +
       commandLine);
  Note("  flags " + std::to_string(flags) + (inherits == FALSE ? ", no" : ",") +
       " handle inheritance" +
       (processSecurity == nullptr && threadSecurity == nullptr ? "" : ", security attributes") +
       (environment == nullptr ? "" : ", an environment") +
       (folder == nullptr ? "" : ", a current folder") + (isEmpty ? "" : ", a used result"));
  Note("  start-up record: " + current->Describe(*startup));
  const BOOL done = current->hasRealTools
                        ? current->StartStandIn(commandLine, inherits, startup, started)
                        : current->Answer(commandLine, inherits != FALSE, *startup, *started);
  if (!done) return FALSE;
  // The system may write into the line that it is handed.
  if (*commandLine != '\0') *commandLine = '?';
  NoteGiven(started->hProcess, "process");
  NoteGiven(started->hThread, "thread");
  return TRUE;
}

BOOL WINAPI NoteReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                         LPOVERLAPPED overlapped) {
  const std::string call = "read up to " + std::to_string(size) + " bytes of " +
                           current->Name(file) + (overlapped == nullptr ? "" : ", overlapped");
  if (current->calls.back() != call) Note(call);
  const BOOL done = ReadFile(file, buffer, size, count, overlapped);
  if (!done) current->calls.back() += ", until that fails";
  return done;
}

DWORD WINAPI NoteWait(HANDLE handle, DWORD milliseconds) {
  Note("wait for " + current->Name(handle) + ", " +
       (milliseconds == INFINITE ? "as long as it takes"
                                 : std::to_string(milliseconds) + " milliseconds"));
  const auto answered = current->processes.find(handle);
  if (answered != current->processes.end()) answered->second->Wait();
  return WaitForSingleObject(handle, milliseconds);
}

BOOL WINAPI NoteGetExitCode(HANDLE process, LPDWORD code) {
  Note("get exit code of " + current->Name(process) + " into a variable of " +
       std::to_string(*code));
  const auto answered = current->processes.find(process);
  if (answered == current->processes.end()) return GetExitCodeProcess(process, code);
  std::uint32_t recorded = 0;
  const std::uint32_t error = answered->second->ReadExitCode(recorded);
  if (error == 0) {
    *code = recorded;
    return TRUE;
  }
  SetLastError(error);
  return FALSE;
}

BOOL WINAPI NoteCloseHandle(HANDLE handle) {
  NoteClosed(handle);
  current->processes.erase(handle);
  const BOOL done = CloseHandle(handle);
  SetLastError(kLaterError);
  return done;
}

DWORD WINAPI NoteGetModuleFileName(HMODULE module, LPSTR path, DWORD size) {
  Note(std::string("get path of ") + (module == nullptr ? "the host" : "a module") + ", at most " +
       std::to_string(size) + " bytes");
  const std::string& host = current->recording.hostExecutable;
  std::memcpy(path, host.c_str(), host.size() + 1);
  return static_cast<DWORD>(host.size());
}

LCID WINAPI NoteGetLanguage() {
  Note("get system language");
  return current->machine.SystemLanguage();
}

int NoteAccess(const char* path, int mode) {
  Note(std::string("test ") + path + ", mode " + std::to_string(mode));
  return current->machine.PathExists(path) ? 0 : -1;
}

int NoteSystem(const char* command) {
  Note(std::string("system ") + command);
  current->machine.RunSystem(command);
  return 0;
}

std::FILE* NoteOpen(const char* path, const char* mode) {
  Note(std::string("open ") + path + ", mode " + mode);
  std::string opened = path;
  if (!current->hasRealTools) {
    const auto recorded = current->machine.OpenText(path);
    if (!recorded) return nullptr;
    std::string text;
    for (char line[512]; recorded->ReadLine(line, sizeof(line));) text += line;
    current->folder.Write("opened", text);
    opened = current->folder / "opened";
  }
  std::FILE* file = std::fopen(opened.c_str(), mode);
  if (file != nullptr) NoteGiven(file, fs::path(path).filename().string(), /*isFile=*/true);
  return file;
}

int NoteClose(std::FILE* file) {
  NoteClosed(file);
  const int result = std::fclose(file);
  SetLastError(kLaterError);
  return result;
}

std::size_t NoteWrite(const void* data, std::size_t size, std::size_t count, std::FILE* file) {
  if (file != stdout) return std::fwrite(data, size, count, file);
  Note("print " + std::string(static_cast<const char*>(data), size * count));
  return count;
}

int NoteGetCharacter(std::FILE* file) {
  if (file != stdin) return std::getc(file);
  const std::string& console = current->recording.console;
  if (current->charactersTyped == console.size()) return EOF;
  return static_cast<unsigned char>(console[current->charactersTyped++]);
}

struct Replacement {
  std::string_view function;
  void* replacement;
};

const Replacement kReplacements[] = {
    {"CloseHandle", reinterpret_cast<void*>(&NoteCloseHandle)},
    {"CreatePipe", reinterpret_cast<void*>(&NoteCreatePipe)},
    {"CreateProcessA", reinterpret_cast<void*>(&NoteCreateProcess)},
    {"GetExitCodeProcess", reinterpret_cast<void*>(&NoteGetExitCode)},
    {"GetModuleFileNameA", reinterpret_cast<void*>(&NoteGetModuleFileName)},
    {"GetStartupInfoA", reinterpret_cast<void*>(&NoteGetStartupInfo)},
    {"GetSystemDefaultLCID", reinterpret_cast<void*>(&NoteGetLanguage)},
    {"ReadFile", reinterpret_cast<void*>(&NoteReadFile)},
    {"WaitForSingleObject", reinterpret_cast<void*>(&NoteWait)},
    {"_access", reinterpret_cast<void*>(&NoteAccess)},
    {"fclose", reinterpret_cast<void*>(&NoteClose)},
    {"fopen", reinterpret_cast<void*>(&NoteOpen)},
    {"fwrite", reinterpret_cast<void*>(&NoteWrite)},
    {"getc", reinterpret_cast<void*>(&NoteGetCharacter)},
    {"system", reinterpret_cast<void*>(&NoteSystem)},
};

void SetSlot(void** slot, void* function) {
  DWORD protection = 0;
  if (!VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection)) {
    throw std::runtime_error("the library's table of imports cannot be written");
  }
  *slot = function;
  VirtualProtect(slot, sizeof(*slot), protection, &protection);
}

bool TellsSystemError(const std::string& line) {
  return line.find("CreateProcess failed") != std::string::npos ||
         line.find(pq::kExitCodeFailure) != std::string::npos;
}

}  // namespace

LibraryCalls::LibraryCalls(const host::Recording& recording, Tools tools)
    : watch(std::make_unique<CallWatch>(recording, tools)) {
  if (watch->hasRealTools) watch->PlaceStandIns();
  SECURITY_ATTRIBUTES inheritable{sizeof(inheritable), nullptr, TRUE};
  watch->hostInput =
      CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ, &inheritable, OPEN_EXISTING, 0, nullptr);
  watch->library = LoadLibraryW((GetProgramFolder() / "repository_pqmodule.dll").c_str());
  if (watch->library == nullptr) throw std::runtime_error("the library cannot be loaded");
  current = watch.get();
  for (const host::Import& import : host::ListImports(watch->library)) {
    for (const Replacement& replacement : kReplacements) {
      if (import.function != replacement.function) continue;
      watch->replaced.push_back({import.slot, *import.slot});
      SetSlot(import.slot, replacement.replacement);
    }
  }
}

LibraryCalls::~LibraryCalls() {
  for (const CallWatch::Replaced& entry : watch->replaced) SetSlot(entry.slot, entry.original);
  current = nullptr;
  for (const auto& [object, given] : watch->open) {
    void* closed = const_cast<void*>(object);
    if (given.isFile) {
      std::fclose(static_cast<std::FILE*>(closed));
    } else {
      CloseHandle(closed);
    }
  }
  CloseHandle(watch->hostInput);
  FreeLibrary(watch->library);
}

void LibraryCalls::FailPipe(int number, std::uint32_t error) {
  watch->failingPipe = number;
  watch->pipeError = error;
}

void LibraryCalls::Collect(const std::string& module, const std::string& table, int enumerations) {
  using Modules = std::vector<boost::shared_ptr<halyard::repository::RModule>>;
  const auto addModules = reinterpret_cast<int (*)(Modules&)>(
      reinterpret_cast<void*>(GetProcAddress(watch->library, "AddModules")));
  const host::LogFolderInUse logFolder(watch->recording.logFolder);
  const host::LogSinkInUse logSink([](const host::LogLine& line) {
    const std::string_view prefix = pq::kLogPrefix;
    if (TellsSystemError(line.text)) Note("log \"" + line.text.substr(prefix.size()) + "\"");
  });
  Modules modules;
  addModules(modules);
  const auto found = std::ranges::find_if(
      modules, [&](const auto& candidate) { return candidate->GetName() == module; });
  if (found == modules.end()) throw std::invalid_argument(module);
  (*found)->RegisterTables();
  halyard::repository::RRepository repository;
  for (int i = 0; i < enumerations; ++i) (*found)->Tables().at(table).enumHandler(repository);
}

std::string LibraryCalls::Text() const {
  std::string text;
  for (const std::string& call : watch->calls) text += call + "\n";
  return text;
}

void LibraryCalls::ForgetCalls() { watch->calls.clear(); }

std::vector<std::string> LibraryCalls::ListOpen() const {
  std::vector<std::string> names;
  for (const auto& [object, given] : watch->open) names.push_back(given.role);
  std::ranges::sort(names);
  return names;
}

std::vector<std::string> ListWatchedImports() {
  std::vector<std::string> names;
  for (const Replacement& replacement : kReplacements) names.emplace_back(replacement.function);
  return names;
}

std::size_t CountHandles() {
  std::size_t count = 0;
  for (std::uintptr_t number = 4; number < kHandleRange; number += 4) {
    DWORD flags = 0;
    count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != FALSE;
  }
  return count;
}

}  // namespace test
