#include "tests/support/many_events.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
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

void AppendEntry(std::string& log, std::string_view entry, std::size_t number,
                 std::chrono::sys_seconds time) {
  fmt::format_to(std::back_inserter(log), "{}0x{:08x}", kEntryStart, number);
  const std::size_t begin = entry.find(kTimeStart);
  if (begin == std::string_view::npos) {
    log.append(entry);
    return;
  }
  log.append(entry.substr(0, begin));
  fmt::format_to(std::back_inserter(log), "{}{:%a %b %e %H:%M:%S %Y}", kTimeStart,
                 fmt::gmtime(std::chrono::system_clock::to_time_t(time)));
  log.append(entry.substr(std::min(entry.find('\n', begin), entry.size())));
}

}  // namespace

host::Recording MakeMachineOfManyEvents(std::size_t count) {
  host::Recording machine = LoadSamples().at("two-socket-server");
  const auto command = std::find_if(
      machine.commands.begin(), machine.commands.end(),
      [](const host::RecordedCommand& one) { return one.arguments == "/c0 show events"; });
  const std::string sample = command->standardOutput;
  const std::vector<std::string_view> entries = SplitEntries(sample);
  std::string log(entries.front());
  auto time = std::chrono::sys_days(std::chrono::year(2026) / 11 / 18) + std::chrono::hours(9) -
              std::chrono::minutes(count);
  for (std::size_t i = 0; i < count; ++i) {
    AppendEntry(log, entries[1 + i % (entries.size() - 1)], i + 1, time);
    time += std::chrono::minutes(1);
  }
  command->standardOutput = std::move(log);
  return machine;
}

}  // namespace test
