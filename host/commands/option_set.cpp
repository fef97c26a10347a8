#include "host/commands/option_set.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>
#include <utility>

#include "host/text/nearest_name.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace host {
namespace {

/// More than anything that is counted here, and small enough to count with.
constexpr std::uint64_t kMostNumber = std::uint64_t{1} << 32;

constexpr char kGiveDestination[] = "give a file, or - for standard output";

/// The value's name in the help.
const char* NameValue(OptionValue value) {
  switch (value) {
    case OptionValue::kFolder:
      return "FOLDER";
    case OptionValue::kFile:
      return "FILE";
    case OptionValue::kRecording:
      return "RECORDING";
    case OptionValue::kTable:
      return "CLASS";
    default:
      return "NAME";
  }
}

/// A number of decimal digits; 0 for anything else.
std::uint64_t ReadNumber(std::string_view digits) {
  std::uint64_t number = 0;
  const auto read = std::from_chars(digits.begin(), digits.end(), number);
  return read.ec == std::errc() && read.ptr == digits.end() ? number : 0;
}

void RefuseUnknownChoice(const OptionDescription& option, const std::string& given,
                         bool standsAlone) {
  const std::vector<std::string>& choices = option.choices;
  if (std::find(choices.begin(), choices.end(), given) != choices.end()) return;
  const std::string suggested = SuggestName(given, choices);
  // An option that can stand alone says what to do; others are called like what they choose.
  if (standsAlone) {
    throw UsageError(fmt::format("{}={}: there is no such choice{} (choices: {})", option.name,
                                 given, suggested, fmt::join(choices, ", ")));
  }
  throw UsageError(fmt::format("there is no {0} {1}{2} ({0}s: {3})", option.name.substr(2), given,
                               suggested, fmt::join(choices, ", ")));
}

}  // namespace

void OptionSet::AddFlag(const char* name, bool& flag, const char* help) {
  CLI::Option* option = app.add_flag(name, flag, help)->disable_flag_override();
  rows.push_back({option, {name, OptionValue::kNone, {}}, nullptr});
}

void OptionSet::AddNames(const char* name, OptionValue value, std::vector<std::string>& names,
                         const char* help) {
  CLI::Option* option = app.add_option(name, names, help);
  option->type_name(NameValue(value))->allow_extra_args(false);
  rows.push_back({option, {name, value, {}}, nullptr});
}

void OptionSet::AddPath(const char* name, OptionValue value,
                        std::optional<std::filesystem::path>& path, const char* help) {
  AddPathOption(
      name, value, [&](auto given) { path = std::move(given); }, help, "give a path");
}

void OptionSet::AddPathOrNone(const char* name, OptionValue value,
                              std::optional<std::filesystem::path>& path, const char* help) {
  AddPathOption(
      name, value, [&](auto given) { path = std::move(given); }, help, nullptr);
  rows.back().option->expected(0, 1);
}

void OptionSet::AddPaths(const char* name, OptionValue value,
                         std::vector<std::filesystem::path>& paths, const char* help) {
  AddPathOption(
      name, value, [&](auto given) { paths.push_back(std::move(given)); }, help, "give a path");
  rows.back().option->trigger_on_parse()->expected(1)->multi_option_policy(
      CLI::MultiOptionPolicy::TakeAll);
}

void OptionSet::AddDestination(const char* name, Destination& destination,
                               const std::string& help) {
  AddPathOption(
      name, OptionValue::kFile, [&](auto given) { destination.path = std::move(given); }, help,
      kGiveDestination);
}

void OptionSet::AddDestination(const char* name, std::optional<Destination>& destination,
                               const char* help) {
  AddPathOption(
      name, OptionValue::kFile, [&](auto given) { destination.emplace().path = std::move(given); },
      help, kGiveDestination);
}

void OptionSet::AddPathOption(const char* name, OptionValue value,
                              std::function<void(std::filesystem::path)> set,
                              const std::string& help, const char* whenEmpty) {
  CLI::Option* option = app.add_option_function<std::string>(
      name, [set = std::move(set)](const std::string& text) { set(PathFromText(text)); }, help);
  option->type_name(NameValue(value));
  rows.push_back({option, {name, value, {}}, whenEmpty});
}

