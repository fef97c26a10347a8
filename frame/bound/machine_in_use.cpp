#include "frame/bound/machine_in_use.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace pq {
namespace {

thread_local Platform* machineInUse = nullptr;

}  // namespace

MachineInUse::MachineInUse(Platform& machine) : before(std::exchange(machineInUse, &machine)) {}

MachineInUse::~MachineInUse() { machineInUse = before; }

Platform& Machine() {
  if (machineInUse == nullptr) {
    std::fflush(stdout);
    std::fputs("There is no machine to collect from: none is in use on this thread.\n", stderr);
    std::abort();
  }
  return *machineInUse;
}

}  // namespace pq
