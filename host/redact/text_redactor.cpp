#include "host/redact/text_redactor.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "host/redact/encoded_runs.h"
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

std::string TextRedactor::Redact(std::string_view given, TextPlace place, bool hasOrdinary,
                                 const std::string& name) {
  std::string text(given);
  std::vector<WrittenPassword> passwords;
  if (hasOrdinary) ReplaceSpots(text, place, name, passwords);
  ReplaceMatches(text, name, passwords);
  const std::string nameInside = name + ", encoded";
  ChangeEncodedBytes(text, matcher.ListBeginnings(), [&](std::string& bytes) {
    std::vector<WrittenPassword> inside;  // an encoded one keeps its length
    return ReplaceMatches(bytes, nameInside, inside);
  });
  return passwords.empty() ? text : HidePasswords(text, std::move(passwords));
}

std::string TextRedactor::HidePasswords(std::string_view text,
                                        std::vector<WrittenPassword> passwords) {
  std::ranges::sort(passwords, {}, &WrittenPassword::begin);
  std::string hidden;
  std::size_t done = 0;
  for (const WrittenPassword& password : passwords) {
    if (password.begin < done) continue;
    hidden += text.substr(done, password.begin - done);
    done = password.end;
    for (const char c : kHiddenPassword) {
      if (password.writing == Writing::kBigEndian) hidden += '\0';
      hidden += c;
      if (password.writing == Writing::kLittleEndian) hidden += '\0';
    }
  }
  hidden += text.substr(done);
  return hidden;
}

void TextRedactor::ReplaceSpots(std::string& text, TextPlace place, const std::string& name,
                                std::vector<WrittenPassword>& passwords) {
  const std::string original = text;
  const NarrowText narrow(original);
  LineCounter lines(original);
  std::set<std::size_t> begins;
  FindValues(narrow.View(), place, [&](ValueKind kind, std::size_t begin, std::size_t end) {
    const std::string_view bytes = narrow.View().substr(begin, end - begin);
    const std::optional<std::size_t> number = values.Add(kind, bytes);
    if (!number || !values.Values()[*number].isOrdinary) return;
    const WrittenPassword written{narrow.PlaceOf(begin), narrow.PlaceOf(end - 1) + 1};
    // The same spot may be found by its label and by its place.
    if (!begins.insert(written.begin).second) return;
    WriteInPlace(text, narrow, begin, values.Replacement(*number, bytes));
    const bool isPlain = written.end - written.begin == bytes.size();
    if (kind == ValueKind::kPassword && isPlain) passwords.push_back(written);
    Count(*number, written.begin, name, lines);
  });
}

// What `take` changes before the end of a match is not looked at again.
void TextRedactor::ForEachMatch(std::string_view text,
                                const std::function<void(const Match&)>& take) const {
  std::size_t from = 0;
  while (const std::optional<Match> match = matcher.FindNext(text, from)) {
    take(*match);
    from = match->end;
  }
}

bool TextRedactor::ReplaceMatches(std::string& text, const std::string& name,
                                  std::vector<WrittenPassword>& passwords) {
  LineCounter lines(text);
  bool hasMatch = false;
  ForEachMatch(text, [&](const Match& match) {
    hasMatch = true;
    Count(match.value, match.begin, name, lines);
    matcher.Replace(text, match);
    if (values.Values()[match.value].kind != ValueKind::kPassword) return;
    passwords.push_back({match.begin, match.end, match.writing});
  });
  return hasMatch;
}

std::vector<std::size_t> TextRedactor::FindLeaks(std::string_view text) const {
  std::vector<std::size_t> leaks;
  const auto findIn = [&](std::string_view bytes) {
    ForEachMatch(bytes, [&](const Match& match) {
      if (!pseudonyms.contains(values.KeyOf(match.value))) leaks.push_back(match.value);
    });
  };
  findIn(text);
  ReadEncodedBytes(text, matcher.ListBeginnings(), findIn);
  return leaks;
}

}  // namespace host
