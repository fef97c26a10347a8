// A tool and all that it starts, as one job of the system.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "host/live/tool_limits.h"

namespace host {

/// Holds a process, and all that it starts, to its limits. None of them outlives this object, nor
/// the host, however that ends.
class ToolJob {
 public:
  /// `process` is a process handle; started suspended, so that none of its children is missed.
  ToolJob(void* process, const ToolLimits& limits);
  ToolJob(const ToolJob&) = delete;
  ToolJob& operator=(const ToolJob&) = delete;
  ~ToolJob();

  /// Which limits were met.
  struct Met {
    bool time = false;  ///< something was ended
    bool memory = false;
  };
  /// Stops the clock. Memory stays limited.
  Met Stop();

  /// Whether any of its processes runs.
  bool IsRunning() const;

 private:
  void EndWhenTimeIsUp();
  bool HasMetMemory();

  ToolLimits limits;
  void* job = nullptr;
  void* process = nullptr;  ///< a handle of our own; the one given may be closed at any time
  void* reports = nullptr;  ///< a completion port; null without a memory limit
  std::mutex mutex;
  std::condition_variable wake;
  bool stopped = false;  ///< guarded by `mutex`
  bool ended = false;    ///< guarded by `mutex`
  std::thread clock;
};

}  // namespace host
