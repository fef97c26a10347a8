#include "host/redact/text_redactor.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/secrets/amt_login.h"

namespace host {
namespace {

void WriteInPlace(std::string& text, const NarrowText& narrow, std::size_t begin,
                  std::string_view replacement) {
  for (std::size_t i = 0; i < replacement.size(); ++i) {
    text[narrow.PlaceOf(begin + i)] = replacement[i];
  }
}

}  // namespace

NarrowText::NarrowText(std::string_view text)
    : text(text), isNarrow(text.find('\0') == std::string_view::npos) {
  if (isNarrow) return;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\0') continue;
    narrow += text[at];
    places.push_back(at);
  }
}

void FindValues(std::string_view text, TextPlace place, const TakeValue& take) {
  FindByPlace(text, place, take);
  FindByLabel(text, take);
  FindByShape(text, take);
}

std::size_t LineCounter::LineOf(std::size_t at) {
  if (at < last) {
    last = 0;
    line = 1;
  }
  line +=
      static_cast<std::size_t>(std::count(text.begin() + static_cast<std::ptrdiff_t>(last),
                                          text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
  last = at;
  return line;
}

TextRedactor::TextRedactor(ValueList& values) : values(values), matcher(values.MakeMatcher()) {
  for (const ListedValue& value : values.Values()) pseudonyms.insert(value.pseudonym);
}

void TextRedactor::Count(std::size_t number, std::size_t at, const std::string& name,
                         LineCounter& lines) {
  ListedValue& value = values.Values()[number];
  if (value.count++ == 0) value.where = fmt::format("{}, line {}", name, lines.LineOf(at));
}

TextRedactor::Result TextRedactor::Redact(std::string_view given, TextPlace place, bool hasOrdinary,
                                          const std::string& name) {
  Result result{std::string(given), {}};
  std::string& text = result.text;
  std::vector<Edit> edits;
  if (hasOrdinary) ReplaceSpots(text, place, name, edits);
  ReplaceMatches(text, name, edits);
  ChangeEncodedBytes(
      text,
      [&](std::string& bytes) {
        std::vector<Edit> inside;
        ReplaceMatches(bytes, name + ", encoded", inside);
        return !inside.empty();
      },
      [&](const Stretch& stretch) { edits.push_back({stretch}); });
  result.leaks = Check(text, edits);

  // From the end on, so that the places before stay.
  for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit) {
    if (!edit->isPassword) continue;
    std::string hidden;
    for (const char c : kHiddenPassword) {
      if (edit->writing == Writing::kBigEndian) hidden += '\0';
      hidden += c;
      if (edit->writing == Writing::kLittleEndian) hidden += '\0';
    }
    text.replace(edit->stretch.begin, edit->stretch.end - edit->stretch.begin, hidden);
  }
  return result;
}

void TextRedactor::ReplaceSpots(std::string& text, TextPlace place, const std::string& name,
                                std::vector<Edit>& edits) {
  const std::string original = text;
  const NarrowText narrow(original);
  LineCounter lines(original);
  std::set<std::size_t> begins;
  FindValues(narrow.View(), place, [&](ValueKind kind, std::size_t begin, std::size_t end) {
    const std::string_view bytes = narrow.View().substr(begin, end - begin);
    const std::optional<std::size_t> number = values.Add(kind, bytes);
    if (!number || !values.Values()[*number].isOrdinary) return;
    const Stretch stretch{narrow.PlaceOf(begin), narrow.PlaceOf(end - 1) + 1};
    // The same spot may be found by its label and by its place.
    if (!begins.insert(stretch.begin).second) return;
    WriteInPlace(text, narrow, begin, values.Replacement(*number, bytes));
    const bool isWritten = stretch.end - stretch.begin == bytes.size();
    edits.push_back({stretch, kind == ValueKind::kPassword && isWritten});
    Count(*number, stretch.begin, name, lines);
  });
}

// What `take` changes before the end of a match is not looked at again.
void TextRedactor::ForEachMatch(const std::string& text,
                                const std::function<void(const Match&)>& take) const {
  std::size_t from = 0;
  while (const std::optional<Match> match = matcher.FindNext(text, from)) {
    take(*match);
    from = match->end;
  }
}

void TextRedactor::ReplaceMatches(std::string& text, const std::string& name,
                                  std::vector<Edit>& edits) {
  LineCounter lines(text);
  ForEachMatch(text, [&](const Match& match) {
    Count(match.value, match.begin, name, lines);
    matcher.Replace(text, match);
    const bool isPassword = values.Values()[match.value].kind == ValueKind::kPassword;
    edits.push_back({{match.begin, match.end}, isPassword, match.writing});
  });
}

std::vector<std::size_t> TextRedactor::Check(const std::string& text,
                                             std::vector<Edit>& edits) const {
  std::ranges::sort(edits, {}, [](const Edit& edit) { return edit.stretch.begin; });
  // Edits may lie in others, of encoded bytes.
  std::vector<std::size_t> ends;
  for (const Edit& edit : edits) {
    ends.push_back(std::max(ends.empty() ? 0 : ends.back(), edit.stretch.end));
  }
  const auto isEdited = [&](std::size_t begin, std::size_t end) {
    const auto next = std::ranges::lower_bound(edits, end, {},
                                               [](const Edit& edit) { return edit.stretch.begin; });
    return next != edits.begin() &&
           ends[static_cast<std::size_t>(next - edits.begin()) - 1] > begin;
  };
  std::vector<std::size_t> leaks;
  ForEachMatch(text, [&](const Match& match) {
    if (!isEdited(match.begin, match.end)) leaks.push_back(match.value);
  });
  std::string copy = text;
  std::optional<Match> inside;
  ChangeEncodedBytes(
      copy,
      [&](std::string& bytes) {
        inside = matcher.FindNext(bytes, 0);
        return inside.has_value();
      },
      [&](const Stretch& stretch) {
        if (!isEdited(stretch.begin, stretch.end)) leaks.push_back(inside->value);
      });
  return leaks;
}

std::vector<std::size_t> TextRedactor::FindLeaks(const std::string& text) const {
  std::vector<std::size_t> leaks;
  ForEachMatch(text, [&](const Match& match) {
    if (!pseudonyms.contains(values.KeyOf(match.value))) leaks.push_back(match.value);
  });
  return leaks;
}

}  // namespace host
