// Runs a program, silently, and prints how many bytes it had in memory at most. A program of its
// own: what its child takes counts from the memory of whoever started it.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int /*argc*/, char** argv) {
  const pid_t child = fork();
  if (child == 0) {
    const bool isSilent = std::freopen("/dev/null", "w", stdout) != nullptr &&
                          std::freopen("/dev/null", "w", stderr) != nullptr;
    if (isSilent) execv(argv[1], argv + 1);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status)) return 1;
  constexpr int kNotStarted = 127;
  if (WEXITSTATUS(status) == kNotStarted) return 1;
  constexpr long kKibibyte = 1024;
  std::printf("%ld\n", usage.ru_maxrss * kKibibyte);
  return 0;
}
