#include "fleet/isolation.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <malloc.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <system_error>
#include <vector>

namespace fleet {
namespace {

using Clock = std::chrono::steady_clock;

// How the process ends without an answer.
constexpr int kNoMemory = 70;
constexpr int kThrew = 71;
constexpr int kNoSandbox = 72;
constexpr int kNotWritten = 73;

constexpr int kAnswer = 0;  ///< the process' one descriptor

#if defined(__x86_64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr unsigned kArchitecture = AUDIT_ARCH_AARCH64;
#endif

constexpr std::array kAllowedCalls = {
    SYS_write,          SYS_brk,         SYS_munmap,        SYS_mremap,
    SYS_madvise,        SYS_exit_group,  SYS_exit,          SYS_futex,
    SYS_getpid,         SYS_gettid,      SYS_clock_gettime, SYS_clock_getres,
    SYS_close,          SYS_getrandom,   SYS_rt_sigreturn,  SYS_rt_sigaction,
    SYS_rt_sigprocmask, SYS_gettimeofday};

/// Their third argument says whether memory may be executed.
constexpr std::array kMemoryCalls = {SYS_mmap, SYS_mprotect};

constexpr sock_filter Statement(unsigned code, unsigned value) {
  return BPF_STMT(static_cast<unsigned short>(code), value);
}
constexpr sock_filter Jump(unsigned code, unsigned value, unsigned char ifTrue,
                           unsigned char ifFalse) {
  return BPF_JUMP(static_cast<unsigned short>(code), value, ifTrue, ifFalse);
}
constexpr unsigned kLoad = BPF_LD | BPF_W | BPF_ABS;
constexpr unsigned kIfEqual = BPF_JMP | BPF_JEQ | BPF_K;
constexpr unsigned kIfAnyBit = BPF_JMP | BPF_JSET | BPF_K;
constexpr sock_filter kAllow = Statement(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
constexpr sock_filter kKill = Statement(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS);

/// Where the lower half of a call's argument is.
constexpr unsigned PlaceOfArgument(unsigned number) {
  return static_cast<unsigned>(offsetof(seccomp_data, args) + number * sizeof(std::uint64_t));
}

/// The calls that the process `self` may make.
std::vector<sock_filter> MakeFilter(pid_t self) {
  std::vector<sock_filter> filter = {Statement(kLoad, offsetof(seccomp_data, arch)),
                                     Jump(kIfEqual, kArchitecture, 1, 0), kKill,
                                     Statement(kLoad, offsetof(seccomp_data, nr))};
  const auto add = [&](std::initializer_list<sock_filter> more) {
    filter.insert(filter.end(), more);
  };
  for (const long call : kAllowedCalls) {
    add({Jump(kIfEqual, static_cast<unsigned>(call), 0, 1), kAllow});
  }
  for (const long call : kMemoryCalls) {
    add({Jump(kIfEqual, static_cast<unsigned>(call), 0, 4), Statement(kLoad, PlaceOfArgument(2)),
         Jump(kIfAnyBit, PROT_EXEC, 0, 1), kKill, kAllow});
  }
  // What a failed assertion ends with; no other process gets a signal.
  add({Jump(kIfEqual, SYS_tgkill, 0, 4), Statement(kLoad, PlaceOfArgument(0)),
       Jump(kIfEqual, static_cast<unsigned>(self), 0, 1), kAllow, kKill});
  filter.push_back(kKill);
  return filter;
}

void Limit(__rlimit_resource resource, std::uint64_t most) {
  const rlimit limit{most, most};
  if (setrlimit(resource, &limit) != 0) _exit(kNoSandbox);
}

/// In the process: gives away all that the work does not need.
void Confine(const IsolationLimits& limits, Sandbox sandbox) {
  prctl(PR_SET_DUMPABLE, 0);
  // Otherwise malloc reads from files: how many processors there are when it is out of memory, and
  // how the system gives memory before it gives any back.
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_TRIM_THRESHOLD, -1);
  // Large pieces come from the heap, too, where the next one finds pages that are there already.
  constexpr int kHugePiece = 32 << 20;  // the most that malloc takes
  mallopt(M_MMAP_THRESHOLD, kHugePiece);
  constexpr int kStep = 4 << 20;
  mallopt(M_TOP_PAD, kStep);
  Limit(RLIMIT_AS, limits.memory);
  Limit(RLIMIT_FSIZE, 0);
  Limit(RLIMIT_NPROC, 0);
  Limit(RLIMIT_CORE, 0);
  // A second later it is killed without a word.
  const rlimit cpu{limits.cpuSeconds, limits.cpuSeconds + 1};
  if (setrlimit(RLIMIT_CPU, &cpu) != 0) _exit(kNoSandbox);
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) _exit(kNoSandbox);
  if (sandbox == Sandbox::kLimits) return;
  std::vector<sock_filter> filter = MakeFilter(getpid());
  const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
  if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) _exit(kNoSandbox);
}

