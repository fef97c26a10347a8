// The machine, on Win32.

#include <io.h>
#include <windows.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "frame/platform.h"

namespace pq {
namespace {

/// Owns a handle for CloseHandle: of a process, a thread or a pipe end. None of the calls here that
/// bring one answers INVALID_HANDLE_VALUE; a failure leaves null.
struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, HandleCloser>;

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

class Win32Pipe final : public Pipe {
 public:
  Win32Pipe(HANDLE readEnd, HANDLE writeEnd) : readEnd(readEnd), writeEnd(writeEnd) {}

  void CloseWriteEnd() override { writeEnd.reset(); }

  bool Read(char* buffer, std::size_t size, std::size_t& count) override {
    DWORD read = 0;
    const bool done =
        ReadFile(readEnd.get(), buffer, static_cast<DWORD>(size), &read, nullptr) != FALSE;
    count = read;
    return done;
  }

  HANDLE WriteEnd() const { return writeEnd.get(); }

 private:
  Handle readEnd;
  Handle writeEnd;
};

class Win32Process final : public Process {
 public:
  explicit Win32Process(const PROCESS_INFORMATION& started)
      : thread(started.hThread), process(started.hProcess) {}

  void Wait() override { WaitForSingleObject(process.get(), INFINITE); }

  std::uint32_t ReadExitCode(std::uint32_t& exitCode) override {
    DWORD code = 0;
    if (!GetExitCodeProcess(process.get(), &code)) return GetLastError();
    exitCode = code;
    return 0;
  }

 private:
  Handle thread;
  Handle process;  ///< closed first
};

class Win32TextFile final : public TextFile {
 public:
  explicit Win32TextFile(File file) : file(std::move(file)) {}

  bool ReadLine(char* buffer, std::size_t size) override {
    return std::fgets(buffer, static_cast<int>(size), file.get()) != nullptr;
  }

  void Rewind() override { std::rewind(file.get()); }

  std::uint64_t SizeAndRewind() override {
    // ftell itself answers a long, which is too small here for a log of two gigabytes.
    _fseeki64(file.get(), 0, SEEK_END);
    const auto size = _ftelli64(file.get());
    Rewind();
    return size < 0 ? 0 : static_cast<std::uint64_t>(size);
  }

 private:
  File file;
};

class Win32Platform final : public Platform {
 public:
  std::string HostExecutable() override {
    std::array<char, 260> path{};
    const DWORD length = GetModuleFileNameA(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return {path.data(), length};
  }

  std::uint32_t SystemLanguage() override { return GetSystemDefaultLCID(); }

  bool PathExists(const std::string& path) override { return _access(path.c_str(), 0) == 0; }

  Acquired<Pipe> CreatePipe(const std::string& /*commandLine*/) override {
    SECURITY_ATTRIBUTES security{};
    security.nLength = sizeof(security);
    security.bInheritHandle = TRUE;
    static_assert(sizeof(security) == 24);
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    if (!::CreatePipe(&readEnd, &writeEnd, &security, 0)) return {nullptr, GetLastError()};
    return {std::make_unique<Win32Pipe>(readEnd, writeEnd)};
  }

  Acquired<Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                     Pipe* output) override {
    STARTUPINFOA startup{};
    if (output != nullptr) {
      GetStartupInfoA(&startup);
      startup.hStdOutput = startup.hStdError = static_cast<Win32Pipe*>(output)->WriteEnd();
      startup.wShowWindow = SW_HIDE;
      startup.dwFlags = STARTF_USESHOWWINDOW | STARTF_USESTDHANDLES;
      static_assert(SW_HIDE == 0 && (STARTF_USESHOWWINDOW | STARTF_USESTDHANDLES) == 257);
    }
    startup.cb = sizeof(startup);
    static_assert(sizeof(startup) == 104);
    // CreateProcessA writes into the command line, so it gets a copy.
    std::string ownLine = commandLine;
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(kInterpreter, ownLine.data(), nullptr, nullptr,
                        inheritHandles ? TRUE : FALSE, 0, nullptr, nullptr, &startup, &started)) {
      return {nullptr, GetLastError()};
    }
    return {std::make_unique<Win32Process>(started)};
  }

  void RunSystem(const std::string& command) override { (void)std::system(command.c_str()); }

  std::unique_ptr<TextFile> OpenText(const std::string& path) override {
    File file(std::fopen(path.c_str(), "r"));
    if (!file) return nullptr;
    return std::make_unique<Win32TextFile>(std::move(file));
  }

  void WriteConsole(std::string_view text) override {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
  }

  ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) override {
    std::size_t length = 0;
    bool fits = true;
    for (int c = std::getc(stdin); c != EOF && c != '\n'; c = std::getc(stdin)) {
      fits = length + 1 < size;
      if (fits) buffer[length++] = static_cast<char>(c);
    }
    buffer[length] = '\0';
    return fits ? ConsoleLine::kRead : ConsoleLine::kTooLong;
  }

  [[noreturn]] void FailRangeCheck() override {
    // As the compiler's own range checks do: nothing of the host runs on in a process whose buffers
    // cannot be trusted, the system's error report is written, and the code tells the reason.
    EXCEPTION_RECORD record{};
    record.ExceptionCode = STATUS_STACK_BUFFER_OVERRUN;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    RaiseFailFastException(&record, nullptr, FAIL_FAST_GENERATE_EXCEPTION_ADDRESS);
    std::abort();  // never reached; the declaration above does not say so
  }
};

}  // namespace

Platform& Machine() {
  static Win32Platform machine;
  return machine;
}

}  // namespace pq
