#include "fleet/team.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>
#include <system_error>

namespace fleet {
namespace {

pid_t Start(std::size_t number, const std::function<int(std::size_t number)>& work) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (child > 0) return child;
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(1);
  _exit(work(number));
}

}  // namespace

int RunTeam(std::size_t count, const std::function<int(std::size_t number)>& work,
            EndRequest& endRequest) {
  std::map<pid_t, std::size_t> running;
  for (std::size_t number = 0; number < count; ++number) running[Start(number, work)] = number;
  int exitCode = 0;
  while (!running.empty()) {
    if (endRequest.Await()) {
      for (const auto& [process, number] : running) kill(process, SIGTERM);
    }
    // Several ends may be one signal.
    int status = 0;
    for (pid_t ended = waitpid(-1, &status, WNOHANG); ended > 0;
         ended = waitpid(-1, &status, WNOHANG)) {
      const auto found = running.find(ended);
      if (found == running.end()) continue;
      const std::size_t number = found->second;
      running.erase(found);
      if (WIFEXITED(status)) {
        exitCode = std::max(exitCode, WEXITSTATUS(status));
      } else if (!endRequest.IsMade()) {
        running[Start(number, work)] = number;
      }
    }
  }
  return exitCode;
}

}  // namespace fleet
