// Values that are known by their shape, wherever they are.
#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

#include "host/redact/value_finder.h"
#include "host/text/ascii.h"

namespace host {
namespace {

/// What a character can be part of: each one of a text is asked for.
struct CharacterUse {
  bool isHexDigit : 1;
  bool isWord : 1;
  bool isName : 1;
};
constexpr std::array<CharacterUse, 256> kUses = [] {
  std::array<CharacterUse, 256> uses{};
  for (std::size_t i = 0; i < uses.size(); ++i) {
    const char c = LowerCase(static_cast<char>(i));
    const bool isWord = IsAsciiLetterOrDigit(c);
    uses[i] = {.isHexDigit = IsAsciiDigit(c) || (c >= 'a' && c <= 'f'),
               .isWord = isWord,
               .isName = isWord || c == '-' || c == '_' || (c & 0x80) != 0};
  }
  return uses;
}();

CharacterUse UseOf(char c) { return kUses[static_cast<unsigned char>(c)]; }
bool IsHexDigit(char c) { return UseOf(c).isHexDigit; }
bool IsNameCharacter(char c) { return UseOf(c).isName; }

/// A text that is read from one place on.
class ShapeReader {
 public:
  ShapeReader(std::string_view text, const TakeValue& take) : text(text), take(take) {}

  void Read() {
    bool isInWord = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
      const char c = text[at];
      const CharacterUse use = UseOf(c);
      const bool beginsWord = !isInWord;
      isInWord = use.isWord;
      if (use.isWord) {
        if (!beginsWord) continue;
        ReadDomainName(at);
        if (use.isHexDigit) ReadAddress(at);
        continue;
      }
      if (c == '@') ReadMail(at);
      if (c == '\\') ReadPath(at);
      if (c == ':' && beginsWord) ReadAddress(at);
    }
  }

 private:
  char At(std::size_t at) const { return at < text.size() ? text[at] : '\0'; }

  std::size_t CountHexDigits(std::size_t at) const {
    std::size_t end = at;
    while (IsHexDigit(At(end))) ++end;
    return end - at;
  }

  void ReadAddress(std::size_t at) {
    // A colon alone begins only an IPv6 address.
    if (text[at] == ':' && At(at + 1) != ':') return;
    // The first group tells which of them it may be.
    const std::size_t size = CountHexDigits(at);
    const char sign = At(at + size);
    if (size == 8 && sign == '-' && ReadGuid(at)) return;
    if (size == 2 && ReadPairs(at)) return;
    if (sign == '.' && (ReadDottedMac(at) || ReadIpv4(at))) return;
    if (sign == ':' && ReadIpv6(at)) return;
    ReadWwn(at);
  }

  bool ReadGuid(std::size_t at) {
    constexpr std::size_t kGroups[] = {8, 4, 4, 4, 12};
    std::size_t end = at;
    for (const std::size_t size : kGroups) {
      if (end > at && At(end++) != '-') return false;
      if (CountHexDigits(end) != size) return false;
      end += size;
    }
    if (IsAsciiLetterOrDigit(At(end))) return false;
    take(ValueKind::kGuid, at, end);
    return true;
  }

  /// Six or eight pairs with the same sign between them: a MAC address or a world-wide name.
  bool ReadPairs(std::size_t at) {
    const char separator = At(at + 2);
    if (separator != '-' && separator != ':' && separator != ' ') return false;
    std::size_t end = at;
    std::size_t pairs = 0;
    while (CountHexDigits(end) == 2 && !IsAsciiLetterOrDigit(At(end + 2))) {
      ++pairs;
      end += 2;
      if (At(end) != separator) break;
      ++end;
    }
    if (end > at && text[end - 1] == separator) --end;
    constexpr std::size_t kMacPairs = 6;
    constexpr std::size_t kWwnPairs = 8;
    if (pairs != kMacPairs && pairs != kWwnPairs) return false;
    // Six bytes with blanks between them can be anything.
    if (separator == ' ' && !TellsMac(at, end)) return false;
    if (separator != ' ' && at > 0 && text[at - 1] == separator) return false;
    const bool isMulticast = pairs == kMacPairs && (HexDigitOf(text[at + 1]) & 1) != 0;
    if (!isMulticast) take(pairs == kMacPairs ? ValueKind::kMac : ValueKind::kWwn, at, end);
    return true;
  }

  static int HexDigitOf(char c) { return IsAsciiDigit(c) ? c - '0' : LowerCase(c) - 'a' + 10; }

  /// Of a list of interfaces, or after a label.
  bool TellsMac(std::size_t at, std::size_t end) const {
    if ((at > 0 && text[at - 1] == '.') || text.substr(end).starts_with(" ..")) return true;
    const std::size_t lineFeed = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
    const std::size_t begin = lineFeed == std::string_view::npos ? 0 : lineFeed + 1;
    constexpr std::size_t kLongestLabel = 80;
    const std::size_t from = std::max(begin, at - std::min(at, kLongestLabel));
    const std::string label = LowerCase(text.substr(from, at - from));
    return label.find("mac") != std::string::npos || label.find("physical") != std::string::npos ||
           label.find("hardware") != std::string::npos;
  }

