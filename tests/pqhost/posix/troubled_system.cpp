// Loaded before the C library: a disk that fills up, a drive that no longer answers, a clock that
// jumps. What the variables of the environment say happens:
//   PQ_DISK=PATH   the plain files with PATH in theirs are on this disk
//   PQ_ROOM=BYTES  so many more can be written there
//   PQ_HANGS=1     reading and writing there never end
//   PQ_JUMPING=1   the time of day is a week ahead and a week back by turns
#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

template <typename Function>
Function FindNext(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

bool IsOnDisk(int file) {
  static const char* const kDisk = std::getenv("PQ_DISK");
  struct stat facts {};
  if (kDisk == nullptr || fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t length = readlink(link.c_str(), path.data(), path.size());
  return length > 0 &&
         std::string_view(path.data(), static_cast<std::size_t>(length)).find(kDisk) !=
             std::string_view::npos;
}

void HangOnDisk(int file) {
  static const bool kHangs = std::getenv("PQ_HANGS") != nullptr;
  while (kHangs && IsOnDisk(file)) pause();
}

/// How many of `size` bytes fit, or -1 with errno as it is on a full disk.
ssize_t TakeRoom(int file, size_t size) {
  static const char* const kRoom = std::getenv("PQ_ROOM");
  static size_t left = kRoom == nullptr ? 0 : std::strtoull(kRoom, nullptr, 10);
  if (kRoom == nullptr || !IsOnDisk(file)) return static_cast<ssize_t>(size);
  if (left == 0 && size > 0) {
    errno = ENOSPC;
    return -1;
  }
  const size_t fits = std::min(left, size);
  left -= fits;
  return static_cast<ssize_t>(fits);
}

/// Seconds to be added to the time of day.
time_t Jump() {
  static const bool kJumps = std::getenv("PQ_JUMPING") != nullptr;
  static bool isAhead = false;
  constexpr time_t kWeek = 7 * 24 * 60 * 60;
  if (!kJumps) return 0;
  isAhead = !isAhead;
  return isAhead ? kWeek : -kWeek;
}

}  // namespace

extern "C" {

ssize_t write(int file, const void* bytes, size_t size) {
  static const auto kNext = FindNext<ssize_t (*)(int, const void*, size_t)>("write");
  HangOnDisk(file);
  const ssize_t fits = TakeRoom(file, size);
  return fits < 0 ? fits : kNext(file, bytes, static_cast<size_t>(fits));
}

ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at) {
  static const auto kNext = FindNext<ssize_t (*)(int, const void*, size_t, off64_t)>("pwrite64");
  HangOnDisk(file);
  const ssize_t fits = TakeRoom(file, size);
  return fits < 0 ? fits : kNext(file, bytes, static_cast<size_t>(fits), at);
}

ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
  static const auto kNext = FindNext<ssize_t (*)(int, const void*, size_t, off_t)>("pwrite");
  HangOnDisk(file);
  const ssize_t fits = TakeRoom(file, size);
  return fits < 0 ? fits : kNext(file, bytes, static_cast<size_t>(fits), at);
}

ssize_t read(int file, void* bytes, size_t size) {
  static const auto kNext = FindNext<ssize_t (*)(int, void*, size_t)>("read");
  HangOnDisk(file);
  return kNext(file, bytes, size);
}

int clock_gettime(clockid_t clock, timespec* now) {
  static const auto kNext = FindNext<int (*)(clockid_t, timespec*)>("clock_gettime");
  const int result = kNext(clock, now);
  if (result == 0 && clock == CLOCK_REALTIME) now->tv_sec += Jump();
  return result;
}

int gettimeofday(timeval* now, void* zone) {
  static const auto kNext = FindNext<int (*)(timeval*, void*)>("gettimeofday");
  const int result = kNext(now, zone);
  if (result == 0) now->tv_sec += Jump();
  return result;
}

time_t time(time_t* now) {
  static const auto kNext = FindNext<time_t (*)(time_t*)>("time");
  const time_t result = kNext(nullptr) + Jump();
  if (now != nullptr) *now = result;
  return result;
}

}  // extern "C"
