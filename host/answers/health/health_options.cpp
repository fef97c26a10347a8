#include "host/answers/health/health_options.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

#include "host/answers/health/wall_time.h"
#include "host/answers/parts/report_lines.h"
#include "host/text/decoder.h"
#include "host/text/nearest_name.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

constexpr HealthSetting kSettings[] = {
    {"recent_days", 30, "days before the collection in which entries of logs count"},
    {"media_errors", 0, "media errors of a drive that are still well"},
    {"other_errors", 0, "other errors of a drive that are still well"},
    {"resets", 3, "time-outs and resets of a drive in the log from which it is told"},
    {"hdd_warning", 55, "°C of a hard disk, unless it tells its own limit"},
    {"hdd_critical", 60, "°C of a hard disk, unless it tells its own limit"},
    {"ssd_warning", 65, "°C of an SSD, unless it tells its own limit"},
    {"ssd_critical", 70, "°C of an SSD, unless it tells its own limit"},
    {"wear_left", 10, "per cent of an SSD's life at which to order another"},
    {"roc_warning", 85, "°C of a MegaRAID controller's chip"},
    {"roc_critical", 95, "°C of a MegaRAID controller's chip"},
    {"sel_full_percent", 90, "per cent of the hardware log's room"},
    {"ecc_errors", 10, "correctable memory errors in the log from which they are told"},
};

constexpr std::string_view kSources[] = {
    "lsi",  "microchip", "intel", "sensors", "sel", "fru", "power supplies",
    "leds", "self-test", "amt",   "sas2",
};

/// What is judged without a question to the parts.
constexpr const char* kRulesOfProgram[] = {"collection.doubt", "collection.not-judged",
                                           "collection.nothing", "collection.required"};

/// The text before a # outside quotation marks, and the one after it.
struct Commented {
  std::string_view text;
  std::string_view comment;
};
Commented SplitComment(std::string_view line) {
  bool isQuoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') isQuoted = !isQuoted;
    if (line[i] == '#' && !isQuoted) return {Trim(line.substr(0, i)), Trim(line.substr(i + 1))};
  }
  return {Trim(line), {}};
}

/// Words between blanks; what is in quotation marks is one word without them.
std::vector<std::string> SplitQuoted(std::string_view text) {
  std::vector<std::string> words;
  bool isQuoted = false;
  bool isInWord = false;
  for (const char c : text) {
    if (!isQuoted && (c == ' ' || c == '\t')) {
      isInWord = false;
      continue;
    }
    if (!isInWord) words.emplace_back();
    isInWord = true;
    if (c == '"') {
      isQuoted = !isQuoted;
    } else {
      words.back() += c;
    }
  }
  return words;
}

}  // namespace

std::span<const HealthSetting> ListHealthSettings() { return kSettings; }

void TakeSetting(std::string_view text, HealthSettings& settings) {
  const std::size_t equals = std::min(text.find('='), text.size());
  const std::string name(Trim(text.substr(0, equals)));
  const auto* known = std::find_if(std::begin(kSettings), std::end(kSettings),
                                   [&](const HealthSetting& one) { return one.name == name; });
  if (known == std::end(kSettings)) {
    std::vector<std::string> names;
    for (const HealthSetting& one : kSettings) names.emplace_back(one.name);
    throw UsageError(fmt::format("there is no setting {}{} (settings: {})", name,
                                 SuggestName(name, names), fmt::join(names, ", ")));
  }
  const std::string_view value = Trim(text.substr(std::min(equals + 1, text.size())));
  double number = 0;
  const auto read = std::from_chars(value.data(), value.data() + value.size(), number);
  const bool isNumber = read.ec == std::errc() && read.ptr == value.data() + value.size();
  if (!isNumber || !std::isfinite(number) || number < 0) {
    throw UsageError(
        fmt::format("{} needs a number from 0, as in {}={}", name, name, known->value));
  }
  settings[name] = number;
}

void TakeSettings(std::string_view text, const std::string& file, HealthSettings& settings) {
  ReportLine line;
  for (ReportLines lines(SkipByteOrderMark(text)); lines.Next(line);) {
    const std::string_view told = SplitComment(line.text).text;
    if (told.empty()) continue;
    try {
      TakeSetting(told, settings);
    } catch (const UsageError& error) {
      throw HealthFileError(file, static_cast<std::size_t>(line.number), error.what());
    }
  }
}

std::vector<Suppression> ReadSuppressions(std::string_view text, const std::string& file) {
  constexpr std::string_view kUntil = "until=";
  std::vector<Suppression> read;
  ReportLine line;
  for (ReportLines lines(SkipByteOrderMark(text)); lines.Next(line);) {
    const auto [told, reason] = SplitComment(line.text);
    if (told.empty()) continue;
    const auto refuse = [&](std::string_view why) {
      throw HealthFileError(file, static_cast<std::size_t>(line.number), why);
    };
    Suppression one;
    std::vector<std::string> words = SplitQuoted(told);
    if (words.size() == 3 && words.back().starts_with(kUntil)) {
      one.until = words.back().substr(kUntil.size());
      words.pop_back();
      constexpr std::size_t kDay = 10;
      if (one.until.size() != kDay || !ReadWallTime(one.until)) {
        refuse("until needs a day, as in until=2026-12-31");
      }
    }
    if (words.size() != 2) {
      refuse("a line is RULE ID [until=DATE] # REASON; an id with blanks is in quotation marks");
    }
    if (reason.empty()) refuse("there is no reason: end the line with # and why");
    one.rule = words[0];
    one.id = words[1];
    one.reason = reason;
    one.file = file;
    one.line = static_cast<std::size_t>(line.number);
    read.push_back(std::move(one));
  }
  return read;
}

bool FitsPattern(std::string_view text, std::string_view pattern) {
  std::size_t at = 0;               // in text
  std::size_t next = 0;             // in pattern
  std::size_t star = pattern.npos;  // the last * passed
  std::size_t retry = 0;            // where in text it ends so far
  while (at < text.size()) {
    if (next < pattern.size() && pattern[next] == '*') {
      star = next++;
      retry = at;
    } else if (next < pattern.size() && pattern[next] == text[at]) {
      ++next;
      ++at;
    } else if (star != pattern.npos) {
      next = star + 1;
      at = ++retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', next) == pattern.npos;
}

void RefuseUnknownRules(const HealthOptions& options) {
  std::vector<std::string> rules(std::begin(kRulesOfProgram), std::end(kRulesOfProgram));
  for (const Rule& rule : options.rules) rules.push_back(rule.id);
  for (const Suppression& one : options.suppressions) {
    const bool isKnown = std::any_of(rules.begin(), rules.end(), [&](const std::string& rule) {
      return FitsPattern(rule, one.rule);
    });
    if (isKnown) continue;
    throw HealthFileError(
        one.file, one.line,
        fmt::format("there is no rule {}{}", one.rule, SuggestName(one.rule, rules)));
  }
}

void TakeRequired(std::string_view text, std::vector<std::string>& required) {
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    const std::string name(Trim(text.substr(begin, end - begin)));
    if (std::find(std::begin(kSources), std::end(kSources), name) == std::end(kSources)) {
      throw UsageError(
          fmt::format("there is no source {} (sources: {})", name, fmt::join(kSources, ", ")));
    }
    required.push_back(name);
    begin = end + 1;
  }
}

}  // namespace host
