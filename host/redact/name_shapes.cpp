// Names that their signs tell: mail addresses, machines in a domain, folders and files.
#include <algorithm>
#include <iterator>
#include <string>

#include "host/redact/shape_characters.h"
#include "host/redact/value_shapes.h"

namespace host {
namespace {

/// Where the name of a folder or a file ends that begins at `begin`. A blank is part of it only
/// when a backslash follows in the same path.
std::size_t FindNameEnd(std::string_view text, std::size_t begin) {
  constexpr std::string_view kEnds = "\\/\"<>|*?:,;'()[]{}=\r\n\t";
  std::size_t end = begin;
  while (end < text.size() && text[end] != '\0' && text[end] != ' ' &&
         kEnds.find(text[end]) == std::string_view::npos) {
    ++end;
  }
  if (PeekAt(text, end) != ' ') return end;
  constexpr std::size_t kLongestName = 255;
  std::size_t next = end;
  while (next < text.size() && next - begin < kLongestName &&
         kEnds.find(text[next]) == std::string_view::npos && text[next] != '\0' &&
         !(text[next] == ' ' && PeekAt(text, next + 1) == ' ')) {
    ++next;
  }
  return PeekAt(text, next) == '\\' ? next : end;
}

}  // namespace

void ReadMail(std::string_view text, std::size_t at, const TakeValue& take) {
  const auto isLocal = [](char c) {
    return IsNameCharacter(c) || c == '.' || c == '+' || c == '%';
  };
  std::size_t begin = at;
  while (begin > 0 && isLocal(text[begin - 1])) --begin;
  std::size_t end = at + 1;
  while (IsNameCharacter(PeekAt(text, end)) || PeekAt(text, end) == '.') ++end;
  while (end > at && text[end - 1] == '.') --end;
  const bool hasDomain = text.substr(at, end - at).find('.') != std::string_view::npos;
  if (begin < at && hasDomain) take(ValueKind::kMail, begin, end);
}

void ReadDomainName(std::string_view text, std::size_t at, const TakeValue& take) {
  constexpr std::string_view kDomains[] = {
      "com",     "net",     "org",      "edu",    "gov",  "mil",  "local", "localdomain",
      "lan",     "corp",    "home",     "arpa",   "test", "eu",   "de",    "at",
      "ch",      "uk",      "fr",       "nl",     "ads",  "priv", "int",   "ad",
      "example", "invalid", "internal", "intern", "intra"};
  if (at > 0 && (text[at - 1] == '.' || text[at - 1] == '-' || text[at - 1] == '@')) return;
  std::size_t end = at;
  std::size_t last = at;
  while (IsNameCharacter(PeekAt(text, end)) ||
         (PeekAt(text, end) == '.' && IsNameCharacter(PeekAt(text, end + 1)))) {
    if (text[end] == '.') last = end + 1;
    ++end;
  }
  if (last == at || PeekAt(text, end) == '@') return;
  const std::string domain = LowerCase(text.substr(last, end - last));
  if (std::ranges::find(kDomains, domain) == std::end(kDomains)) return;
  for (std::size_t begin = at; begin < last;) {
    const std::size_t dot = text.find('.', begin);
    take(ValueKind::kHost, begin, dot);
    begin = dot + 1;
  }
}

void ReadPath(std::string_view text, std::size_t at, const TakeValue& take) {
  const bool isDrive = at >= 2 && text[at - 1] == ':' && IsAsciiLetterOrDigit(text[at - 2]) &&
                       (at == 2 || !IsAsciiLetterOrDigit(text[at - 3]));
  const bool isServer = PeekAt(text, at + 1) == '\\' && IsNameCharacter(PeekAt(text, at + 2)) &&
                        (at == 0 || text[at - 1] == ' ' || text[at - 1] == '"' ||
                         text[at - 1] == '\n' || text[at - 1] == '\t' || text[at - 1] == '=');
  if (!isDrive && !isServer) return;
  std::size_t begin = at + (isServer ? 2 : 1);
  bool isUser = false;
  bool isMachine = isServer;
  for (;;) {
    while (PeekAt(text, begin) == '\\') ++begin;  // escaped ones come twice
    std::size_t end = FindNameEnd(text, begin);
    if (end == begin) return;
    const bool isLast = PeekAt(text, end) != '\\';
    const std::string_view name = text.substr(begin, end - begin);
    // An ending such as ".log" is nobody's.
    const std::size_t dot = name.rfind('.');
    const std::size_t nameEnd =
        isLast && dot != std::string_view::npos && dot > 0 ? begin + dot : end;
    take(isMachine ? ValueKind::kHost
         : isUser  ? ValueKind::kPerson
                   : ValueKind::kPath,
         begin, nameEnd);
    if (isLast) return;
    isUser = LowerCase(name) == "users" || LowerCase(name) == "documents and settings";
    isMachine = false;
    begin = end + 1;
  }
}

}  // namespace host
