// The one seam between the modules and the machine. In the library the machine is Win32
// (frame/windows); elsewhere a recording takes its place. Nothing here starts threads: all calls
// come from the thread that collects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pq {

/// The program that runs every tool.
inline constexpr char kInterpreter[] = "C:\\Windows\\system32\\cmd.exe";

/// "The filename or extension is too long": the system error of a command line that does not fit.
inline constexpr std::uint32_t kErrorFilenameTooLong = 206;

/// The language identifier of US English.
inline constexpr std::uint32_t kUsEnglish = 1033;

/// A pipe that carries a tool's standard output and standard error as one stream. Closes its open
/// ends when destroyed.
class Pipe {
 public:
  virtual ~Pipe() = default;
  /// Closes this process's write end. Reading ends only after that.
  virtual void CloseWriteEnd() = 0;
  /// Waits for output of the tool and reads it, at most `size` bytes. False at the first failed
  /// read, when the last writer has gone; a success may bring zero bytes.
  virtual bool Read(char* buffer, std::size_t size, std::size_t& count) = 0;
};

/// A started interpreter. Destroying it closes the process and the thread handle and waits for
/// nothing; letting go of it with release() leaves both open.
class Process {
 public:
  virtual ~Process() = default;
  /// Waits without time-out until the process has ended.
  virtual void Wait() = 0;
  /// Stores the exit code. When it cannot be read, returns the system error and leaves `exitCode`;
  /// otherwise returns 0.
  virtual std::uint32_t ReadExitCode(std::uint32_t& exitCode) = 0;
};

/// A file opened in text mode: CR LF reads as one line feed and Ctrl-Z ends the file.
class TextFile {
 public:
  virtual ~TextFile() = default;
  /// As fgets: at most `size - 1` characters, up to and including a line feed, zero-terminated.
  /// False at the end of the file; the buffer is then left as it was.
  virtual bool ReadLine(char* buffer, std::size_t size) = 0;
  /// Back to the first line.
  virtual void Rewind() = 0;
  /// Size of the stored bytes, line ends and all. Leaves the position where it was at the start.
  virtual std::uint64_t SizeAndRewind() = 0;
};

/// Either an object, or null and the system error that says why.
template <typename T>
struct Acquired {
  std::unique_ptr<T> object;
  std::uint32_t error = 0;
  explicit operator bool() const { return object != nullptr; }
};

/// The result of reading one line from the console.
enum class ConsoleLine { kRead, kTooLong };

class Platform {
 public:
  virtual ~Platform() = default;

  /// Path of the host's executable as it fits a 260-byte buffer.
  virtual std::string HostExecutable() = 0;
  /// The system's default language identifier, such as kUsEnglish.
  virtual std::uint32_t SystemLanguage() = 0;
  /// Whether a file or folder of that name exists.
  virtual bool PathExists(const std::string& path) = 0;

  /// A pipe whose ends a process can inherit. `commandLine` is the command that it is made for.
  virtual Acquired<Pipe> CreatePipe(const std::string& commandLine) = 0;
  /// Starts the interpreter with `commandLine` (begins with "/c "). With `output`, standard output
  /// and standard error go to its write end and the window stays hidden; without, they are the
  /// host's own.
  virtual Acquired<Process> StartInterpreter(const std::string& commandLine, bool inheritHandles,
                                             Pipe* output) = 0;
  /// The standard library's `system`; its result is of no use to anyone here.
  virtual void RunSystem(const std::string& command) = 0;

  /// Opens `path` for reading in text mode; null when it cannot be opened.
  virtual std::unique_ptr<TextFile> OpenText(const std::string& path) = 0;

  /// Writes to standard output, at once.
  virtual void WriteConsole(std::string_view text) = 0;
  /// Reads one line from standard input into `buffer`, without its line end, zero-terminated. The
  /// end of the input reads as an empty line. Of a line that does not fit, the rest is read and
  /// dropped, and the answer is kTooLong.
  virtual ConsoleLine ReadConsoleLine(char* buffer, std::size_t size) = 0;

  /// Ends the process: a text was about to leave its buffer.
  [[noreturn]] virtual void FailRangeCheck() = 0;
};

/// The machine that the modules see: frame/windows in the library, elsewhere the one that is in use
/// on this thread (frame/bound).
Platform& Machine();

}  // namespace pq
