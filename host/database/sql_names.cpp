#include "host/database/sql_names.h"

#include <fmt/format.h>

#include "host/text/ascii.h"

namespace host {
namespace {

enum class Letter { kNone, kLower, kUpper, kOther };

/// Characters beyond ASCII, and digits, have no case.
Letter ClassifyLetter(char c) {
  if (c >= 'a' && c <= 'z') return Letter::kLower;
  if (c >= 'A' && c <= 'Z') return Letter::kUpper;
  return (c >= '0' && c <= '9') || (c & 0x80) != 0 ? Letter::kOther : Letter::kNone;
}

}  // namespace

std::string QuoteName(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string MakeSnakeCase(std::string_view label) {
  // A capital begins a word after two small letters: "seqNum" has two words, "sCC" is one.
  constexpr int kWordLetters = 2;
  std::string name;
  int smallLetters = 0;
  bool isNewWord = false;
  for (const char c : label) {
    const Letter letter = ClassifyLetter(c);
    if (letter == Letter::kNone) {
      isNewWord = isNewWord || c != '.';  // "S.M.A.R.T" is one word.
      continue;
    }
    if (letter == Letter::kUpper && smallLetters >= kWordLetters) isNewWord = true;
    if (isNewWord && !name.empty()) name += '_';
    isNewWord = false;
    smallLetters = letter == Letter::kLower ? smallLetters + 1 : 0;
    name += LowerCase(c);
  }
  return name;
}

std::string UniqueNames::Take(std::string_view wanted) {
  std::string name(wanted);
  for (int i = 2; !taken.insert(LowerCase(name)).second; ++i)
    name = fmt::format("{}_{}", wanted, i);
  return name;
}

}  // namespace host
