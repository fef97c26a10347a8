#include "host/program/deadline.h"

#include <utility>

namespace host {

Deadline::Deadline(std::chrono::milliseconds time, std::function<void()> giveUp)
    : watcher([this, time, giveUp = std::move(giveUp)] {
        std::unique_lock lock(mutex);
        if (!wake.wait_for(lock, time, [this] { return isDone; })) giveUp();
      }) {}

Deadline::~Deadline() {
  {
    const std::lock_guard lock(mutex);
    isDone = true;
  }
  wake.notify_all();
  watcher.join();
}

}  // namespace host
