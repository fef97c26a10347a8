#include "host/program/deadline.h"

#include <fmt/format.h>

#include <cstdlib>
#include <utility>

#include "host/files/partial_file.h"

namespace host {

std::string DescribeOverdue(unsigned seconds) {
  return fmt::format("took longer than {} second{} (--time-limit)", seconds,
                     seconds == 1 ? "" : "s");
}

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

std::unique_ptr<Deadline> EndProgramAfter(std::optional<unsigned> seconds, const Console& console,
                                          int exitCode) {
  if (!seconds) return nullptr;
  return std::make_unique<Deadline>(std::chrono::seconds(*seconds),
                                    [&console, exitCode, time = *seconds] {
                                      Complain(console, DescribeOverdue(time));
                                      RemovePartialFiles();
                                      std::_Exit(exitCode);
                                    });
}

}  // namespace host
