// Lets the host see what a loaded library does to the machine. The library calls the system through
// a table of addresses in its own image; the host puts its own functions there, which tell the
// observer, keep what a recording needs, and then do what the library asked for. The library itself
// knows nothing of it.
#pragma once

#include <vector>

#include "host/live/live.h"

namespace host {

/// Watches one library from construction to destruction. Not more than one at a time: a function in
/// the table has no place to keep for whom it stands there.
class WatchedImports {
 public:
  /// `module` is what LoadLibrary answered; `watch` has a listener. What the library does not
  /// import (a C runtime that is linked into it) goes unseen.
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
