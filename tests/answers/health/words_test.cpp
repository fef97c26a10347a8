// Every word and every code that is known, each once: a word taken out of its table, or one with
// another meaning, is seen here. What is in no table is unknown, never well.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "tests/answers/health/judged.h"

namespace {

using namespace test;
using host::Parts;
using host::Severity;

constexpr std::optional<Severity> kNone;
using enum Severity;

std::string NameSeverity(const std::optional<Severity>& severity) {
  return severity ? host::GetWord(*severity) : "nothing";
}

/// The worst that is told of each id; of log rules alone, or of the others alone.
std::map<std::string, Severity> ListWorst(const host::Health& health, bool ofLogs = false) {
  std::map<std::string, Severity> worst;
  for (const host::HealthFinding& finding : health.findings) {
    for (const host::HealthHit& hit : finding.hits) {
      if (hit.isOfLog != ofLogs) continue;
      Severity& known = worst.try_emplace(hit.id, hit.severity).first->second;
      known = std::max(known, hit.severity);
    }
  }
  return worst;
}

std::optional<Severity> Find(const std::map<std::string, Severity>& worst, const std::string& id) {
  const auto found = worst.find(id);
  return found == worst.end() ? std::nullopt : std::optional(found->second);
}

struct Word {
  const char* word;
  const char* condition;
  std::optional<Severity> severity;
};

const Word kDriveWords[] = {
    // storcli
    {"Onln", "online", kNone},
    {"UGood", "unconfigured", kNone},
    {"Ready", "unconfigured", kNone},
    {"RDY", "unconfigured", kNone},
    {"GHS", "spare", kNone},
    {"DHS", "spare", kNone},
    {"JBOD", "jbod", kNone},
    {"Rbld", "rebuilding", kWarning},
    {"Cpybck", "copying", kWarning},
    {"Offln", "failed", kCritical},
    {"Failed", "failed", kCritical},
    {"UBad", "bad", kWarning},
    {"UBUnsp", "bad", kWarning},
    {"UGUnsp", "unsupported", kWarning},
    {"Msng", "missing", kCritical},
    {"Sntze", "sanitizing", kNone},
    {"UGShld", "shielded", kWarning},
    {"HSPShld", "shielded", kWarning},
    {"CFShld", "shielded", kWarning},
    {"CBShld", "shielded", kWarning},
    // storcli2
    {"Conf/Online", "online", kNone},
    {"UConf/Good", "unconfigured", kNone},
    {"GHS/Good", "spare", kNone},
    {"DHS/Good", "spare", kNone},
    {"JBOD/Good", "jbod", kNone},
    {"JBOD/Online", "jbod", kNone},
    {"Conf/Rebuild", "rebuilding", kWarning},
    {"Conf/Failed", "failed", kCritical},
    {"Conf/Offline", "failed", kCritical},
    {"JBOD/Failed", "failed", kCritical},
    {"UConf/Bad", "bad", kWarning},
    {"JBOD/Missing", "missing", kCritical},
    // arcconf
    {"Online", "online", kNone},
    {"Optimal", "online", kNone},
    {"Global Hot-Spare", "spare", kNone},
    {"Dedicated Hot-Spare", "spare", kNone},
    {"Pooled Hot-Spare", "spare", kNone},
    {"Hot Spare", "spare", kNone},
    {"Hot-Spare", "spare", kNone},
    {"Online (JBOD)", "jbod", kNone},
    {"Raw (Pass Through)", "jbod", kNone},
    {"Rebuilding", "rebuilding", kWarning},
    {"Rebuilding ( 42 % )", "rebuilding", kWarning},
    {"Defunct", "failed", kCritical},
    {"Dead", "failed", kCritical},
    {"Offline", "failed", kCritical},
    {"Missing", "missing", kCritical},
    {"Predictive Failure", "predicted", kWarning},
    // rstcli
    {"Normal", "online", kNone},
    {"Available", "unconfigured", kNone},
    {"Spare", "spare", kNone},
    {"PassThrough", "jbod", kNone},
    {"Incompatible", "unsupported", kWarning},
    {"At Risk", "predicted", kWarning},
    {"SMART Event", "predicted", kWarning},
    // of no list
    {"Wxyz", "unknown", kUnknown},
    {"Onlin", "unknown", kUnknown},
    {"Optl", "unknown", kUnknown},  // is that of a volume
    {"Conf/Onln", "unknown", kUnknown},
};

const Word kVolumeWords[] = {
    // storcli
    {"Optl", "optimal", kNone},
    {"Cac0", "optimal", kNone},
    {"Cac1", "optimal", kNone},
    {"Pdgd", "partly", kWarning},
    {"Dgrd", "degraded", kCritical},
    {"OfLn", "offline", kCritical},
    {"Offln", "offline", kCritical},
    {"Rec", "recovering", kWarning},
    // arcconf
    {"Optimal", "optimal", kNone},
    {"Okay", "optimal", kNone},
    {"OK", "optimal", kNone},
    {"Created", "optimal", kNone},
    {"Suboptimal, Fault Tolerant", "partly", kWarning},
    {"Degraded", "degraded", kCritical},
    {"Interim Recovery", "degraded", kCritical},
    {"Ready for Recovery", "degraded", kCritical},
    {"Failed", "offline", kCritical},
    {"Offline", "offline", kCritical},
    {"Impacted", "recovering", kWarning},
    {"Impacted ( Build/Verify with fix : 90 % )", "recovering", kWarning},
    {"Rebuilding", "recovering", kWarning},
    {"Building", "recovering", kWarning},
    // rstcli
    {"Normal", "optimal", kNone},
    {"Online", "optimal", kNone},
    {"Verifying", "optimal", kNone},
    {"Verify", "optimal", kNone},
    {"Verify and Fix", "optimal", kNone},
    {"Missing", "offline", kCritical},
    {"Incompatible", "offline", kCritical},
    {"Locked", "offline", kCritical},
    {"Rebuild", "recovering", kWarning},
    {"Initializing", "recovering", kWarning},
    {"Initialize", "recovering", kWarning},
    {"Migrating", "recovering", kWarning},
    // of no list
    {"Wxyz", "unknown", kUnknown},
    {"Onln", "unknown", kUnknown},  // is that of a drive
    {"Not Optimal", "unknown", kUnknown},
};

const Word kCacheBackupWords[] = {
    {"Optimal", "good", kNone},
    {"Optl", "good", kNone},
    {"Opt", "good", kNone},
    {"Ready", "good", kNone},
    {"Ok", "good", kNone},
    {"Operational", "good", kNone},
    {"ZMM Optimal", "good", kNone},
    {"Not Installed", "absent", kNone},
    {"ZMM Not Installed", "absent", kNone},
    {"Not Present", "absent", kNone},
    {"Not Configured", "good", kNone},
    {"Not Applicable", "absent", kNone},
    {"N/A", "absent", kNone},
    {"Charging", "passing", kNotice},
    {"Not Fully Charged", "passing", kNotice},
    {"Learning", "passing", kNotice},
    {"Learning (replace soon)", "bad", kWarning},
    {"Learn Cycle", "passing", kNotice},
    {"Failed", "failed", kCritical},
    {"Dgd", "bad", kWarning},
    {"Degraded", "bad", kWarning},
    {"Needs Attention", "bad", kWarning},
    {"Dgd (Needs Attention)", "bad", kWarning},
    {"NdAtn", "bad", kWarning},
    {"Missing", "bad", kWarning},
    {"Msng", "bad", kWarning},
    {"Replace", "bad", kWarning},
    {"Not Ready", "bad", kWarning},
    {"Disabled", "bad", kWarning},
    {"Temporarily Disabled", "bad", kWarning},
    // signs within longer words
    {"Battery has failed", "failed", kCritical},
    {"Pack Dgd soon", "bad", kWarning},
    {"is degraded", "bad", kWarning},
    {"wants attention", "bad", kWarning},
    {"pack missing", "bad", kWarning},
    {"replace the pack", "bad", kWarning},
    {"not ready yet", "bad", kWarning},
    {"was disabled", "bad", kWarning},
    {"not charging", "bad", kWarning},
    {"charging 42 %", "passing", kNotice},
    {"learn requested", "passing", kNotice},
    // of no list
    {"Wxyz", "unknown", kUnknown},
};

TEST(HealthWords, OfDrivesAreKnownOneByOne) {
  Parts parts;
  int count = 0;
  for (const Word& one : kDriveWords) {
    EXPECT_EQ(host::FindDriveCondition(one.word), one.condition) << one.word;
    AddDrive(parts, "mchp1 0," + std::to_string(count++), one.word);
  }
  const auto worst = ListWorst(Judge(parts));
  count = 0;
  for (const Word& one : kDriveWords) {
    // A drive that a controller shows as it is has nothing that stands in for it.
    const auto told = Find(worst, "mchp1 0," + std::to_string(count++));
    EXPECT_EQ(NameSeverity(told), NameSeverity(one.severity)) << one.word;
  }
  EXPECT_EQ(host::FindDriveCondition(" "), "untold");
}

TEST(HealthWords, OfVolumesAreKnownOneByOne) {
  for (const Word& one : kVolumeWords) {
    EXPECT_EQ(host::FindVolumeCondition(one.word), one.condition) << one.word;
    Parts parts;
    AddVolume(parts, "mchp1 v0", one.word);
    AddDrive(parts, "mchp1 0,9", "Hot Spare");
    const auto told = Find(ListWorst(Judge(parts)), "mchp1 v0");
    EXPECT_EQ(NameSeverity(told), NameSeverity(one.severity)) << one.word;
  }
  EXPECT_EQ(host::FindVolumeCondition(""), "untold");
}

TEST(HealthWords, OfCacheBackupsAreKnownOneByOne) {
  Parts parts;
  for (const Word& one : kCacheBackupWords) {
    EXPECT_EQ(host::FindCacheBackupCondition(one.word), one.condition) << one.word;
    AddCacheBackup(parts, one.word, one.word);
  }
  const auto worst = ListWorst(Judge(parts));
  for (const Word& one : kCacheBackupWords) {
    const auto told = Find(worst, "lsi0 " + std::string(one.word));
    EXPECT_EQ(NameSeverity(told), NameSeverity(one.severity)) << one.word;
  }
}

// --- MegaRAID's event codes ---

struct Code {
  int code;
  Severity severity;
  std::vector<int> endedBy;
};

const Code kCodes[] = {
    {0x0fb, kCritical, {0x0f9}},
    {0x0fc, kCritical, {0x0f9, 0x0fb}},
    {0x061, kCritical, {}},
    {0x06d, kCritical, {}},
    {0x065, kCritical, {0x063, 0x064}},
    {0x066, kCritical, {0x063, 0x064}},
    {0x032, kCritical, {}},
    {0x03c, kCritical, {}},
    {0x00a, kCritical, {}},
    {0x00b, kCritical, {}},
    {0x00d, kCritical, {}},
    {0x00f, kCritical, {}},
    {0x020, kCritical, {}},
    {0x0ca, kCritical, {}},
    {0x096, kCritical, {0x090, 0x08f}},
    {0x18b, kCritical, {0x090}},
    {0x0d3, kCritical, {}},
    {0x0a6, kCritical, {0x0a7}},
    {0x0b4, kCritical, {0x0e9}},
    {0x0b2, kCritical, {0x0e9}},
    {0x0bb, kCritical, {}},
    {0x0bc, kCritical, {0x0a7}},
    {0x0b5, kCritical, {}},
    {0x0ef, kCritical, {}},
    {0x0f0, kCritical, {}},
    {0x0f1, kCritical, {}},
    {0x128, kCritical, {}},
    {0x1c5, kCritical, {}},
    {0x1c6, kCritical, {}},
    {0x1c8, kCritical, {}},
    {0x1ca, kCritical, {}},
    {0x1cb, kCritical, {}},
    {0x0d8, kCritical, {0x0d7}},
    {0x113, kCritical, {}},
    {0x0fa, kWarning, {0x0f9}},
    {0x060, kWarning, {}},
    {0x05f, kWarning, {}},
    {0x06f, kWarning, {}},
    {0x03e, kWarning, {0x03a}},
    {0x03d, kWarning, {0x03a}},
    {0x033, kWarning, {0x030}},
    {0x0c9, kWarning, {}},
    {0x0cb, kWarning, {}},
    {0x091, kWarning, {0x095}},
    {0x0a2, kWarning, {0x0a3, 0x090}},
    {0x0c3, kWarning, {0x0c2}},
    {0x08e, kWarning, {0x08d}},
    {0x0a1, kWarning, {0x08d, 0x090}},
    {0x182, kWarning, {0x090}},
    {0x14a, kWarning, {}},
    {0x0a8, kWarning, {0x0d0}},
    {0x0ab, kWarning, {0x0cd}},
    {0x0b3, kWarning, {0x0e9}},
    {0x0ce, kWarning, {0x0cf}},
    {0x0da, kWarning, {0x0db, 0x0dc}},
    {0x0ee, kWarning, {}},
    {0x101, kWarning, {}},
    {0x121, kWarning, {0x120}},
    {0x188, kWarning, {0x189}},
    {0x0c5, kWarning, {}},
    {0x111, kWarning, {}},
    {0x112, kWarning, {}},
    {0x143, kWarning, {0x146}},
    {0x144, kWarning, {0x146}},
    {0x191, kWarning, {0x190}},
    {0x1c9, kWarning, {}},
    {0x0c4, kNotice, {}},
    {0x0e1, kNotice, {}},
};
/// Of a class that alarms, and yet no fault.
const int kHarmlessCodes[] = {0x12f, 0x0db, 0x094, 0x097, 0x098, 0x0ec, 0x068};

const Code* FindCode(int code) {
  const auto* found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                   [&](const Code& one) { return one.code == code; });
  return found == std::end(kCodes) ? nullptr : found;
}

