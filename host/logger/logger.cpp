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

constexpr std::size_t kLongText = 1 << 16;

/// A string stream doubles its room, old and new at once; a tool's whole output can be one line.
class TextBuffer final : public std::streambuf {
 public:
  explicit TextBuffer(std::string& text) : text(text) {}

 protected:
  int_type overflow(int_type c) override {
    if (!traits_type::eq_int_type(c, traits_type::eof())) text += traits_type::to_char_type(c);
    return traits_type::not_eof(c);
  }
  std::streamsize xsputn(const char* more, std::streamsize count) override {
    const auto size = static_cast<std::size_t>(count);
    if (size >= kLongText) text.reserve(text.size() + size);
    text.append(more, size);
    return count;
  }

 private:
  std::string& text;
};

}  // namespace

/// A line with its stream: to make one takes longer than to write a line.
struct LogSinkInUse::OpenLine {
  OpenLine() { stream.std::ios::rdbuf(&buffer); }

  void Clear() {
    if (line.text.capacity() > kLongText) {
      line.text = {};
    } else {
      line.text.clear();
    }
    stream.clear();
    stream.flags(std::ios::skipws | std::ios::dec);
    stream.precision(kUsualPrecision);
    stream.width(0);
    stream.fill(' ');
  }

  static constexpr std::streamsize kUsualPrecision = 6;

  LogLine line;
  TextBuffer buffer{line.text};
  std::ostringstream stream;
};

LogSinkInUse::LogSinkInUse(std::function<void(const LogLine&)> given)
    : sink(std::move(given)), before(std::exchange(sinkInUse, this)) {}

LogSinkInUse::~LogSinkInUse() { sinkInUse = before; }

std::ostringstream* LogSinkInUse::Begin() noexcept {
  try {
    if (openLines == lines.size()) lines.push_back(std::make_unique<OpenLine>());
    return &lines[openLines++]->stream;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void LogSinkInUse::Take(unsigned level, const char* file, int line,
                        const std::ostringstream& stream) noexcept {
  const bool isOpen = openLines > 0 && &stream == &lines[openLines - 1]->stream;
  try {
    // A stream for which there was no memory has cut the line, and only says so.
    if (!stream || !isOpen) throw std::bad_alloc();
    LogLine& taken = lines[openLines - 1]->line;
    taken.level = level;
    taken.file = file;
    taken.line = line;
    sink(taken);
  } catch (...) {
    if (!failure) failure = std::current_exception();
  }
  if (isOpen) lines[--openLines]->Clear();
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

Log::Log(unsigned level, const char* file, int line)
    : level(level),
      file(file),
      line(line),
      stream(host::sinkInUse == nullptr ? nullptr : host::sinkInUse->Begin()) {
  if (stream != nullptr) return;
  // A text that nobody takes is not put together: a tool's whole output can be one.
  stream = &unheard.emplace();
  stream->setstate(std::ios::badbit);
}

Log::~Log() {
  if (host::sinkInUse != nullptr) host::sinkInUse->Take(level, file, line, *stream);
}

std::ostringstream& Log::Stream() { return *stream; }

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
