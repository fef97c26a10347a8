// A time by which work has to be done, also work that cannot be asked to end.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "host/program/console.h"

namespace host {

/// "took longer than 5 seconds (--time-limit)"
std::string DescribeOverdue(unsigned seconds);

/// Lives as long as the work.
class Deadline {
 public:
  /// Once `time` is over, `giveUp` is called on another thread while the work still runs. It has to
  /// end the program: the destructor then does not return.
  Deadline(std::chrono::milliseconds time, std::function<void()> giveUp);
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;
  ~Deadline();

 private:
  std::mutex mutex;  ///< guards `isDone`, and is kept while giving up
  std::condition_variable wake;
  bool isDone = false;
  std::thread watcher;
};

/// Ends the program after so many seconds with one line, `exitCode` and no half file, unless the
/// result is gone by then. Null when there is no limit. `console` has to outlive it.
std::unique_ptr<Deadline> EndProgramAfter(std::optional<unsigned> seconds, const Console& console,
                                          int exitCode = kExitIncomplete);

}  // namespace host