constexpr int kCodeCount = 0x200;

// Every code there is, of a class that says nothing: those of the list tell their severity.
TEST(HealthWords, OfTheLsiLogAreKnownCodeByCode) {
  Parts parts;
  for (int code = 0; code < kCodeCount; ++code) {
    AddLsiEvent(parts, code, "controllers", "lsi" + std::to_string(code));
  }
  const auto worst = ListWorst(Judge(parts), /*ofLogs=*/true);
  for (int code = 0; code < kCodeCount; ++code) {
    const Code* known = FindCode(code);
    const auto told = Find(worst, "lsi" + std::to_string(code));
    EXPECT_EQ(NameSeverity(told), NameSeverity(known ? std::optional(known->severity) : kNone))
        << code;
  }
}

// A code of no list counts by what the firmware calls it.
TEST(HealthWords, OfTheLsiLogAlarmByClassWhereTheCodeIsNotKnown) {
  constexpr int kFatal = 3;
  Parts parts;
  for (int code = 0; code < kCodeCount; ++code) {
    AddLsiEvent(parts, code, "controllers", "lsi" + std::to_string(code)).level = kFatal;
  }
  const auto worst = ListWorst(Judge(parts), /*ofLogs=*/true);
  for (int code = 0; code < kCodeCount; ++code) {
    const Code* known = FindCode(code);
    const bool isHarmless = std::find(std::begin(kHarmlessCodes), std::end(kHarmlessCodes), code) !=
                            std::end(kHarmlessCodes);
    const std::optional<Severity> expected = known        ? std::optional(known->severity)
                                             : isHarmless ? kNone
                                                          : std::optional(kCritical);
    EXPECT_EQ(NameSeverity(Find(worst, "lsi" + std::to_string(code))), NameSeverity(expected))
        << code;
  }
}

