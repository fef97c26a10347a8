#include "host/logger/logger.h"

#include <cstring>
#include <new>
#include <streambuf>
#include <utility>

#include "frame/logkit/log.h"

namespace host {
namespace {

thread_local LogSinkInUse* sinkInUse = nullptr;
thread_local const LogFolderInUse* folderInUse = nullptr;

}  // namespace

/// A string stream doubles its room, old and new at once; a tool's whole output can be one line.
class LogSinkInUse::Text final : public std::streambuf {
 public:
  std::string text;

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) text += traits_type::to_char_type(c);
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* more, std::streamsize count) override {
    constexpr std::streamsize kLong = 1 << 16;
    if (count >= kLong) text.reserve(text.size() + static_cast<std::size_t>(count));
    text.append(more, static_cast<std::size_t>(count));
    return count;
  }
};

LogSinkInUse::LogSinkInUse(std::function<void(const LogLine&)> given)
    : sink(std::move(given)), before(std::exchange(sinkInUse, this)) {}

LogSinkInUse::~LogSinkInUse() { sinkInUse = before; }

void LogSinkInUse::Begin(std::ostream& stream) noexcept {
  try {
    if (openLines == texts.size()) texts.push_back(std::make_unique<Text>());
    stream.rdbuf(texts[openLines++].get());
  } catch (const std::bad_alloc&) {
    stream.setstate(std::ios::badbit);
  }
}

void LogSinkInUse::Take(unsigned level, const char* file, int line, std::ostream& stream) noexcept {
  try {
    const bool isOpen = openLines > 0 && stream.rdbuf() == texts[openLines - 1].get();
    std::string text;
    if (isOpen) text = std::exchange(texts[--openLines]->text, {});
    // A stream for which there was no memory has cut the line, and only says so.
    if (!stream || !isOpen) throw std::bad_alloc();
    sink({level, file, line, std::move(text)});
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
  if (host::sinkInUse == nullptr) {
    stream.setstate(std::ios::badbit);
  } else {
    host::sinkInUse->Begin(stream);
  }
}

Log::~Log() {
  if (host::sinkInUse != nullptr) host::sinkInUse->Take(level, file, line, stream);
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
