// Lets the host follow the work of a loaded library on the machine. The library calls the system
// through a table of addresses in its own image. The host puts its own functions there: they tell
// the observer, feed the recorder and then call the system. The library itself knows nothing of it.
#pragma once

#include <vector>

#include "host/live/live.h"

namespace host {

/// Watches one library from construction to destruction. Not more than one at a time: a function in
/// the table cannot know its object.
class WatchedImports {
 public:
  /// `module` is a handle from LoadLibrary; `watch` has a listener. Functions that the library does
  /// not import (of a C runtime that is linked into it) go unseen.
  WatchedImports(void* module, const LiveWatch& watch);
  WatchedImports(const WatchedImports&) = delete;
  WatchedImports& operator=(const WatchedImports&) = delete;
  /// Puts the addresses back.
  ~WatchedImports();

 private:
  struct Replaced {
    void** slot;
    void* original;
  };
  std::vector<Replaced> replaced;
};

}  // namespace host
