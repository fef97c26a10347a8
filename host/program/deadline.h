// A time by which work has to be done, also work that cannot be asked to end.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace host {

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

}  // namespace host
