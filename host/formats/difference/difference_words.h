// What the screen and the report say of a difference in the same words.
#pragma once

#include <string>
#include <vector>

#include "host/answers/difference/difference.h"

namespace host {

/// "2026-11-18 09:41", or "an unknown time".
std::string DescribeTime(const ComparedSide& side);

/// "1 part, 1 cell, 12 log entries, 2 findings".
std::string CountDifferences(const Difference& difference);

/// "2026-11-18T09:00:00Z AC Lost"; by its number when it has no time.
std::string DescribeEntry(const NewEntry& entry);

/// What could not be read for one reason.
struct NotComparedGroup {
  std::vector<std::string> names;
  DifferenceSide side = DifferenceSide::kAfter;
  std::string why;
};
std::vector<NotComparedGroup> GroupNotCompared(const std::vector<NotCompared>& all);

}  // namespace host
