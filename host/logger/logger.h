// The host's side of the logger: where a thread's log lines go, and where its log folder is.
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace host {

struct LogLine {
  unsigned level = 0;
  std::string file;  ///< the module's source file, such as "pqmodules/rbmcinfo"
  int line = 0;
  std::string text;  ///< with its "[repo] " prefix; bytes in the machine's code page
};

// Both hold for the calling thread until they are destroyed, on that thread; then the one from
// before is in use again. They may be nested.

/// Has `sink` see every log line.
class LOGGER_API LogSinkInUse {
 public:
  explicit LogSinkInUse(std::function<void(const LogLine&)> sink);
  LogSinkInUse(const LogSinkInUse&) = delete;
  LogSinkInUse& operator=(const LogSinkInUse&) = delete;
  ~LogSinkInUse();

  /// Has `stream`, which lives until the line is handed on, keep what is written to it.
  void Begin(std::ostream& stream) noexcept;
  /// Hands on the line that was begun last. What `sink` throws is kept: a line is written by a
  /// destructor, out of which nothing can be thrown.
  void Take(unsigned level, const char* file, int line, std::ostream& stream) noexcept;
  /// Throws what the sink threw first, and forgets it. To be called after each step that logs.
  void RethrowFailure();

 private:
  class Text;

  std::function<void(const LogLine&)> sink;
  std::vector<std::unique_ptr<Text>> texts;  ///< of lines, one within the other, to be used again
  std::size_t openLines = 0;
  mutable std::exception_ptr failure;  ///< kept through sinkInUse, also of a const object
  LogSinkInUse* before;
};

/// Sets the answer of LogKit::GetLogDir; a missing backslash at the end is added. `onAsked` hears
/// of each call.
class LOGGER_API LogFolderInUse {
 public:
  explicit LogFolderInUse(std::string folder, std::function<void()> onAsked = {});
  LogFolderInUse(const LogFolderInUse&) = delete;
  LogFolderInUse& operator=(const LogFolderInUse&) = delete;
  ~LogFolderInUse();

  const std::string& Path() const { return folder; }
  void TellAsked() const {
    if (onAsked) onAsked();
  }

 private:
  std::string folder;
  std::function<void()> onAsked;
  const LogFolderInUse* before;
};

}  // namespace host
