#include "host/recorded/stored_text.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace host {

namespace {
constexpr char kCtrlZ = '\x1A';
}

StoredText::StoredText(Bytes bytes) : bytes(std::move(bytes)), end(this->bytes.size()) {}

bool StoredText::ReadLine(char* buffer, std::size_t size) {
  if (size < 2 || at == end) return false;
  const char* from = bytes.Text().data() + at;
  const std::size_t room = std::min(size - 1, end - at);
  const auto* lineFeed = static_cast<const char*>(std::memchr(from, '\n', room));
  std::size_t stored = lineFeed != nullptr ? static_cast<std::size_t>(lineFeed - from) + 1 : room;
  // The CR of a CR LF can be the last character that fits: both are one, so both are taken.
  if (lineFeed == nullptr && from[room - 1] == '\r' && at + room < end && from[room] == '\n') {
    ++stored;
  }
  if (const void* ctrlZ = std::memchr(from, kCtrlZ, stored)) {
    end = static_cast<std::size_t>(static_cast<const char*>(ctrlZ) - bytes.Text().data());
    return ReadLine(buffer, size);
  }
  std::size_t length = stored;
  if (stored >= 2 && from[stored - 1] == '\n' && from[stored - 2] == '\r') {
    --length;
    std::memcpy(buffer, from, length - 1);
    buffer[length - 1] = '\n';
  } else {
    std::memcpy(buffer, from, length);
  }
  buffer[length] = '\0';
  at += stored;
  return true;
}

std::uint64_t StoredText::SizeAndRewind() {
  Rewind();
  return bytes.size();
}

}  // namespace host
