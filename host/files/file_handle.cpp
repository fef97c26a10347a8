#include "host/files/file_handle.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#ifdef _WIN32
#include <io.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace host {
namespace {

// The systems' calls take a part of it at most.
constexpr std::size_t kLargestPart = 1U << 30;

#ifdef _WIN32
auto WritePart(int file, const char* bytes, std::size_t size) {
  return _write(file, bytes, static_cast<unsigned>(size));
}
auto ReadPart(int file, char* bytes, std::size_t size) {
  return _read(file, bytes, static_cast<unsigned>(size));
}
int CloseFile(int file) { return _close(file); }
auto MeasureFile(int file) { return _filelengthi64(file); }
bool MoveTo(int file, std::uint64_t offset) {
  return _lseeki64(file, static_cast<std::int64_t>(offset), SEEK_SET) >= 0;
}
#else
auto WritePart(int file, const char* bytes, std::size_t size) { return write(file, bytes, size); }
auto ReadPart(int file, char* bytes, std::size_t size) { return read(file, bytes, size); }
int CloseFile(int file) { return close(file); }
off_t MeasureFile(int file) {
  struct stat facts {};
  return fstat(file, &facts) == 0 ? facts.st_size : 0;
}
bool MoveTo(int file, std::uint64_t offset) {
  return lseek(file, static_cast<off_t>(offset), SEEK_SET) >= 0;
}
#endif

}  // namespace

bool FileHandle::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto done = WritePart(descriptor, bytes.data(), std::min(bytes.size(), kLargestPart));
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(done));
  }
  return true;
}

std::size_t FileHandle::Read(char* bytes, std::size_t size) const {
  std::size_t count = 0;
  while (count < size) {
    const auto done = ReadPart(descriptor, bytes + count, std::min(size - count, kLargestPart));
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) break;
    count += static_cast<std::size_t>(done);
  }
  return count;
}

std::size_t FileHandle::ReadAt(std::uint64_t offset, char* bytes, std::size_t size) const {
  return MoveTo(descriptor, offset) ? Read(bytes, size) : 0;
}

std::uint64_t FileHandle::Size() const {
  const auto size = MeasureFile(descriptor);
  return size < 0 ? 0 : static_cast<std::uint64_t>(size);
}

bool FileHandle::Close() {
  if (!IsOpen()) return true;
  return CloseFile(std::exchange(descriptor, kClosed)) == 0;
}

}  // namespace host
