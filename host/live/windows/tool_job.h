// A tool that may run only so long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace host {

/// Ends a process, and all that it started, once the time is up. Processes that still run when this
/// object is destroyed are left alone.
class LimitedTool {
 public:
  /// `process` is a process handle; started suspended, so that none of its children is missed.
  LimitedTool(void* process, std::chrono::seconds limit);
  LimitedTool(const LimitedTool&) = delete;
  LimitedTool& operator=(const LimitedTool&) = delete;
  ~LimitedTool();

  /// Stops the clock. True when something was ended before.
  bool Stop();

 private:
  void EndWhenTimeIsUp(std::chrono::seconds limit);

  void* job = nullptr;
  void* process = nullptr;  ///< a handle of our own; the one given may be closed at any time
  std::mutex mutex;
  std::condition_variable wake;
  bool stopped = false;  ///< guarded by `mutex`
  bool ended = false;    ///< guarded by `mutex`
  std::thread clock;
};

}  // namespace host
