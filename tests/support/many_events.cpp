#include "tests/support/many_events.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/samples.h"

namespace test {
namespace {

constexpr std::string_view kEntryStart = "seqNum: ";
constexpr std::string_view kTimeStart = "Time: ";

/// The entries, each without its number; the first one is what is before them all.
std::vector<std::string_view> SplitEntries(std::string_view log) {
  std::vector<std::string_view> entries;
  for (std::size_t at = log.find(kEntryStart); at != std::string_view::npos;
       at = log.find(kEntryStart)) {
    entries.push_back(log.substr(0, at));
    log.remove_prefix(std::min(log.find('\n', at), log.size()));
  }
  entries.push_back(log);
  return entries;
}

/// "Tue Nov 17 06:00:00 2026"
std::string FormatTime(std::chrono::sys_seconds time) {
  constexpr std::array<const char*, 7> kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array<const char*, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto day = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss clock(time - day);
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%s %s %2u %02d:%02d:%02d %d",
                kDays[std::chrono::weekday(day).c_encoding()],
                kMonths[static_cast<unsigned>(date.month()) - 1], static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()), static_cast<int>(date.year()));
  return text.data();
}

void AppendEntry(std::string& log, std::string_view entry, std::size_t number,
                 std::chrono::sys_seconds time) {
  std::array<char, 20> digits{};
  std::snprintf(digits.data(), digits.size(), "0x%08zx", number);
  log.append(kEntryStart).append(digits.data());
  const std::size_t begin = entry.find(kTimeStart);
  log.append(entry.substr(0, begin));
  if (begin == std::string_view::npos) return;
  log.append(kTimeStart).append(FormatTime(time));
  log.append(entry.substr(std::min(entry.find('\n', begin), entry.size())));
}

}  // namespace

host::Recording MakeMachineOfManyEvents(std::size_t count) {
  host::Recording machine = LoadSamples().at("two-socket-server");
  const auto command = std::find_if(
      machine.commands.begin(), machine.commands.end(),
      [](const host::RecordedCommand& one) { return one.arguments == "/c0 show events"; });
  const std::string sample(command->standardOutput.Text());
  const std::vector<std::string_view> entries = SplitEntries(sample);
  std::string log(entries.front());
  std::chrono::sys_seconds time =
      std::chrono::sys_days(std::chrono::year(2026) / 11 / 18) + std::chrono::hours(9);
  time -= std::chrono::minutes(count);
  for (std::size_t i = 0; i < count; ++i) {
    AppendEntry(log, entries[1 + i % (entries.size() - 1)], i + 1, time);
    time += std::chrono::minutes(1);
  }
  command->standardOutput = std::move(log);
  return machine;
}

}  // namespace test
