// How the work of a program grows with its input. Counted in instructions, not in time, which would
// depend on what else the machine does.
#pragma once

#include <functional>
#include <string>

#include "tests/support/sanitizers.h"

namespace test {

/// Valgrind, which counts, runs no program with a sanitizer; the native build counts for it.
inline constexpr bool kCanMeasureGrowth = !PQ_HAS_ADDRESS_SANITIZER;

/// The most that the work may grow when an input doubles, where it grows in line with it.
inline constexpr double kLinearGrowth = 2.1;

/// How many times as much work is done for twice the input. `makeCommand` gives the shell's command
/// line for an input of a size; what it does for size 0 does not count. Throws std::runtime_error
/// when a command fails, or does too little for `size` to tell anything.
double MeasureGrowth(int size, const std::function<std::string(int size)>& makeCommand);

}  // namespace test