// Each code followed by each other: only its own list ends it.
TEST(HealthWords, OfTheLsiLogAreEndedCodeByCode) {
  Parts parts;
  const auto name = [](int code, int later) {
    return "lsi" + std::to_string(code) + "-" + std::to_string(later);
  };
  for (const Code& one : kCodes) {
    for (int later = 0; later < kCodeCount; ++later) {
      if (later == one.code) continue;
      AddLsiEvent(parts, one.code, "controllers", name(one.code, later));
      AddLsiEvent(parts, later, "controllers", name(one.code, later));
    }
  }
  std::map<std::string, Severity> told;
  for (const host::HealthFinding& finding : Judge(parts).findings) {
    for (const host::HealthHit& hit : finding.hits) {
      if (hit.rule == "lsi.event") told.emplace(hit.id + hit.observed.substr(0, 9), hit.severity);
    }
  }
  int ended = 0;
  for (const Code& one : kCodes) {
    for (int later = 0; later < kCodeCount; ++later) {
      if (later == one.code) continue;
      char sign[16];
      std::snprintf(sign, sizeof sign, "1 x 0x%02x", static_cast<unsigned>(one.code));
      const auto found = told.lower_bound(name(one.code, later) + sign);
      const bool isTold =
          found != told.end() && found->first.starts_with(name(one.code, later) + sign);
      const bool isEnded =
          std::find(one.endedBy.begin(), one.endedBy.end(), later) != one.endedBy.end();
      EXPECT_EQ(isTold, !isEnded) << name(one.code, later);
      ended += isEnded ? 1 : 0;
    }
  }
  EXPECT_EQ(ended, 38);
}

