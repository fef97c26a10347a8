#include "host/logger/logger.h"

#include <cstring>
#include <new>
#include <utility>

#include "frame/logkit/log.h"

namespace host {
namespace {

thread_local LogSinkInUse* sinkInUse = nullptr;
thread_local const LogFolderInUse* folderInUse = nullptr;

}  // namespace

LogSinkInUse::LogSinkInUse(std::function<void(const LogLine&)> given)
    : sink(std::move(given)), before(std::exchange(sinkInUse, this)) {}

LogSinkInUse::~LogSinkInUse() { sinkInUse = before; }

void LogSinkInUse::Take(unsigned level, const char* file, int line,
                        std::ostringstream&& text) noexcept {
  try {
    // A stream for which there was no memory has cut the line, and only says so.
    if (!text) throw std::bad_alloc();
    sink({level, file, line, std::move(text).str()});
  } catch (...) {
    if (!failure) failure = std::current_exception();
  }
}

void LogSinkInUse::RethrowFailure() {
  if (failure) std::rethrow_exception(std::exchange(failure, nullptr));
}

LogFolderInUse::LogFolderInUse(std::string given, std::function<void()> heard)
    : folder(std::move(given)),
      onAsked(std::move(heard)),
      before(std::exchange(folderInUse, this)) {
  if (!folder.ends_with('\\')) folder += '\\';
}

LogFolderInUse::~LogFolderInUse() { folderInUse = before; }

}  // namespace host

namespace LogKit {

Log::Log(unsigned level, const char* file, int line) : level(level), file(file), line(line) {
  // A text that nobody takes is not put together: a tool's whole output can be one.
  if (host::sinkInUse == nullptr) stream.setstate(std::ios::badbit);
}

Log::~Log() {
  if (host::sinkInUse != nullptr) host::sinkInUse->Take(level, file, line, std::move(stream));
}

std::ostringstream& Log::Stream() { return stream; }

int GetLogDir(char* buffer, std::size_t size) {
  if (host::folderInUse != nullptr) host::folderInUse->TellAsked();
  const std::string folder = host::folderInUse == nullptr ? "" : host::folderInUse->Path();
  const bool fits = folder.size() < size;
  if (size > 0) buffer[0] = '\0';
  if (!fits) return -1;
  std::memcpy(buffer, folder.c_str(), folder.size() + 1);
  return static_cast<int>(folder.size());
}

}  // namespace LogKit
