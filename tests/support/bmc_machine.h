// A machine with a BMC whose tools answer in a few lines, for tests to change.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/recorded/recording.h"
#include "tests/support/collected.h"

namespace test {

inline constexpr char kBmcModule[] = "BMC_Info";

/// Exit codes of the detection tool for the four families.
inline constexpr std::uint32_t kFamilies[] = {5, 7, 9, 11};

/// The detection tool exits with `detection`; the IPMI utility answers to all that it is asked.
host::Recording MakeBmcMachine(std::uint32_t detection = 5);

/// The answer of a tool of `machine`, which must be there.
host::RecordedCommand& AnswerOf(host::Recording& machine, const std::string& arguments);

/// The result of the BMC module on a machine of that family on which the IPMI utility prints
/// `output` when asked `arguments`.
Collected CollectBmcWith(const std::string& arguments, const std::string& output,
                         std::uint32_t detection = 5);

/// The log lines from the one that equals `first` up to the one before `end` (or the last).
std::vector<std::string> GetLogBetween(const Collected& collected, const std::string& first,
                                       const std::string& end);

/// The values of a table's rows, when each row has one property.
std::vector<std::string> ListValues(const Collected& collected, const std::string& className);

}  // namespace test