// --- IPMI ---

/// What sets a state apart: event type, sensor type (-1: any), offset.
using StateKey = std::tuple<int, int, int>;
struct State {
  Severity severity;
  bool lasts;
};
constexpr int kAny = -1;

const std::map<StateKey, State> kStates{
    {{0x01, kAny, 0}, {kWarning, true}},    {{0x01, kAny, 2}, {kCritical, true}},
    {{0x01, kAny, 4}, {kCritical, true}},   {{0x01, kAny, 7}, {kWarning, true}},
    {{0x01, kAny, 9}, {kCritical, true}},   {{0x01, kAny, 11}, {kCritical, true}},
    {{0x04, kAny, 1}, {kWarning, true}},    {{0x05, kAny, 1}, {kWarning, true}},
    {{0x06, kAny, 1}, {kWarning, true}},    {{0x07, kAny, 1}, {kWarning, true}},
    {{0x07, kAny, 2}, {kCritical, true}},   {{0x07, kAny, 3}, {kCritical, true}},
    {{0x07, kAny, 4}, {kWarning, true}},    {{0x07, kAny, 5}, {kCritical, true}},
    {{0x07, kAny, 6}, {kCritical, true}},   {{0x0a, kAny, 6}, {kWarning, true}},
    {{0x0a, kAny, 8}, {kWarning, true}},    {{0x0b, kAny, 1}, {kCritical, true}},
    {{0x0b, kAny, 2}, {kWarning, true}},    {{0x0b, kAny, 3}, {kCritical, true}},
    {{0x0b, kAny, 4}, {kCritical, true}},   {{0x0b, kAny, 5}, {kCritical, true}},
    {{0x0b, kAny, 6}, {kWarning, true}},    {{0x0b, kAny, 7}, {kWarning, true}},
    {{0x6f, 0x05, 0}, {kWarning, true}},    {{0x6f, 0x05, 1}, {kWarning, true}},
    {{0x6f, 0x05, 2}, {kWarning, true}},    {{0x6f, 0x05, 3}, {kWarning, true}},
    {{0x6f, 0x05, 4}, {kNotice, true}},     {{0x6f, 0x05, 6}, {kWarning, true}},
    {{0x6f, 0x07, 0}, {kCritical, false}},  {{0x6f, 0x07, 1}, {kCritical, false}},
    {{0x6f, 0x07, 2}, {kCritical, false}},  {{0x6f, 0x07, 3}, {kCritical, false}},
    {{0x6f, 0x07, 4}, {kCritical, false}},  {{0x6f, 0x07, 5}, {kCritical, true}},
    {{0x6f, 0x07, 6}, {kCritical, false}},  {{0x6f, 0x07, 8}, {kCritical, true}},
    {{0x6f, 0x07, 10}, {kWarning, true}},   {{0x6f, 0x07, 11}, {kCritical, false}},
    {{0x6f, 0x07, 12}, {kWarning, false}},  {{0x6f, 0x08, 1}, {kCritical, true}},
    {{0x6f, 0x08, 2}, {kWarning, true}},    {{0x6f, 0x08, 3}, {kCritical, true}},
    {{0x6f, 0x08, 4}, {kCritical, true}},   {{0x6f, 0x08, 5}, {kCritical, true}},
    {{0x6f, 0x08, 6}, {kCritical, true}},   {{0x6f, 0x08, 7}, {kNotice, true}},
    {{0x6f, 0x09, 2}, {kWarning, false}},   {{0x6f, 0x09, 3}, {kWarning, false}},
    {{0x6f, 0x09, 4}, {kCritical, true}},   {{0x6f, 0x09, 5}, {kCritical, true}},
    {{0x6f, 0x09, 6}, {kCritical, true}},   {{0x6f, 0x09, 7}, {kWarning, true}},
    {{0x6f, 0x0c, 0}, {kNotice, false}},    {{0x6f, 0x0c, 1}, {kCritical, false}},
    {{0x6f, 0x0c, 2}, {kCritical, false}},  {{0x6f, 0x0c, 3}, {kCritical, false}},
    {{0x6f, 0x0c, 4}, {kCritical, true}},   {{0x6f, 0x0c, 5}, {kWarning, false}},
    {{0x6f, 0x0c, 7}, {kCritical, true}},   {{0x6f, 0x0c, 9}, {kWarning, true}},
    {{0x6f, 0x0c, 10}, {kCritical, true}},  {{0x6f, 0x0d, 1}, {kCritical, true}},
    {{0x6f, 0x0d, 2}, {kWarning, true}},    {{0x6f, 0x0d, 5}, {kCritical, true}},
    {{0x6f, 0x0d, 6}, {kCritical, true}},   {{0x6f, 0x0d, 7}, {kNotice, true}},
    {{0x6f, 0x0d, 8}, {kWarning, true}},    {{0x6f, 0x0f, 0}, {kWarning, false}},
    {{0x6f, 0x0f, 1}, {kCritical, false}},  {{0x6f, 0x10, 0}, {kNotice, true}},
    {{0x6f, 0x10, 3}, {kWarning, true}},    {{0x6f, 0x10, 4}, {kWarning, true}},
    {{0x6f, 0x10, 5}, {kNotice, true}},     {{0x6f, 0x12, 2}, {kCritical, false}},
    {{0x6f, 0x13, 0}, {kCritical, false}},  {{0x6f, 0x13, 1}, {kCritical, false}},
    {{0x6f, 0x13, 2}, {kCritical, false}},  {{0x6f, 0x13, 4}, {kCritical, false}},
    {{0x6f, 0x13, 5}, {kCritical, false}},  {{0x6f, 0x13, 7}, {kWarning, false}},
    {{0x6f, 0x13, 8}, {kCritical, false}},  {{0x6f, 0x13, 9}, {kCritical, false}},
    {{0x6f, 0x13, 10}, {kCritical, false}}, {{0x6f, 0x13, 11}, {kWarning, true}},
    {{0x6f, 0x1b, 1}, {kWarning, true}},    {{0x6f, 0x20, 0}, {kCritical, false}},
    {{0x6f, 0x20, 1}, {kCritical, false}},  {{0x6f, 0x21, 0}, {kWarning, true}},
    {{0x6f, 0x23, 0}, {kWarning, false}},   {{0x6f, 0x23, 1}, {kCritical, false}},
    {{0x6f, 0x23, 2}, {kCritical, false}},  {{0x6f, 0x23, 3}, {kCritical, false}},
    {{0x6f, 0x23, 8}, {kWarning, false}},   {{0x6f, 0x28, 0}, {kWarning, true}},
    {{0x6f, 0x28, 1}, {kWarning, true}},    {{0x6f, 0x28, 2}, {kCritical, true}},
    {{0x6f, 0x28, 3}, {kCritical, true}},   {{0x6f, 0x28, 4}, {kWarning, true}},
    {{0x6f, 0x28, 5}, {kWarning, true}},    {{0x6f, 0x29, 0}, {kWarning, true}},
    {{0x6f, 0x29, 1}, {kCritical, true}},
};

