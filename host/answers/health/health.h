// Whether a machine is well: rules asked of its parts, and what they answer as findings.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/answers/health/health_options.h"
#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

/// From the least to the worst; a notice never alarms.
enum class Severity { kNotice, kUnknown, kWarning, kCritical };
/// "notice", "unknown", "warning", "critical".
const char* GetWord(Severity severity);

/// One answer of a rule.
struct HealthHit {
  std::string rule;
  Severity severity = Severity::kNotice;
  std::string part;  ///< table
  std::string id;    ///< in it, or what a log calls a part that is not there any more
  std::string observed;
  std::string text;  ///< a sentence for the person who has to act
  std::string area;
  std::string why;
  std::string next;
  std::string serial;                ///< of the part; empty when not known
  std::vector<std::string> because;  ///< ids of the parts that are the cause
  bool isOfLog = false;
  std::size_t ruleNumber = 0;  ///< among all rules that were asked
  std::string column = {};     ///< of the part that it is about; empty: the part as a whole
  Place place;                 ///< where it was read; without class and tool when that is not known
  /// What it would be if nobody had suppressed it, and why somebody did.
  std::optional<Severity> suppressed = {};
  std::string reason = {};
};

/// All hits that have one cause.
struct HealthFinding {
  std::string key;  ///< rule and id of the title; the same in the next collection
  Severity severity = Severity::kNotice;
  std::vector<HealthHit> hits;  ///< the first is the title, the others its evidence
};

struct Health {
  std::string asOf;  ///< the time that entries of logs are compared with, "2026-11-18T09:41:12"
  std::string asOfFrom;
  bool isDated = true;                  ///< something told the time; otherwise it is now
  std::optional<Severity> worst;        ///< none: nothing is wrong
  std::vector<HealthFinding> findings;  ///< the worst first
  /// How many parts of each kind were looked at: "drives", 32. Without those of which there is
  /// none.
  std::vector<std::pair<std::string, std::size_t>> checked;
  std::vector<PartSource> sources;
};

/// A notice when nothing is wrong.
inline Severity FindWorst(const Health& health) { return health.worst.value_or(Severity::kNotice); }
/// The verdict: "OK", "WARNING", "CRITICAL" or "UNKNOWN".
const char* GetVerdict(Severity worst);
const char* GetVerdict(const Health& health);
/// As Nagios has it: 0, 1, 2 or 3.
int GetExitCode(Severity worst);
int GetExitCode(const Health& health);
std::size_t CountFindings(const Health& health, Severity severity);

/// Judges machines by the same options, one after the other; to be used by one thread. What the
/// rules need is made for the first machine, which takes a few times as long as judging the next.
class HealthJudge {
 public:
  explicit HealthJudge(HealthOptions options = {});
  HealthJudge(const HealthJudge&) = delete;
  HealthJudge& operator=(const HealthJudge&) = delete;
  ~HealthJudge();

  /// Whether there are rules of the user's among those that are asked.
  bool HasOwnRules() const;
  /// Throws HealthFileError for a rule of the user's that cannot be asked.
  Health Judge(const Collection& collection, const Parts& parts);
  /// The same of parts alone; `collected` is the time when nothing else is known.
  Health JudgeParts(const Parts& parts, const std::string& collected);

 private:
  HealthOptions options;
  std::unique_ptr<class RuleDatabase> rules;  ///< null before the first machine
};

/// The same for one machine.
Health JudgeCollection(const Collection& collection, const Parts& parts,
                       const HealthOptions& options);
Health JudgeParts(const Parts& parts, const std::string& collected, const HealthOptions& options);

}  // namespace host
