#include "host/answers/assessment.h"

#include <utility>

#include "host/answers/parts/read_parts.h"

namespace host {

Assessment Assess(const Collection& collection) {
  Parts parts = ReadParts(collection);
  Health health = JudgeCollection(collection, parts, {});
  return {std::move(parts), std::move(health)};
}

}  // namespace host
