#include "host/answers/assessment.h"

#include <stdexcept>
#include <utility>

#include "host/answers/health/unjudged.h"
#include "host/answers/parts/read_parts.h"

namespace host {

Assessment Assess(const Collection& collection) {
  HealthJudge judge;
  return Assess(collection, judge);
}

Assessment Assess(const Collection& collection, HealthJudge& judge) {
  Parts parts = ReadParts(collection);
  try {
    Health health = judge.Judge(collection, parts);
    return {std::move(parts), std::move(health)};
  } catch (const std::runtime_error& error) {
    if (judge.HasOwnRules()) throw;
    return {std::move(parts), MakeUnjudged(error.what())};
  }
}

}  // namespace host
