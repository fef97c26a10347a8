// The host's side of the logger: where the log lines go and where the log folder is.
#pragma once

#include <functional>
#include <string>

namespace host {

struct LogLine {
  unsigned level = 0;
  std::string file;  ///< the module's source file, such as "pqmodules/rbmcinfo"
  int line = 0;
  std::string text;  ///< with its "[repo] " prefix; bytes in the machine's code page
};

/// Has `sink` see every log line from now on; an empty function ends that.
LOGGER_API void SetLogSink(std::function<void(const LogLine&)> sink);

/// Sets what LogKit::GetLogDir answers. A missing backslash at the end is added.
LOGGER_API void SetLogFolder(const std::string& folder);

}  // namespace host
