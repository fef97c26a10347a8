// Ctrl-C ends a collection after the running tool, a second one ends the program at once.
#pragma once

namespace host {

/// Whether Ctrl-C was pressed since the last watch began. May be asked on any thread.
bool IsInterruptionRequested();

/// While it lives, Ctrl-C asks for the end of the collection; before and after, it ends the
/// program. Not more than one at a time.
class InterruptionWatch {
 public:
  InterruptionWatch();
  InterruptionWatch(const InterruptionWatch&) = delete;
  InterruptionWatch& operator=(const InterruptionWatch&) = delete;
  ~InterruptionWatch();
};

}  // namespace host
