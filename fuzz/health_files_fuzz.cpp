// A file for --rules, --settings or --suppress; the input's first byte says which. It is taken, or
// refused in one line that names one of its lines. Rules are asked of a small machine: they give
// hits, or are refused in the same way.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/checks.h"
#include "host/answers/health/health.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/ascii.h"
#include "host/text/decoder.h"

namespace {

using fuzz::Require;

constexpr char kFile[] = "f";

host::Parts MakeParts() {
  host::Parts parts;
  for (int i = 0; i < 3; ++i) {
    host::Drive& drive = parts.drives.emplace_back();
    drive.id = "lsi0 69:" + std::to_string(i);
    drive.state = "Onln";
    drive.condition = "online";
    drive.serial = "S" + std::to_string(i);
    host::Event event;
    event.id = "lsi0 " + std::to_string(i);
    event.time = "2026-11-18T06:00:00";
    parts.events.push_back(event);
  }
  return parts;
}

/// "f:LINE: reason"
void CheckRefusal(std::string_view words, std::string_view text) {
  Require(words.find('\n') == std::string_view::npos);
  Require(host::CleanUtf8(words) == words);
  Require(words.starts_with("f:"));
  words.remove_prefix(2);
  const std::size_t colon = words.find(": ");
  Require(colon != std::string_view::npos && colon + 2 < words.size());
  const long line = std::stol(std::string(words.substr(0, colon)));
  long count = 0;
  host::ReportLine one;
  for (host::ReportLines lines(text); lines.Next(one);) ++count;
  Require(line >= 1 && line <= std::max(count, 1L));
}

void TryRules(const std::string& text) {
  static const host::Parts kParts = MakeParts();
  host::HealthOptions options;
  options.rules = host::ReadOwnRules(text, kFile);
  // A query that calls itself ends after half a minute, which is too long for here.
  if (host::LowerCase(text).find("with") != std::string::npos) return;
  const host::Health health = host::JudgeParts(kParts, "2026-11-20T12:00:00", options);
  for (const host::HealthFinding& finding : health.findings) Require(!finding.hits.empty());
}

void TrySettings(const std::string& text) {
  host::HealthSettings settings;
  host::TakeSettings(text, kFile, settings);
  const auto known = host::ListHealthSettings();
  for (const auto& given : settings) {
    Require(given.second >= 0 && std::any_of(known.begin(), known.end(), [&](const auto& one) {
              return one.name == given.first;
            }));
  }
}

void TrySuppressions(const std::string& text) {
  for (const host::Suppression& one : host::ReadSuppressions(text, kFile)) {
    Require(!one.rule.empty() && !one.reason.empty());
    Require(host::FitsPattern(one.rule, one.rule) && host::FitsPattern(one.id, one.id));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  void (*const kTries[])(const std::string&) = {TryRules, TrySettings, TrySuppressions};
  // The command takes nothing else than UTF-8 without NUL.
  std::string text = host::CleanUtf8(fuzz::InputText(data + 1, size - 1));
  std::replace(text.begin(), text.end(), '\0', ' ');
  try {
    kTries[*data % std::size(kTries)](text);
  } catch (const host::HealthFileError& error) {
    CheckRefusal(error.what(), text);
  }
  return 0;
}
