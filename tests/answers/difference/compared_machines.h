// Machines that are edited, and what is found when they are compared.
#pragma once

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/answers/assessment.h"
#include "host/answers/difference/difference.h"
#include "host/collect/collect.h"
#include "host/formats/difference/difference_formats.h"
#include "host/recording/recording_reader.h"
#include "tests/support/collected.h"

namespace test {

inline host::Recording LoadSample(const std::string& name) {
  return host::LoadRecording(SamplesFolder() + "/" + name);
}

/// A machine as a comparison sees it.
/// One for all, for its rules take longer to read than a machine to judge.
inline host::HealthJudge& TheJudge() {
  static host::HealthJudge judge;
  return judge;
}

struct AssessedMachine {
  explicit AssessedMachine(const host::Recording& recording)
      : collection(host::Collect(recording)), assessment(host::Assess(collection, TheJudge())) {}

  host::AssessedCollection Get() const { return {collection, assessment}; }

  host::Collection collection;
  host::Assessment assessment;
};

inline host::Difference Compare(const host::Recording& before, const host::Recording& after,
                                const host::DifferenceOptions& options = {}) {
  const AssessedMachine old(before);
  const AssessedMachine now(after);
  return host::FindDifference(old.Get(), now.Get(), options);
}

/// The lines that a wide screen shows, without that which counts and without indentation.
inline std::vector<std::string> ListLines(const host::Difference& difference) {
  std::ostringstream out;
  constexpr unsigned kWide = 10000;
  host::WriteDifferenceTable({"a", "b", difference}, {.width = kWide}, out);
  std::istringstream text(out.str());
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with(' ')) lines.push_back(line.substr(line.find_first_not_of(' ')));
  }
  return lines;
}

inline std::vector<std::string> ListDifferences(const host::Recording& before,
                                                const host::Recording& after,
                                                const host::DifferenceOptions& options = {}) {
  return ListLines(Compare(before, after, options));
}

/// Exchanges `from` wherever it is in `text`; returns how often.
inline int ExchangeIn(std::string& text, const std::string& from, const std::string& to) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
    text.replace(at, from.size(), to);
    ++count;
  }
  return count;
}

/// Exchanges `from` in all that tools print with `arguments`, and in the files whose names end so.
inline void Exchange(host::Recording& machine, const std::string& arguments,
                     const std::string& from, const std::string& to) {
  int count = 0;
  for (host::RecordedCommand& command : machine.commands) {
    if (command.arguments != arguments) continue;
    std::string text(command.standardOutput.Text());
    count += ExchangeIn(text, from, to);
    command.standardOutput = text;
  }
  for (auto& [path, bytes] : machine.files) {
    if (!path.ends_with(arguments)) continue;
    std::string text(bytes.Text());
    count += ExchangeIn(text, from, to);
    bytes = text;
  }
  if (count == 0) throw std::runtime_error("nothing to exchange for " + from);
}

}  // namespace test
