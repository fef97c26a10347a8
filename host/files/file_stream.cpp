#include "host/files/file_stream.h"

#include <cerrno>

namespace host {

bool FileStream::Buffer::Write(std::string_view text) {
  if (file.Write(text)) return true;
  if (error == 0) error = errno;
  return false;
}

int FileStream::Buffer::sync() {
  const std::string_view waiting(pbase(), static_cast<std::size_t>(pptr() - pbase()));
  setp(bytes.data(), bytes.data() + bytes.size());
  return Write(waiting) ? 0 : -1;
}

FileStream::Buffer::int_type FileStream::Buffer::overflow(int_type c) {
  if (sync() != 0) return traits_type::eof();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return sputc(traits_type::to_char_type(c));
}

std::streamsize FileStream::Buffer::xsputn(const char* text, std::streamsize size) {
  if (size < epptr() - pptr()) return std::streambuf::xsputn(text, size);
  const std::string_view large(text, static_cast<std::size_t>(size));
  return sync() == 0 && Write(large) ? size : 0;
}

bool FileStream::Close() {
  flush();
  if (!buffer.file.Close() && buffer.error == 0) buffer.error = errno;
  if (buffer.error != 0) errno = buffer.error;
  return buffer.error == 0 && good();
}

}  // namespace host