/// Calls `check` for every event type that has a list, every sensor type and every offset, with
/// what is known of it; null: nothing.
template <typename Check>
void ForEachState(const Check& check) {
  constexpr int kSensorTypes = 0x2d;
  for (const int eventType : {0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x6f}) {
    for (int type = 0; type < kSensorTypes; ++type) {
      for (int bit = 0; bit < 15; ++bit) {
        auto known = kStates.find({eventType, type, bit});
        if (known == kStates.end()) known = kStates.find({eventType, kAny, bit});
        check(eventType, type, bit, known == kStates.end() ? nullptr : &known->second);
      }
    }
  }
}

std::string NameState(int eventType, int type, int bit) {
  return std::to_string(eventType) + "/" + std::to_string(type) + "/" + std::to_string(bit);
}

TEST(HealthWords, OfSensorStatesAreKnownBitByBit) {
  // No machine has so many sensors.
  std::map<std::string, Severity> worst;
  auto parts = std::make_unique<Parts>();
  const auto judge = [&] {
    worst.merge(ListWorst(Judge(*parts)));
    parts = std::make_unique<Parts>();
  };
  ForEachState([&](int eventType, int type, int bit, const State* /*known*/) {
    if (parts->sensors.size() == host::kMostParts) judge();
    AddDiscrete(*parts, NameState(eventType, type, bit), type, eventType, 1 << bit);
  });
  judge();
  ForEachState([&](int eventType, int type, int bit, const State* known) {
    // Limits are judged by the sensor's word.
    const bool isTold = known != nullptr && eventType != 0x01;
    EXPECT_EQ(NameSeverity(Find(worst, NameState(eventType, type, bit))),
              NameSeverity(isTold ? std::optional(known->severity) : kNone))
        << NameState(eventType, type, bit);
  });
}

