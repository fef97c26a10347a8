#include "host/answers/parts/report_lines.h"

#include <algorithm>

namespace host {

bool ReportLines::Next(ReportLine& line) {
  if (begin >= text.size()) return false;
  // Kept over the lines, or a text that ends its lines with CR would be searched for each of them.
  if (feed < begin || begin == 0) feed = std::min(text.find('\n', begin), text.size());
  const std::string_view upToFeed = text.substr(begin, feed - begin);
  const std::size_t length = std::min(upToFeed.find('\r'), upToFeed.size());
  line = {upToFeed.substr(0, length), ++number};
  const bool isPair = length + 1 == upToFeed.size() && feed < text.size();
  begin += length + (isPair ? 2 : 1);
  return true;
}

std::vector<std::string_view> ListWords(std::string_view text) {
  // No function, which would be called for each character.
  constexpr auto kIsBlank = [](char c) { return IsWhiteSpace(c); };
  std::vector<std::string_view> words;
  constexpr std::size_t kUsual = 16;  // of a line
  words.reserve(kUsual);
  const char* const end = text.data() + text.size();
  for (const char* at = text.data(); at != end;) {
    const char* const word = std::find_if_not(at, end, kIsBlank);
    at = std::find_if(word, end, kIsBlank);
    if (at != word) words.emplace_back(word, static_cast<std::size_t>(at - word));
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