  bool ReadDottedMac(std::size_t at) {
    std::size_t end = at;
    bool hasLetter = false;
    for (int group = 0; group < 3; ++group) {
      if (group > 0 && At(end++) != '.') return false;
      if (CountHexDigits(end) != 4) return false;
      for (int i = 0; i < 4; ++i, ++end) hasLetter = hasLetter || !IsAsciiDigit(text[end]);
    }
    if (!hasLetter || IsAsciiLetterOrDigit(At(end))) return false;
    take(ValueKind::kMac, at, end);
    return true;
  }

  /// The end of four octets from `at` on.
  std::optional<std::size_t> FindIpv4End(std::size_t at) const {
    std::size_t end = at;
    for (int octet = 0; octet < 4; ++octet) {
      if (octet > 0 && At(end++) != '.') return std::nullopt;
      const std::size_t begin = end;
      int number = 0;
      while (IsAsciiDigit(At(end)) && end - begin < 4) number = number * 10 + (text[end++] - '0');
      const bool isOctet = end > begin && number <= 255 && (text[begin] != '0' || end == begin + 1);
      if (!isOctet) return std::nullopt;
    }
    const bool goesOn =
        IsAsciiLetterOrDigit(At(end)) || (At(end) == '.' && IsAsciiDigit(At(end + 1)));
    if (goesOn) return std::nullopt;
    return end;
  }

  bool ReadIpv4(std::size_t at) {
    if (!IsAsciiDigit(text[at])) return false;
    if (at > 1 && text[at - 1] == '.' && IsAsciiDigit(text[at - 2])) return false;
    const std::optional<std::size_t> end = FindIpv4End(at);
    if (!end) return false;
    int first = 0;
    for (std::size_t i = at; IsAsciiDigit(text[i]); ++i) first = first * 10 + (text[i] - '0');
    constexpr int kLoopback = 127;
    constexpr int kFirstMulticast = 224;
    const bool isNobodys = first == 0 || first == kLoopback || first >= kFirstMulticast;
    if (!isNobodys && !IsVersion(at)) take(ValueKind::kIpv4, at, *end);
    return true;
  }

  /// Whether the word before `at` announces a version, which may look like an IPv4 address.
  bool IsVersion(std::size_t at) const {
    constexpr std::string_view kWords[] = {"version",  "ver",  "v",       "firmware",
                                           "fw",       "bios", "build",   "package",
                                           "revision", "rev",  "release", "driver"};
    std::size_t end = at;
    while (end > 0 && std::string_view(" \t:=\"").find(text[end - 1]) != std::string_view::npos) {
      --end;
    }
    std::size_t begin = end;
    while (begin > 0 && IsAsciiLetterOrDigit(text[begin - 1]) && end - begin < 10) --begin;
    const std::string word = LowerCase(text.substr(begin, end - begin));
    return std::ranges::find(kWords, word) != std::end(kWords);
  }

  bool ReadIpv6(std::size_t at) {
    if (at > 0 && text[at - 1] == ':') return false;
    std::size_t end = at;
    std::size_t groups = 0;
    std::size_t digits = 0;
    bool hasGap = false;
    bool hasDecimal = false;
    for (;;) {
      const std::size_t size = CountHexDigits(end);
      if (size > 4) return false;
      if (size > 0) {
        const std::optional<std::size_t> ipv4 = groups > 0 ? FindIpv4End(end) : std::nullopt;
        if (ipv4 && At(end + size) == '.') return false;  // it is found by itself
        ++groups;
        digits += size;
        hasDecimal =
            hasDecimal ||
            std::any_of(text.begin() + static_cast<std::ptrdiff_t>(end),
                        text.begin() + static_cast<std::ptrdiff_t>(end + size), &IsAsciiDigit);
        end += size;
      }
      if (At(end) != ':') break;
      if (At(end + 1) == ':') {
        if (hasGap) return false;
        hasGap = true;
        end += 2;
        if (!IsHexDigit(At(end))) break;
      } else if (IsHexDigit(At(end + 1)) && size > 0) {
        ++end;
      } else {
        break;
      }
    }
    constexpr std::size_t kGroups = 8;
    constexpr std::size_t kFewestDigits = 6;
    const bool isWhole = hasGap ? groups > 0 && groups < kGroups : groups == kGroups;
    if (!isWhole || IsAsciiLetterOrDigit(At(end)) || (!hasDecimal && digits < kFewestDigits)) {
      return false;
    }
    const std::string_view address = text.substr(at, end - at);
    const bool isNobodys =
        address == "::1" || LowerCase(address).starts_with("ff0") || LowerCase(address) == "fe80::";
    if (!isNobodys) take(ValueKind::kIpv6, at, end);
    return true;
  }

