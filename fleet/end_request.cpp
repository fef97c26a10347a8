#include "fleet/end_request.h"

#include <cerrno>
#include <ctime>

#include "fleet/watchdog.h"

namespace fleet {

EndRequest::EndRequest() {
  sigemptyset(&ends);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&ends, signal);
  endsAndChild = ends;
  sigaddset(&endsAndChild, SIGCHLD);
  sigprocmask(SIG_BLOCK, &endsAndChild, nullptr);
}

bool EndRequest::IsMade() { return Sleep(std::chrono::milliseconds(0)); }

bool EndRequest::Sleep(std::chrono::milliseconds time) {
  TellAlive();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  const timespec length{.tv_sec = seconds.count(),
                        .tv_nsec = std::chrono::nanoseconds(time - seconds).count()};
  if (!isMade) isMade = sigtimedwait(&ends, nullptr, &length) > 0;
  return isMade;
}

bool EndRequest::Await() {
  int signal = -1;
  do {
    signal = sigwaitinfo(&endsAndChild, nullptr);
  } while (signal < 0 && errno == EINTR);
  if (signal != SIGCHLD) isMade = true;
  return signal != SIGCHLD;
}

}  // namespace fleet
