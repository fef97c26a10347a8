#include "host/answers/parts/report_lines.h"

#include <algorithm>

namespace host {
namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\v\f";

}  // namespace

bool ReportLines::Next(ReportLine& line) {
  if (rest.empty()) return false;
  const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
  line = {rest.substr(0, end), ++number};
  rest.remove_prefix(end);
  if (rest.starts_with("\r\n")) {
    rest.remove_prefix(2);
  } else if (!rest.empty()) {
    rest.remove_prefix(1);
  }
  return true;
}

std::vector<std::string_view> ListWords(std::string_view text) {
  std::vector<std::string_view> words;
  std::size_t at = text.find_first_not_of(kWhiteSpace);
  while (at != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(kWhiteSpace, at), text.size());
    words.push_back(text.substr(at, end - at));
    at = text.find_first_not_of(kWhiteSpace, end);
  }
  return words;
}

std::string_view GetFrom(std::string_view text, std::string_view word) {
  return text.substr(static_cast<std::size_t>(word.data() - text.data()));
}

std::string_view GetBefore(std::string_view text, std::string_view word) {
  return text.substr(0, static_cast<std::size_t>(word.data() - text.data()));
}

std::string_view GetAfter(std::string_view text, std::string_view word) {
  return GetFrom(text, word).substr(word.size());
}

std::optional<LabelledValue> SplitLabel(std::string_view line, char separator) {
  const std::size_t at = line.find(separator);
  if (at == std::string_view::npos) return std::nullopt;
  const LabelledValue split{Trim(line.substr(0, at)), Trim(line.substr(at + 1))};
  if (split.label.empty()) return std::nullopt;
  return split;
}

std::optional<LabelledValue> SplitPaddedLabel(std::string_view line) {
  const auto isBlankAt = [&](std::size_t at) {
    return at >= line.size() || line[at] == ' ' || line[at] == '\t';
  };
  std::size_t plain = std::string_view::npos;
  for (std::size_t at = line.find(':'); at != std::string_view::npos; at = line.find(':', at + 1)) {
    if (!isBlankAt(at + 1)) continue;
    if (plain == std::string_view::npos) plain = at;
    if (at == 0 || !isBlankAt(at - 1)) continue;
    plain = at;
    break;
  }
  if (plain == std::string_view::npos) return std::nullopt;
  const LabelledValue split{Trim(line.substr(0, plain)), Trim(line.substr(plain + 1))};
  if (split.label.empty()) return std::nullopt;
  return split;
}

bool IsRule(std::string_view text, char c, std::size_t least) {
  const std::string_view rule = Trim(text);
  return rule.size() >= least && rule.find_first_not_of(c) == std::string_view::npos;
}

}  // namespace host
