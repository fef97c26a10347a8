// Stands in for the command interpreter: the documented quote rule, redirections, pipes into
// findstr, and copy, md and findstr built in. Wine's own interpreter lacks parts of these. A
// program is looked for in the current folder first, unless the environment forbids it, then along
// the path.

#include "host/recorded/interpreter.h"

#include <windows.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/standin/console_bytes.h"

namespace test {
namespace {

constexpr std::string_view kBadSyntax = "The syntax of the command is incorrect.\r\n";
constexpr std::string_view kNoSuchFile = "The system cannot find the file specified.\r\n";
constexpr std::string_view kNoSuchPath = "The system cannot find the path specified.\r\n";
constexpr std::string_view kAccessDenied = "Access is denied.\r\n";

class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle, other.handle);
    return *this;
  }
  ~Handle() {
    if (handle != nullptr) CloseHandle(handle);
  }
  HANDLE Get() const { return handle; }
  explicit operator bool() const { return handle != nullptr; }

 private:
  HANDLE handle = nullptr;
};

/// Where one command of a pipeline reads and writes.
struct Streams {
  HANDLE input;
  HANDLE output;
  HANDLE error;
};

SECURITY_ATTRIBUTES Inheritable() { return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE}; }

std::string_view WordsFor(DWORD error) {
  if (error == ERROR_PATH_NOT_FOUND) return kNoSuchPath;
  return error == ERROR_FILE_NOT_FOUND ? kNoSuchFile : kAccessDenied;
}

