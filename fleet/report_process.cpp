#include "fleet/report_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "host/files/file_handle.h"

extern char** environ;

namespace fleet {
namespace {

constexpr char kThisProgram[] = "/proc/self/exe";
constexpr rlim_t kMostMemory = rlim_t{2} << 30;
constexpr rlim_t kMostSeconds = 20;
constexpr std::size_t kMostReportBytes = std::size_t{512} << 20;

void Limit(pid_t process) {
  const rlimit memory{kMostMemory, kMostMemory};
  const rlimit seconds{kMostSeconds, kMostSeconds};
  prlimit(process, RLIMIT_AS, &memory, nullptr);
  prlimit(process, RLIMIT_CPU, &seconds, nullptr);
}

}  // namespace

std::optional<std::string> RunReport(const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
  const host::FileHandle reading(ends[0]);
  host::FileHandle writing(ends[1]);
  std::string program = "pqfleet";
  std::vector<std::string> words = arguments;
  std::vector<char*> pointers{program.data()};
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, writing.Descriptor(), STDOUT_FILENO);
  pid_t process = 0;
  const int failure =
      posix_spawn(&process, kThisProgram, &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  writing.Close();
  if (failure != 0) return std::nullopt;
  Limit(process);
  std::string output;
  std::array<char, 1 << 16> buffer{};
  while (const std::size_t size = reading.Read(buffer.data(), buffer.size())) {
    if (output.size() + size > kMostReportBytes) {
      kill(process, SIGKILL);
      break;
    }
    output.append(buffer.data(), size);
  }
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
  return output;
}

}  // namespace fleet
