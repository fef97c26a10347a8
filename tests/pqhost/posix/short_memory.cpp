// Loaded before the C library: a machine that is short of memory for a moment. From main() on,
//   PQ_REFUSED=N  allocation number N is refused, once, whoever asks; the first is 0
//   PQ_COUNTED=1  how many there were is told on standard error at the end
#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

extern "C" {

// What the C library calls its own.
// NOLINTBEGIN(readability-identifier-naming)
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
// NOLINTEND(readability-identifier-naming)

}  // extern "C"

namespace {

std::atomic<long long> made = 0;
std::atomic<bool> isInMain = false;
long long refused = -1;
int (*programMain)(int, char**, char**) = nullptr;

bool IsRefused() {
  if (!isInMain || made++ != refused) return false;
  errno = ENOMEM;
  return true;
}

int RunMain(int argc, char** argv, char** environment) {
  if (const char* number = std::getenv("PQ_REFUSED")) refused = std::atoll(number);
  isInMain = true;
  const int exitCode = programMain(argc, argv, environment);
  isInMain = false;
  if (std::getenv("PQ_COUNTED") != nullptr) std::fprintf(stderr, "%lld\n", made.load());
  return exitCode;
}

}  // namespace

extern "C" {

void* malloc(size_t size) { return IsRefused() ? nullptr : __libc_malloc(size); }

void* calloc(size_t count, size_t size) {
  return IsRefused() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
  return IsRefused() ? nullptr : __libc_realloc(block, size);
}

// NOLINTNEXTLINE(readability-identifier-naming)
int __libc_start_main(int (*main)(int, char**, char**), int argc, char** argv, void (*first)(),
                      void (*last)(), void (*loaderLast)(), void* stackEnd) {
  using Start =
      int (*)(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*);
  programMain = main;
  return reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"))(&RunMain, argc, argv, first,
                                                                        last, loaderLast, stackEnd);
}

}  // extern "C"
