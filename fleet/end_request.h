// Somebody wants a worker to end: the signals INT, TERM and HUP.
#pragma once

#include <chrono>
#include <csignal>

namespace fleet {

/// From its beginning on, for this process and those that it forks, these signals wait until
/// somebody asks for them: work in a transaction is not cut.
class EndRequest {
 public:
  EndRequest();

  /// Whether one of them came. Not waiting.
  bool IsMade();
  /// Waits for one of them, for so long at most. Whether one came. Who asks is alive, which the
  /// service manager is told.
  bool Sleep(std::chrono::milliseconds time);
  /// Waits for one of them, or for the end of a process that this one forked. True for the former.
  bool Await();

 private:
  sigset_t ends;          ///< the signals
  sigset_t endsAndChild;  ///< with the one for a process' end
  bool isMade = false;
};

}  // namespace fleet
