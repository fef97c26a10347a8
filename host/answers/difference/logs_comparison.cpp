#include "host/answers/difference/logs_comparison.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace host {
namespace {

/// Numbers begin anew when some logs are cleared, so time and text are part of the identity.
struct Entry {
  const Events* events;
  std::size_t row;

  Integer Number() const { return events->GetInteger(row, EventColumn::kNumber); }
  std::string_view Time() const { return events->GetText(row, EventColumn::kTime); }
  std::string_view Text() const { return events->GetText(row, EventColumn::kText); }
  bool operator==(const Entry& other) const {
    return Number() == other.Number() && Time() == other.Time() && Text() == other.Text();
  }
};
struct HashEntry {
  std::size_t operator()(const Entry& entry) const {
    const std::hash<std::string_view> hash;
    constexpr std::size_t kSpread = 0x9E3779B9;
    return (static_cast<std::size_t>(entry.Number().value_or(-1)) * kSpread + hash(entry.Time())) *
               kSpread +
           hash(entry.Text());
  }
};
using Entries = std::unordered_set<Entry, HashEntry>;

/// The entries of a log on both sides, in their order.
struct Log {
  std::vector<Entry> before;
  std::vector<Entry> after;
};

std::map<std::string, Log> ListLogs(const Sides& sides) {
  std::map<std::string, Log> logs;
  const auto add = [&](const Events& events, auto rename, std::vector<Entry> Log::*side) {
    for (std::size_t row = 0; row < events.size(); ++row) {
      const std::string source(events.GetText(row, EventColumn::kSource));
      const std::string controller = rename(events.GetText(row, EventColumn::kController));
      (logs[NameLog(source, controller)].*side).push_back({&events, row});
    }
  };
  add(
      sides.before.GetParts().events,
      [&](std::string_view controller) { return sides.renaming.Rename(controller); }, &Log::before);
  add(
      sides.after.GetParts().events,
      [](std::string_view controller) { return std::string(controller); }, &Log::after);
  return logs;
}

/// Takes the entries of `teller` away whose report `other` could not read; returns why not, if
/// there are any.
std::string DropUntold(const Side& teller, const Side& other, std::vector<Entry>& entries) {
  std::string firstWhy;
  std::string why;  // of the entry before, which mostly is of the same report
  std::optional<Place> place;
  std::erase_if(entries, [&](const Entry& entry) {
    Place at = (*entry.events)[entry.row].readAt;
    if (!place || place->className != at.className || place->key != at.key) {
      why = other.FindWhyNoEntries(teller, at);
      place = std::move(at);
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
    for (const Entry& entry : log.after) {
      if (known.contains(entry)) {
        found.wasCleared = false;
      } else {
        const Event event = (*entry.events)[entry.row];
        found.entries.push_back({event.number, event.time, event.level, event.text});
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
    const Entry& first = log.before.empty() ? log.after.front() : log.before.front();
    Event entry = (*first.events)[first.row];
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
