// The host's logger as the plug-in sees it: one object per log line, written when it is destroyed.
//
// LOGGER_API comes from the build: it marks the exports of logger.dll, which everyone else imports.
#pragma once

#include <cstddef>
#include <sstream>

namespace LogKit {

/// Collects one log line. The plug-in uses the levels 1 (error), 3 (progress) and 4 (detail).
class LOGGER_API Log {
 public:
  /// `file` must outlive the object; `line` is the source line.
  Log(unsigned level, const char* file, int line);
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;
  /// Writes the line.
  virtual ~Log();
  /// The text of the line so far; stream into it.
  std::ostringstream& Stream();

 private:
  unsigned level;
  const char* file;
  int line;
  std::ostringstream stream;
};

/// Fills `buffer` (`size` bytes, the plug-in passes 256) with the log folder as a path that ends
/// with a backslash. Returns the length of the path, or -1 when it does not fit; the buffer then
/// holds the empty text.
LOGGER_API int GetLogDir(char* buffer, std::size_t size);

}  // namespace LogKit