bool IsFile(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool IsFolder(const std::string& path) {
  const DWORD attributes = GetFileAttributesA(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::optional<std::string> WithExtension(const std::string& path) {
  for (const char* extension : {"", ".exe"}) {
    if (IsFile(path + extension)) return path + extension;
  }
  return std::nullopt;
}

/// The file of the program that stands on the line as `program`, or nothing.
std::optional<std::string> FindProgram(std::string_view program) {
  std::string name(program);
  std::erase(name, '"');
  if (name.find_first_of("\\:") != std::string::npos) return WithExtension(name);
  std::string folders(32767, '\0');
  folders.resize(
      GetEnvironmentVariableA("PATH", folders.data(), static_cast<DWORD>(folders.size())));
  const bool skipsCurrentFolder =
      GetEnvironmentVariableA("NoDefaultCurrentDirectoryInExePath", nullptr, 0) != 0;
  if (!skipsCurrentFolder) folders.insert(0, ".;");
  for (std::string_view rest = folders; !rest.empty();) {
    const std::size_t end = std::min(rest.find(';'), rest.size());
    const std::string folder(rest.substr(0, end));
    if (auto found = WithExtension(folder + "\\" + name)) return found;
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return std::nullopt;
}

std::string JoinPath(const std::string& folder, const std::string& name) {
  return folder.ends_with('\\') ? folder + name : folder + "\\" + name;
}

/// Path and name of every file right in `folder`.
std::vector<std::pair<std::string, std::string>> ListFiles(const std::string& folder) {
  std::vector<std::pair<std::string, std::string>> files;
  WIN32_FIND_DATAA found;
  HANDLE search = FindFirstFileA(JoinPath(folder, "*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return files;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
      files.emplace_back(JoinPath(folder, found.cFileName), found.cFileName);
    }
  } while (FindNextFileA(search, &found));
  FindClose(search);
  return files;
}

DWORD CopyFiles(const std::string& arguments, const Streams& streams) {
  std::vector<std::string> paths = host::SplitWords(arguments);
  std::erase_if(paths, [](const std::string& word) { return word.starts_with('/'); });
  const auto fail = [&](std::string_view words) -> DWORD {
    WriteBytes(streams.error, words);
    return 1;
  };
  if (paths.empty() || paths.size() > 2) return fail(kBadSyntax);
  const std::string& source = paths[0];
  const std::string target = paths.size() == 2 ? paths[1] : ".";
  std::vector<std::pair<std::string, std::string>> files;
  const bool isFolder = IsFolder(source);
  if (isFolder) {
    if (!IsFolder(target)) return fail(kNoSuchPath);
    files = ListFiles(source);
  } else if (IsFile(source)) {
    files = {{source, source.substr(source.find_last_of("\\:") + 1)}};
  }
  if (files.empty()) return fail(kNoSuchFile);
  int copied = 0;
  DWORD exitCode = 0;
  for (const auto& [path, name] : files) {
    if (isFolder) WriteBytes(streams.output, path + "\r\n");
    const std::string to = IsFolder(target) ? JoinPath(target, name) : target;
    if (!CopyFileA(path.c_str(), to.c_str(), FALSE)) {
      exitCode = fail(WordsFor(GetLastError()));
      break;
    }
    ++copied;
  }
  WriteBytes(streams.output, "        " + std::to_string(copied) + " file(s) copied.\r\n");
  return exitCode;
}

DWORD MakeFolders(const std::string& arguments, const Streams& streams) {
  DWORD exitCode = 0;
  for (const std::string& folder : host::SplitWords(arguments)) {
    for (std::size_t end = folder.find('\\', 3); end != std::string::npos;
         end = folder.find('\\', end + 1)) {
      CreateDirectoryA(folder.substr(0, end).c_str(), nullptr);
    }
    if (CreateDirectoryA(folder.c_str(), nullptr)) continue;
    const DWORD error = GetLastError();
    exitCode = 1;
    WriteBytes(streams.error, error == ERROR_ALREADY_EXISTS
                                  ? "A subdirectory or file " + folder + " already exists.\r\n"
                                  : std::string(WordsFor(error)));
  }
  return exitCode;
}

std::string ReadAll(HANDLE input) {
  std::string all;
  char chunk[4096];
  DWORD count = 0;
  while (ReadFile(input, chunk, sizeof(chunk), &count, nullptr) && count > 0) {
    all.append(chunk, count);
  }
  return all;
}

DWORD FindLines(const std::string& arguments, const Streams& streams) {
  const std::string lines =
      host::FilterLines(ReadAll(streams.input), host::FindstrTexts(arguments));
  WriteBytes(streams.output, lines);
  return lines.empty() ? 1 : 0;
}

/// Starts a program; null when there is none of that name.
Handle StartProgram(const host::Stage& stage, const Streams& streams) {
  const std::optional<std::string> path = FindProgram(stage.program);
  if (!path) return {};
  std::string line = stage.program;
  if (!stage.arguments.empty()) line += " " + stage.arguments;
  STARTUPINFOA startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = streams.input;
  startup.hStdOutput = streams.output;
  startup.hStdError = streams.error;
  // The standard handles of a process need not be inheritable, and a child gets none that is not.
  for (HANDLE handle : {streams.input, streams.output, streams.error}) {
    SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  }
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(path->c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                      &startup, &started)) {
    return {};
  }
  CloseHandle(started.hThread);
  return Handle(started.hProcess);
}

/// One command of a pipeline with the files that its redirections opened.
class RunningStage {
 public:
  RunningStage(const host::Stage& stage, Streams streams) : stage(stage), streams(streams) {}

  /// Does what can be done at once: a command of the interpreter's own, or starting a program.
  void Start() {
    if (!OpenRedirections()) return;
    const std::string tool = host::ToolName(stage.program);
    if (tool == "copy") {
      exitCode = CopyFiles(stage.arguments, streams);
    } else if (tool == "md") {
      exitCode = MakeFolders(stage.arguments, streams);
    } else if (tool == "findstr") {
      exitCode = FindLines(stage.arguments, streams);
    } else if (!stage.program.empty()) {
      process = StartProgram(stage, streams);
      exitCode = process ? 0 : 1;
      if (!process) WriteBytes(streams.error, NotRecognized(stage.program));
    }
    files.clear();
  }

  DWORD Wait() {
    if (process) {
      WaitForSingleObject(process.Get(), INFINITE);
      GetExitCodeProcess(process.Get(), &exitCode);
    }
    return exitCode;
  }

 private:
  bool OpenRedirections() {
    using Kind = host::Redirection::Kind;
    for (const host::Redirection& redirection : stage.redirections) {
      SECURITY_ATTRIBUTES security = Inheritable();
      const bool isRead = redirection.kind == Kind::kRead;
      const DWORD access = isRead                              ? GENERIC_READ
                           : redirection.kind == Kind::kAppend ? FILE_APPEND_DATA
                                                               : GENERIC_WRITE;
      const DWORD creation = isRead                              ? OPEN_EXISTING
                             : redirection.kind == Kind::kAppend ? OPEN_ALWAYS
                                                                 : CREATE_ALWAYS;
      Handle file(CreateFileA(redirection.target.c_str(), access, FILE_SHARE_READ, &security,
                              creation, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (!file) {
        WriteBytes(streams.error, WordsFor(GetLastError()));
        exitCode = 1;
        return false;
      }
      if (redirection.handle == 0) streams.input = file.Get();
      if (redirection.handle == 1) streams.output = file.Get();
      if (redirection.handle == 2) streams.error = file.Get();
      files.push_back(std::move(file));
    }
    return true;
  }

  const host::Stage& stage;
  Streams streams;
  std::vector<Handle> files;
  Handle process;
  DWORD exitCode = 0;
};

Streams OwnStreams() {
  return {GetStdHandle(STD_INPUT_HANDLE), GetStdHandle(STD_OUTPUT_HANDLE),
          GetStdHandle(STD_ERROR_HANDLE)};
}

/// An empty file that is gone once closed.
Handle MakePassingFile() {
  char folder[MAX_PATH];
  char path[MAX_PATH];
  GetTempPathA(MAX_PATH, folder);
  GetTempFileNameA(folder, "pq", 0, path);
  SECURITY_ATTRIBUTES security = Inheritable();
  return Handle(CreateFileA(path, GENERIC_READ | GENERIC_WRITE,
                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &security,
                            CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
}

DWORD RunPipeline(const std::vector<host::Stage>& stages) {
  const Streams own = OwnStreams();
  // What the commands before a pipe write to standard error comes out behind what the last one
  // writes to standard output: a recording answers in that order, and a reader of both can then
  // rely on it.
  Handle errors;
  if (stages.size() > 1) errors = MakePassingFile();
  std::vector<RunningStage> running;
  running.reserve(stages.size());
  Handle input;
  for (std::size_t i = 0; i < stages.size(); ++i) {
    Streams streams = own;
    if (input) streams.input = input.Get();
    Handle nextInput;
    Handle output;
    if (i + 1 < stages.size()) {
      HANDLE readEnd = nullptr;
      HANDLE writeEnd = nullptr;
      CreatePipe(&readEnd, &writeEnd, nullptr, 0);
      nextInput = Handle(readEnd);
      output = Handle(writeEnd);
      streams.output = writeEnd;
      streams.error = errors.Get();
    }
    running.emplace_back(stages[i], streams).Start();
    // `output` closes here: a reader meets its end once the program has gone.
    input = std::move(nextInput);
  }
  DWORD exitCode = 0;
  for (RunningStage& stage : running) exitCode = stage.Wait();
  if (errors) {
    SetFilePointer(errors.Get(), 0, nullptr, FILE_BEGIN);
    WriteBytes(own.error, ReadAll(errors.Get()));
  }
  return exitCode;
}

/// The line from its "/c" on; the library gives no program before it, `system` does.
std::string ReadCommandLine() {
  const OwnCommandLine own = ReadOwnCommandLine();
  if (own.program == "/c") return GetCommandLineA();
  return own.arguments;
}

DWORD Interpret() {
  const auto isProgram = [](std::string_view path) { return FindProgram(path).has_value(); };
  const host::Pipeline pipeline = host::ParseCommandLine(ReadCommandLine(), isProgram);
  if (pipeline.isMalformed) {
    WriteBytes(GetStdHandle(STD_ERROR_HANDLE), kBadSyntax);
    return 1;
  }
  return RunPipeline(pipeline.stages);
}

}  // namespace
}  // namespace test

int main() { ExitProcess(test::Interpret()); }
