#include "host/live/interruption.h"

#include <signal.h>

#include <atomic>

namespace host {
namespace {

std::atomic<bool> requested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");
struct sigaction before;

void OnInterrupt(int /*signal*/) { requested = true; }

}  // namespace

bool IsInterruptionRequested() { return requested; }

InterruptionWatch::InterruptionWatch() {
  requested = false;
  struct sigaction action {};
  action.sa_handler = &OnInterrupt;
  // The second time, the system's default ends the program. A waiting read goes on.
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  sigaction(SIGINT, &action, &before);
}

InterruptionWatch::~InterruptionWatch() { sigaction(SIGINT, &before, nullptr); }

}  // namespace host
