#include "host/answers/assessment.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/answers/health/unjudged.h"
#include "host/answers/parts/read_parts.h"

namespace host {
namespace {

bool HasOwnRules(const HealthOptions& options) {
  return std::any_of(options.rules.begin(), options.rules.end(),
                     [](const Rule& rule) { return !rule.file.empty(); });
}

}  // namespace

Assessment Assess(const Collection& collection, const HealthOptions& options) {
  Parts parts = ReadParts(collection);
  try {
    Health health = JudgeCollection(collection, parts, options);
    return {std::move(parts), std::move(health)};
  } catch (const std::runtime_error& error) {
    if (HasOwnRules(options)) throw;
    return {std::move(parts), MakeUnjudged(error.what())};
  }
}

}  // namespace host