TEST(HealthWords, OfTheBmcsLogAreKnownBitByBit) {
  constexpr int kMajor = 2;
  Parts parts;
  ForEachState([&](int eventType, int type, int bit, const State* /*known*/) {
    AddSelEvent(parts, NameState(eventType, type, bit), type, eventType, bit).level = kMajor;
  });
  const auto worst = ListWorst(Judge(parts), /*ofLogs=*/true);
  ForEachState([&](int eventType, int type, int bit, const State* known) {
    // What is in no list counts as ipmiutil calls it. A state that lasts and only is to be noted is
    // the sensor's to tell.
    std::optional<Severity> expected = kWarning;
    if (known != nullptr) expected = known->severity;
    if (known != nullptr && known->lasts && known->severity == kNotice) expected = kNone;
    EXPECT_EQ(NameSeverity(Find(worst, NameState(eventType, type, bit))), NameSeverity(expected))
        << NameState(eventType, type, bit);
  });
}

struct SensorWord {
  const char* word;
  host::Integer type;
  std::optional<Severity> severity;
};

constexpr int kTemperature = 0x01;

const SensorWord kSensorWords[] = {
    // of sensors with limits
    {"ok", kTemperature, kNone},
    {"ok*", kTemperature, kNone},
    {"", kTemperature, kNone},
    {"ns", kTemperature, kNone},
    {"na", kTemperature, kNone},
    {"absent", kTemperature, kNone},
    {"init", kTemperature, kNone},
    {"unknown", kTemperature, kNone},
    {"notavailable", kTemperature, kNone},
    {"disabled", kTemperature, kNone},
    {"nc", kTemperature, kWarning},
    {"lnc", kTemperature, kWarning},
    {"unc", kTemperature, kWarning},
    {"warn-lo", kTemperature, kWarning},
    {"warn-hi", kTemperature, kWarning},
    {"cr", kTemperature, kCritical},
    {"lcr", kTemperature, kCritical},
    {"ucr", kTemperature, kCritical},
    {"crit-lo", kTemperature, kCritical},
    {"crit-hi", kTemperature, kCritical},
    {"nr", kTemperature, kCritical},
    {"lnr", kTemperature, kCritical},
    {"unr", kTemperature, kCritical},
    {"belowcrit", kTemperature, kCritical},
    {"abovecrit", kTemperature, kCritical},
    // of those with states
    {"chassisintrus", 0x05, kWarning},
    {"ierr", 0x07, kCritical},
    {"thermaltrip", 0x07, kCritical},
    {"frb1failure", 0x07, kCritical},
    {"frb2failure", 0x07, kCritical},
    {"frb3failure", 0x07, kCritical},
    {"configerror", 0x07, kCritical},
    {"procdisabled", 0x07, kCritical},
    {"ac_lost", 0x08, kCritical},
    {"ps_failed", 0x08, kCritical},
    {"config_err", 0x08, kCritical},
    {"parityerr", 0x0c, kCritical},
    {"eccerror", 0x0c, kWarning},
    {"selfull", 0x10, kWarning},
    {"bus_error", 0x13, kCritical},
    {"bus_fatal", 0x13, kCritical},
    {"bus_degraded", 0x13, kWarning},
    {"fatal_nmi", 0x13, kCritical},
    {"redunlost", std::nullopt, kCritical},
    {"redundegr", std::nullopt, kWarning},
    {"nonredund_sufficient", std::nullopt, kCritical},
    {"nonredund_insufficient", std::nullopt, kCritical},
    {"non-critical", std::nullopt, kWarning},
    {"critical", std::nullopt, kCritical},
    {"non-recoverable", std::nullopt, kCritical},
    {"exceeded", std::nullopt, kWarning},
    // of no list
    {"wxyz", kTemperature, kUnknown},
    {"okay", kTemperature, kUnknown},
    {"ac_lost", kTemperature, kUnknown},  // is that of a power supply
};

TEST(HealthWords, OfSensorsAreKnownOneByOne) {
  for (const SensorWord& one : kSensorWords) {
    Parts parts;
    host::Sensor& sensor = AddSensor(parts, "S", one.type, one.word);
    if (one.type == kTemperature) sensor.eventType = 0x01;
    const auto told = Find(ListWorst(Judge(parts)), "S");
    EXPECT_EQ(NameSeverity(told), NameSeverity(one.severity)) << one.word;
  }
}

TEST(HealthWords, OfABmcsSelfTestAreKnownOneByOne) {
  const std::map<std::string, std::optional<Severity>> kTests{
      {"55", kNone},    {"56", kNotice},  {"57", kWarning}, {"58", kCritical},
      {"ff", kWarning}, {"59", kUnknown}, {"", kUnknown}};
  for (const auto& [code, severity] : kTests) {
    Parts parts;
    host::SelfTest& test = parts.selfTests.emplace_back();
    test.id = "BMC self-test";
    test.code = code;
    EXPECT_EQ(NameSeverity(Find(ListWorst(Judge(parts)), test.id)), NameSeverity(severity)) << code;
  }
}

}  // namespace
