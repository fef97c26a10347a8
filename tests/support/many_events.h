// A machine whose RAID controller has logged a lot.
#pragma once

#include <cstddef>

#include "host/recorded/recording.h"

namespace test {

/// The two-socket server; the event log of its first controller has `count` entries of about 240
/// bytes, those that it has in the sample again and again, a minute from each to the next.
host::Recording MakeMachineOfManyEvents(std::size_t count);

}  // namespace test
