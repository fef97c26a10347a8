#include "host/logger/logger.h"

#include <cstring>
#include <utility>

#include "frame/logkit/log.h"

namespace host {
namespace {

struct Logger {
  std::function<void(const LogLine&)> sink;
  std::string folder;
};

Logger& TheLogger() {
  static Logger logger;
  return logger;
}

}  // namespace

void SetLogSink(std::function<void(const LogLine&)> sink) { TheLogger().sink = std::move(sink); }

void SetLogFolder(const std::string& folder) {
  TheLogger().folder = folder;
  if (!folder.ends_with('\\')) TheLogger().folder += '\\';
}

}  // namespace host

namespace LogKit {

Log::Log(unsigned level, const char* file, int line) : level(level), file(file), line(line) {
  // A text that nobody takes is not put together: a tool's whole output can be one.
  if (!host::TheLogger().sink) stream.setstate(std::ios::badbit);
}

Log::~Log() {
  const auto& sink = host::TheLogger().sink;
  if (sink) sink({level, file, line, std::move(stream).str()});
}

std::ostringstream& Log::Stream() { return stream; }

int GetLogDir(char* buffer, std::size_t size) {
  const std::string& folder = host::TheLogger().folder;
  const bool fits = folder.size() < size;
  if (size > 0) buffer[0] = '\0';
  if (!fits) return -1;
  std::memcpy(buffer, folder.c_str(), folder.size() + 1);
  return static_cast<int>(folder.size());
}

}  // namespace LogKit
