// What a user may change of how machines are judged.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/answers/health/rule_file.h"

namespace host {

struct HealthSetting {
  std::string_view name;
  double value;  ///< unless given
  std::string_view description;
};
std::span<const HealthSetting> ListHealthSettings();

/// By name; what is not in it has its usual value.
using HealthSettings = std::map<std::string, double, std::less<>>;

/// Takes "NAME=VALUE", blanks allowed around both, into `settings`. Throws UsageError.
void TakeSetting(std::string_view text, HealthSettings& settings);
/// Takes a file's lines of that form; a # begins a comment. Throws HealthFileError.
void TakeSettings(std::string_view text, const std::string& file, HealthSettings& settings);

/// Hits that somebody knows of and does not want to be alarmed by.
struct Suppression {
  std::string rule;   ///< * is any text
  std::string id;     ///< of the part, or its serial number; * is any text
  std::string until;  ///< a day as in "2026-12-31", the last on which it holds; empty: for ever
  std::string reason;
  std::string file = {};  ///< that says so
  std::size_t line = 0;   ///< of it, from 1
};
/// Reads lines "RULE ID [until=DATE] # REASON"; an id with blanks is in quotation marks. Throws
/// HealthFileError.
std::vector<Suppression> ReadSuppressions(std::string_view text, const std::string& file);
/// Whether `text` fits `pattern`, in which * is any text.
bool FitsPattern(std::string_view text, std::string_view pattern);

struct HealthOptions {
  std::vector<Rule> rules = GetBuiltInRules().rules;
  HealthSettings settings = {};
  std::vector<Suppression> suppressions = {};
  std::vector<std::string> required = {};  ///< sources that have to be there
  std::optional<std::string> asOf = {};    ///< as ReadWallTime reads it
  bool opensNoFile = false;                ///< as a process that may not: memory holds all
};

/// Throws HealthFileError for the first suppression that is of none of the rules, the user's among
/// them.
void RefuseUnknownRules(const HealthOptions& options);

/// Takes the sources of "lsi,sensors" into `required`. Throws UsageError for one that there is not.
void TakeRequired(std::string_view text, std::vector<std::string>& required);

}  // namespace host