/// The process: never returns.
[[noreturn]] void Work(const std::function<std::string()>& work, int pipe, pid_t parent,
                       const IsolationLimits& limits, Sandbox sandbox) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kNoSandbox);
  // A crash or a limit ends it, whatever this program does about signals.
  for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGXCPU, SIGPIPE}) {
    std::signal(signal, SIG_DFL);
  }
  if (dup2(pipe, kAnswer) < 0 || close_range(kAnswer + 1, ~0U, 0) != 0) _exit(kNoSandbox);
  Confine(limits, sandbox);
  try {
    const std::string answer = work();
    for (std::size_t at = 0; at < answer.size();) {
      const ssize_t written = write(kAnswer, answer.data() + at, answer.size() - at);
      if (written <= 0) _exit(kNotWritten);
      at += static_cast<std::size_t>(written);
    }
    _exit(0);
  } catch (const std::bad_alloc&) {
    _exit(kNoMemory);
  } catch (...) {
    _exit(kThrew);
  }
}

/// On a machine that stood still meanwhile, or has too much to do, that tells nothing of the
/// recording: what computes without an end meets the limit of CPU.
void NoteOverdue(const IsolationLimits& limits, IsolatedAnswer& isolated) {
  isolated.failure = fmt::format("parsing took longer than {} ms", limits.time.count());
  isolated.mayPass = true;
}

/// Reads to the end of the pipe, or notes why it did not come to that.
void ReadAnswer(int pipe, const IsolationLimits& limits, Clock::time_point end,
                IsolatedAnswer& isolated) {
  std::string& answer = isolated.answer;
  constexpr std::size_t kChunk = 1 << 18;
  std::size_t size = 0;
  while (true) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    pollfd ready{pipe, POLLIN, 0};
    const int count = left.count() <= 0 ? 0 : poll(&ready, 1, static_cast<int>(left.count()));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return NoteOverdue(limits, isolated);
    answer.resize(size + kChunk);
    const ssize_t got = read(pipe, answer.data() + size, kChunk);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    size += static_cast<std::size_t>(got);
    if (size > limits.answer) {
      isolated.failure = fmt::format("its rows are more than {} MiB", limits.answer >> 20);
      return;
    }
  }
  answer.resize(size);
}

/// Waits until the process is over, or `end`.
bool AwaitEnd(pid_t child, Clock::time_point end) {
  const int process = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
  if (process < 0) return true;  // an old system: wait for it without a limit
  pollfd over{process, POLLIN, 0};
  int count = -1;
  do {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    count = poll(&over, 1, std::max(0, static_cast<int>(left.count())));
  } while (count < 0 && errno == EINTR);
  close(process);
  return count > 0;
}

/// How the process ended; no failure when it ended well.
void Explain(int status, const IsolationLimits& limits, IsolatedAnswer& isolated) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    if (signal == SIGSYS) {
      isolated.failure = "the parser did what it may not do, and was ended";
    } else if (signal == SIGXCPU) {
      isolated.failure = fmt::format("parsing needs more than {} s of CPU", limits.cpuSeconds);
    } else {
      isolated.failure = fmt::format("the parser was ended by signal {} ({})", signal,
                                     sigabbrev_np(signal) == nullptr ? "?" : sigabbrev_np(signal));
      isolated.mayPass = true;
    }
    return;
  }
  switch (WEXITSTATUS(status)) {
    case 0:
      return;
    case kNoMemory:
      isolated.failure = fmt::format("parsing needs more than {} MiB", limits.memory >> 20);
      return;
    case kNoSandbox:
      isolated.failure = "the parser could not be confined";
      isolated.mayPass = true;
      return;
    default:
      isolated.failure = fmt::format("the parser ended with code {}", WEXITSTATUS(status));
  }
}

}  // namespace

IsolatedAnswer RunIsolated(const std::function<std::string()>& work, const IsolationLimits& limits,
                           Sandbox sandbox) {
  std::array<int, 2> ends{};
  const auto fail = [](const char* step) {
    throw std::system_error(errno, std::generic_category(), step);
  };
  if (pipe2(ends.data(), O_CLOEXEC) != 0) fail("pipe");
  constexpr int kRoom = 1 << 20;
  fcntl(ends[1], F_SETPIPE_SZ, kRoom);  // as much as it can; less only means more turns
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) Work(work, ends[1], parent, limits, sandbox);
  const int forkError = errno;
  close(ends[1]);
  if (child < 0) {
    close(ends[0]);
    errno = forkError;
    fail("fork");
  }
  const Clock::time_point end = Clock::now() + limits.time;
  IsolatedAnswer isolated;
  try {
    ReadAnswer(ends[0], limits, end, isolated);
  } catch (const std::bad_alloc&) {
    isolated.failure = "its rows do not fit into this machine's memory";
    isolated.mayPass = true;
  }
  // It may close the pipe and go on all the same.
  if (isolated.failure.empty() && !AwaitEnd(child, end)) NoteOverdue(limits, isolated);
  if (!isolated.failure.empty()) kill(child, SIGKILL);
  close(ends[0]);
  int status = 0;
  rusage usage{};
  while (wait4(child, &status, 0, &usage) < 0 && errno == EINTR) {
  }
  constexpr std::int64_t kMillion = 1'000'000;
  isolated.cpuMicroseconds = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * kMillion +
                             usage.ru_utime.tv_usec + usage.ru_stime.tv_usec;
  if (isolated.failure.empty()) Explain(status, limits, isolated);
  if (!isolated.failure.empty()) isolated.answer.clear();
  return isolated;
}

}  // namespace fleet
