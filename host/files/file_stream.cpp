#include "host/files/file_stream.h"

#include <utility>

namespace host {
bool FileStream::Open(const std::filesystem::path& path) {
  buffer.Close();
  buffer.file = CreateOwnFile(path);
  rdbuf(&buffer);  // and forgets what went wrong before
  return IsOpen();
}

bool FileStream::Close() {
  const bool isClosed = buffer.Close();
  if (!isClosed) setstate(badbit);
  return good();
}

bool FileStream::Buffer::Close() {
  std::FILE* const closed = std::exchange(file, nullptr);
  return closed == nullptr || std::fclose(closed) == 0;
}

FileStream::Buffer::int_type FileStream::Buffer::overflow(int_type byte) {
  if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
  const char one = traits_type::to_char_type(byte);
  return xsputn(&one, 1) == 1 ? byte : traits_type::eof();
}

std::streamsize FileStream::Buffer::xsputn(const char* bytes, std::streamsize count) {
  if (file == nullptr) return 0;
  return static_cast<std::streamsize>(std::fwrite(bytes, 1, static_cast<std::size_t>(count), file));
}

int FileStream::Buffer::sync() { return file != nullptr && std::fflush(file) == 0 ? 0 : -1; }

}  // namespace host
