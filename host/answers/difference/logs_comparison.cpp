#include "host/answers/difference/logs_comparison.h"

#include <algorithm>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host {
namespace {

/// Numbers begin anew when some logs are cleared, so time and text are part of the identity.
struct IsSameEntry {
  bool operator()(const Event* one, const Event* other) const {
    return one->number == other->number && one->time == other->time && one->text == other->text;
  }
};
struct HashEntry {
  std::size_t operator()(const Event* event) const {
    const std::hash<std::string_view> hash;
    constexpr std::size_t kSpread = 0x9E3779B9;
    return (static_cast<std::size_t>(event->number.value_or(-1)) * kSpread + hash(event->time)) *
               kSpread +
           hash(event->text);
  }
};
using Entries = std::unordered_set<const Event*, HashEntry, IsSameEntry>;

/// The entries of a log on both sides, in their order.
struct Log {
  std::vector<const Event*> before;
  std::vector<const Event*> after;
};

std::map<std::string, Log> ListLogs(const Sides& sides) {
  std::map<std::string, Log> logs;
  const auto find = [&](const Event& event, const std::string& controller) -> Log& {
    return logs[NameLog(event.source, controller)];
  };
  for (const Event& event : sides.before.GetParts().events) {
    find(event, sides.renaming.Rename(event.controller)).before.push_back(&event);
  }
  for (const Event& event : sides.after.GetParts().events) {
    find(event, event.controller).after.push_back(&event);
  }
  return logs;
}

/// Takes the entries of `teller` away whose report `other` could not read; returns why not, if
/// there are any.
std::string DropUntold(const Side& teller, const Side& other, std::vector<const Event*>& entries) {
  std::string firstWhy;
  std::string why;  // of the entry before, which mostly is of the same report
  const Place* place = nullptr;
  std::erase_if(entries, [&](const Event* event) {
    const Place& at = event->readAt;
    if (place == nullptr || place->className != at.className || place->key != at.key) {
      why = other.FindWhyNoEntries(teller, at);
      place = &at;
    }
    if (firstWhy.empty()) firstWhy = why;
    return !why.empty();
  });
  return firstWhy;
}

class LogsComparison {
 public:
  LogsComparison(const Sides& sides, Difference& difference)
      : sides(sides), difference(difference) {}

  void Compare(const std::string& name, Log log) {
    const std::string whyNotBefore = DropUntold(sides.after, sides.before, log.after);
    const std::string whyNotAfter = DropUntold(sides.before, sides.after, log.before);
    if (log.before.empty() || log.after.empty()) {
      TellNotCompared(name, log, whyNotBefore, whyNotAfter);
      return;
    }
    const Entries known(log.before.begin(), log.before.end());
    LogDifference found{name, /*wasCleared=*/true, {}};
    for (const Event* event : log.after) {
      if (known.contains(event)) {
        found.wasCleared = false;
      } else {
        found.entries.push_back({event->number, event->time, event->level, event->text});
      }
    }
    if (!found.entries.empty()) difference.logs.push_back(std::move(found));
  }

 private:
  void TellNotCompared(const std::string& name, const Log& log, const std::string& whyNotBefore,
                       const std::string& whyNotAfter) {
    const auto tell = [&](DifferenceSide side, const std::string& why) {
      difference.notCompared.push_back({"log " + name, side, why});
    };
    if (!whyNotBefore.empty()) tell(DifferenceSide::kBefore, whyNotBefore);
    if (!whyNotAfter.empty()) tell(DifferenceSide::kAfter, whyNotAfter);
    // With a reason, the entries of the other side have been dropped for it.
    if (!whyNotBefore.empty() || !whyNotAfter.empty()) return;
    if (log.before.empty() && log.after.empty()) return;
    const Side& silent = log.before.empty() ? sides.before : sides.after;
    Event entry = log.before.empty() ? *log.after.front() : *log.before.front();
    entry.controller = sides.Translate(sides.Other(silent), entry.controller);
    tell(silent.Which(), silent.FindWhyLogEmpty(entry));
  }

  const Sides& sides;
  Difference& difference;
};

}  // namespace

std::string NameLog(const std::string& source, const std::string& controller) {
  return controller.empty() ? source : source + ' ' + controller;
}

bool IsSerious(const NewEntry& entry) { return entry.level.value_or(0) >= 1; }

std::size_t CountNewEntries(const Difference& difference) {
  std::size_t count = 0;
  for (const LogDifference& log : difference.logs) count += log.entries.size();
  return count;
}

void CompareLogs(const Sides& sides, Difference& difference) {
  LogsComparison comparison(sides, difference);
  for (auto& [name, log] : ListLogs(sides)) comparison.Compare(name, std::move(log));
}

}  // namespace host
