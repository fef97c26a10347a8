#include "host/program/interruption.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>

#include "host/files/partial_file.h"

namespace host {
namespace {

// Set by signal handlers, or read there.
std::atomic<bool> requested = false;
std::atomic<bool> isWatched = false;
std::atomic<int> exitCodeWhenAsked = 1;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void OnSignal(int signal) {
  if (signal == SIGINT && isWatched && !requested.exchange(true)) return;
  RemovePartialFiles();
  // Nobody is left whom a failure could be told.
  [[maybe_unused]] const auto written = write(STDERR_FILENO, kLastWords.data(), kLastWords.size());
  _exit(exitCodeWhenAsked);
}

}  // namespace

void EndCleanlyWhenAsked(int exitCode) {
  exitCodeWhenAsked = exitCode;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) continue;
    action = {};
    action.sa_handler = &OnSignal;
    action.sa_flags = SA_RESTART;  // A waiting read goes on.
    sigaction(signal, &action, nullptr);
  }
}

bool IsInterruptionRequested() { return requested; }

InterruptionWatch::InterruptionWatch() {
  requested = false;
  isWatched = true;
}

InterruptionWatch::~InterruptionWatch() { isWatched = false; }

}  // namespace host