  void ReadWwn(std::size_t at) {
    constexpr std::size_t kDigits = 16;
    std::size_t begin = at;
    if (text[at] == '0' && LowerCase(At(at + 1)) == 'x') begin = at + 2;
    const std::size_t size = CountHexDigits(begin);
    if (size != kDigits && size != 2 * kDigits) return;
    if (IsAsciiLetterOrDigit(At(begin + size))) return;
    constexpr std::size_t kPrefix = 4;
    const std::string prefix =
        LowerCase(text.substr(begin - std::min(begin, kPrefix), std::min(begin, kPrefix)));
    const bool isNamed = prefix == "naa." || prefix == "eui." || prefix == "nna.";
    // 5 and 6 begin the names that IEEE gives to makers.
    if (isNamed || text[begin] == '5' || (text[begin] == '6' && size == 2 * kDigits)) {
      take(ValueKind::kWwn, begin, begin + size);
    }
  }

  void ReadMail(std::size_t at) {
    const auto isLocal = [](char c) {
      return IsNameCharacter(c) || c == '.' || c == '+' || c == '%';
    };
    std::size_t begin = at;
    while (begin > 0 && isLocal(text[begin - 1])) --begin;
    std::size_t end = at + 1;
    while (IsNameCharacter(At(end)) || At(end) == '.') ++end;
    while (end > at && text[end - 1] == '.') --end;
    const bool hasDomain = text.substr(at, end - at).find('.') != std::string_view::npos;
    if (begin < at && hasDomain) take(ValueKind::kMail, begin, end);
  }

  /// Names with dots whose last part is a domain that machines are in, part by part.
  void ReadDomainName(std::size_t at) {
    constexpr std::string_view kDomains[] = {
        "com",     "net",     "org",      "edu",    "gov",  "mil",  "local", "localdomain",
        "lan",     "corp",    "home",     "arpa",   "test", "eu",   "de",    "at",
        "ch",      "uk",      "fr",       "nl",     "ads",  "priv", "int",   "ad",
        "example", "invalid", "internal", "intern", "intra"};
    if (at > 0 && (text[at - 1] == '.' || text[at - 1] == '-' || text[at - 1] == '@')) return;
    std::size_t end = at;
    std::size_t last = at;
    while (IsNameCharacter(At(end)) || (At(end) == '.' && IsNameCharacter(At(end + 1)))) {
      if (text[end] == '.') last = end + 1;
      ++end;
    }
    if (last == at || At(end) == '@') return;
    const std::string domain = LowerCase(text.substr(last, end - last));
    if (std::ranges::find(kDomains, domain) == std::end(kDomains)) return;
    for (std::size_t begin = at; begin < last;) {
      const std::size_t dot = text.find('.', begin);
      take(ValueKind::kHost, begin, dot);
      begin = dot + 1;
    }
  }

  /// Where the name of a folder or a file ends that begins at `begin`. A blank is part of it only
  /// when a backslash follows in the same path.
  std::size_t FindNameEnd(std::size_t begin) const {
    constexpr std::string_view kEnds = "\\/\"<>|*?:,;'()[]{}=\r\n\t";
    std::size_t end = begin;
    while (end < text.size() && text[end] != '\0' && text[end] != ' ' &&
           kEnds.find(text[end]) == std::string_view::npos) {
      ++end;
    }
    if (At(end) != ' ') return end;
    constexpr std::size_t kLongestName = 255;
    std::size_t next = end;
    while (next < text.size() && next - begin < kLongestName &&
           kEnds.find(text[next]) == std::string_view::npos && text[next] != '\0' &&
           !(text[next] == ' ' && At(next + 1) == ' ')) {
      ++next;
    }
    return At(next) == '\\' ? next : end;
  }

  void ReadPath(std::size_t at) {
    const bool isDrive = at >= 2 && text[at - 1] == ':' && IsAsciiLetterOrDigit(text[at - 2]) &&
                         (at == 2 || !IsAsciiLetterOrDigit(text[at - 3]));
    const bool isServer = At(at + 1) == '\\' && IsNameCharacter(At(at + 2)) &&
                          (at == 0 || text[at - 1] == ' ' || text[at - 1] == '"' ||
                           text[at - 1] == '\n' || text[at - 1] == '\t' || text[at - 1] == '=');
    if (!isDrive && !isServer) return;
    std::size_t begin = at + (isServer ? 2 : 1);
    bool isUser = false;
    bool isMachine = isServer;
    for (;;) {
      while (At(begin) == '\\') ++begin;  // escaped ones come twice
      std::size_t end = FindNameEnd(begin);
      if (end == begin) return;
      const bool isLast = At(end) != '\\';
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

  std::string_view text;
  const TakeValue& take;
};

}  // namespace

void FindByShape(std::string_view text, const TakeValue& take) { ShapeReader(text, take).Read(); }

}  // namespace host