void OptionSet::AddChoice(const char* name, std::vector<std::string> choices, std::string& choice,
                          const std::string& help) {
  CLI::Option* option = app.add_option(name, choice, help);
  option->type_name(NameValue(OptionValue::kChoice));
  rows.push_back({option, {name, OptionValue::kChoice, std::move(choices)}, nullptr});
}

void OptionSet::AddOptionalChoice(const char* name, std::vector<std::string> choices,
                                  std::optional<std::string>& choice, const std::string& help) {
  CLI::Option* option = app.add_option_function<std::string>(
      name, [&choice](const std::string& given) { choice = given; }, help);
  option->type_name(NameValue(OptionValue::kChoice))->expected(0, 1)->default_str(choices.front());
  rows.push_back({option, {name, OptionValue::kChoice, std::move(choices)}, nullptr});
}

void OptionSet::AddTexts(const char* name, const char* form, std::vector<std::string>& texts,
                         const char* help) {
  CLI::Option* option = app.add_option(name, texts, help);
  option->type_name(form)->allow_extra_args(false);
  rows.push_back({option, {name, OptionValue::kAny, {}}, "give a value"});
}

void OptionSet::AddSeconds(const char* name, std::optional<unsigned>& seconds, unsigned most,
                           const char* help) {
  AddCount(name, "SECONDS", seconds, most, help);
}

void OptionSet::AddMebibytes(const char* name, std::optional<unsigned>& mebibytes, unsigned most,
                             const char* help) {
  AddCount(name, "MIB", mebibytes, most, help);
}

void OptionSet::AddCount(const char* name, const char* form, std::optional<unsigned>& count,
                         unsigned most, const char* help) {
  CLI::Option* option = app.add_option_function<std::string>(
      name,
      [name, &count, most](const std::string& given) {
        const std::uint64_t number = ReadNumber(given);
        if (number == 0 || number > most) {
          throw UsageError(fmt::format("{} {}: give a number from 1 to {}", name, given, most));
        }
        count = static_cast<unsigned>(number);
      },
      help);
  option->type_name(form);
  rows.push_back({option, {name, OptionValue::kAny, {}}, nullptr});
}

void OptionSet::AddNumbers(const char* name, std::vector<std::string> names,
                           std::function<void(const std::string&, std::uint64_t)> set,
                           const char* help) {
  CLI::Option* option = app.add_option_function<std::vector<std::string>>(
      name,
      [name, names = std::move(names), set = std::move(set)](const std::vector<std::string>& all) {
        for (const std::string& given : all) {
          const std::size_t end = std::min(given.find('='), given.size());
          const std::uint64_t number =
              ReadNumber(std::string_view(given).substr(std::min(end + 1, given.size())));
          const std::string key = given.substr(0, end);
          if (number == 0 || number > kMostNumber ||
              std::find(names.begin(), names.end(), key) == names.end()) {
            throw UsageError(
                fmt::format("{} {}: give one of {}, \"=\" and a number from 1 to {}, such as {}=1",
                            name, given, fmt::join(names, ", "), kMostNumber, names.front()));
          }
          set(key, number);
        }
      },
      help);
  option->type_name("NAME=NUMBER")->allow_extra_args(false);
  rows.push_back({option, {name, OptionValue::kAny, {}}, nullptr});
}

void OptionSet::AddArguments(const char* name, const char* form, OptionValue value, int most,
                             std::vector<std::string>& words, const char* help) {
  CLI::Option* option = app.add_option(name, words, help);
  option->type_name(form)->expected(1, most);
  rows.push_back({option, {"", value, {}}, nullptr});
}

bool OptionSet::IsGiven(const char* name) const { return app.count(name) > 0; }

void OptionSet::CheckValues() const {
  for (const Row& row : rows) {
    if (row.option->count() == 0) continue;
    const std::string& given = row.option->results().front();
    if (row.whenEmpty != nullptr && given.empty()) {
      throw UsageError(fmt::format("{} is empty: {}", row.description.name, row.whenEmpty));
    }
    if (row.description.value == OptionValue::kChoice) {
      RefuseUnknownChoice(row.description, given, row.option->get_expected_min() == 0);
    }
  }
}

std::vector<OptionDescription> OptionSet::Describe() const {
  std::vector<OptionDescription> descriptions;
  for (const Row& row : rows) descriptions.push_back(row.description);
  return descriptions;
}

}  // namespace host
