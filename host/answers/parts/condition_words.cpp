#include "host/answers/parts/condition_words.h"

#include <algorithm>
#include <span>
#include <string>

#include "host/answers/parts/report_lines.h"
#include "host/text/ascii.h"

namespace host {
namespace {

struct StateWord {
  std::string_view word;  ///< in lower case
  std::string_view condition;
};

// No word means different things to different vendors.
constexpr StateWord kDriveWords[] = {
    // storcli
    {"onln", "online"},
    {"ugood", "unconfigured"},
    {"ready", "unconfigured"},
    {"rdy", "unconfigured"},
    {"ghs", "spare"},
    {"dhs", "spare"},
    {"jbod", "jbod"},
    {"rbld", "rebuilding"},
    {"cpybck", "copying"},
    {"offln", "failed"},
    {"failed", "failed"},
    {"ubad", "bad"},
    {"ubunsp", "bad"},
    {"ugunsp", "unsupported"},
    {"msng", "missing"},
    {"sntze", "sanitizing"},
    {"ugshld", "shielded"},
    {"hspshld", "shielded"},
    {"cfshld", "shielded"},
    {"cbshld", "shielded"},
    // storcli2: state and status
    {"conf/online", "online"},
    {"uconf/good", "unconfigured"},
    {"ghs/good", "spare"},
    {"dhs/good", "spare"},
    {"jbod/good", "jbod"},
    {"jbod/online", "jbod"},
    {"conf/rebuild", "rebuilding"},
    {"conf/failed", "failed"},
    {"conf/offline", "failed"},
    {"jbod/failed", "failed"},
    {"uconf/bad", "bad"},
    {"jbod/missing", "missing"},
    // arcconf
    {"online", "online"},
    {"optimal", "online"},
    {"global hot-spare", "spare"},
    {"dedicated hot-spare", "spare"},
    {"pooled hot-spare", "spare"},
    {"hot spare", "spare"},
    {"hot-spare", "spare"},
    {"online (jbod)", "jbod"},
    {"raw (pass through)", "jbod"},
    {"rebuilding", "rebuilding"},
    {"defunct", "failed"},
    {"dead", "failed"},
    {"offline", "failed"},
    {"missing", "missing"},
    {"predictive failure", "predicted"},
    // rstcli
    {"normal", "online"},
    {"available", "unconfigured"},
    {"spare", "spare"},
    {"passthrough", "jbod"},
    {"incompatible", "unsupported"},
    {"at risk", "predicted"},
    {"smart event", "predicted"},
};

constexpr StateWord kVolumeWords[] = {
    // storcli
    {"optl", "optimal"},
    {"cac0", "optimal"},
    {"cac1", "optimal"},
    {"pdgd", "partly"},
    {"dgrd", "degraded"},
    {"ofln", "offline"},
    {"offln", "offline"},
    {"rec", "recovering"},
    // arcconf
    {"optimal", "optimal"},
    {"okay", "optimal"},
    {"ok", "optimal"},
    {"created", "optimal"},
    {"suboptimal, fault tolerant", "partly"},
    {"degraded", "degraded"},
    {"interim recovery", "degraded"},
    {"ready for recovery", "degraded"},
    {"failed", "offline"},
    {"offline", "offline"},
    {"impacted", "recovering"},
    {"rebuilding", "recovering"},
    {"building", "recovering"},
    // rstcli
    {"normal", "optimal"},
    {"online", "optimal"},
    {"verifying", "optimal"},
    {"verify", "optimal"},
    {"verify and fix", "optimal"},
    {"missing", "offline"},
    {"incompatible", "offline"},
    {"locked", "offline"},
    {"rebuild", "recovering"},
    {"initializing", "recovering"},
    {"initialize", "recovering"},
    {"migrating", "recovering"},
};

constexpr StateWord kCacheBackupWords[] = {
    {"optimal", "good"},
    {"optl", "good"},
    {"opt", "good"},
    {"ready", "good"},
    {"ok", "good"},
    {"operational", "good"},
    {"zmm optimal", "good"},
    {"not installed", "absent"},
    {"zmm not installed", "absent"},
    {"not present", "absent"},
    {"not configured", "good"},
    {"not applicable", "absent"},
    {"n/a", "absent"},
    {"not fully charged", "passing"},
    {"ndatn", "bad"},
    {"msng", "bad"},
};

/// Words within what else controllers say of batteries and capacitors, in many ways. The first one
/// counts, so that what passes hides nothing that stays.
constexpr StateWord kCacheBackupSigns[] = {
    {"failed", "failed"},    {"dgd", "bad"},          {"degraded", "bad"},  {"attention", "bad"},
    {"missing", "bad"},      {"replace", "bad"},      {"not ready", "bad"}, {"disabled", "bad"},
    {"not charging", "bad"}, {"charging", "passing"}, {"learn", "passing"},
};

std::string_view Find(std::span<const StateWord> words, std::string_view state) {
  const std::string word = LowerCase(Trim(state));
  if (word.empty()) return "untold";
  const std::string withoutProgress(Trim(std::string_view(word).substr(0, word.find('('))));
  for (const std::string& asked : {word, withoutProgress}) {
    const auto found = std::find_if(words.begin(), words.end(),
                                    [&](const StateWord& known) { return known.word == asked; });
    if (found != words.end()) return found->condition;
  }
  return "unknown";
}

}  // namespace

std::string_view FindDriveCondition(std::string_view state) { return Find(kDriveWords, state); }
std::string_view FindVolumeCondition(std::string_view state) { return Find(kVolumeWords, state); }
std::string_view FindCacheBackupCondition(std::string_view state) {
  const std::string_view condition = Find(kCacheBackupWords, state);
  if (condition != "unknown") return condition;
  const std::string text = LowerCase(state);
  for (const StateWord& sign : kCacheBackupSigns) {
    if (text.find(sign.word) != std::string::npos) return sign.condition;
  }
  return condition;
}

}  // namespace host
