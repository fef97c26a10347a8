// The machine of a program that brings its own, bound to the thread that collects. The library has
// its machine from frame/windows instead.
#pragma once

#include "frame/platform.h"

namespace pq {

/// Makes `machine` the one that the modules see on this thread, until destroyed. May be nested.
class MachineInUse {
 public:
  /// `machine` has to outlive this object.
  explicit MachineInUse(Platform& machine);
  MachineInUse(const MachineInUse&) = delete;
  MachineInUse& operator=(const MachineInUse&) = delete;
  ~MachineInUse();

 private:
  Platform* before;
};

}  // namespace pq
