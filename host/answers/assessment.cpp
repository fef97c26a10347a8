#include "host/answers/assessment.h"

#include <utility>

#include "host/answers/parts/read_parts.h"

namespace host {

Assessment Assess(const Collection& collection) {
  HealthJudge judge;
  return Assess(collection, judge);
}

Assessment Assess(const Collection& collection, HealthJudge& judge) {
  Parts parts = ReadParts(collection);
  Health health = judge.Judge(collection, parts);
  return {std::move(parts), std::move(health)};
}

}  // namespace host
