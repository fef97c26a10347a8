// Addresses of networks: IPv4 and IPv6.
#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

#include "host/redact/shape_characters.h"
#include "host/redact/value_shapes.h"

namespace host {
namespace {

/// The end of four octets from `at` on.
std::optional<std::size_t> FindIpv4End(std::string_view text, std::size_t at) {
  std::size_t end = at;
  for (int octet = 0; octet < 4; ++octet) {
    if (octet > 0 && PeekAt(text, end++) != '.') return std::nullopt;
    const std::size_t begin = end;
    int number = 0;
    while (IsAsciiDigit(PeekAt(text, end)) && end - begin < 4) {
      number = number * 10 + (text[end++] - '0');
    }
    const bool isOctet = end > begin && number <= 255 && (text[begin] != '0' || end == begin + 1);
    if (!isOctet) return std::nullopt;
  }
  const bool goesOn = IsAsciiLetterOrDigit(PeekAt(text, end)) ||
                      (PeekAt(text, end) == '.' && IsAsciiDigit(PeekAt(text, end + 1)));
  if (goesOn) return std::nullopt;
  return end;
}

/// Whether the word before `at` announces a version, which may look like an IPv4 address.
bool IsVersion(std::string_view text, std::size_t at) {
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

}  // namespace

bool ReadIpv4(std::string_view text, std::size_t at, const TakeValue& take) {
  if (!IsAsciiDigit(text[at])) return false;
  if (at > 1 && text[at - 1] == '.' && IsAsciiDigit(text[at - 2])) return false;
  const std::optional<std::size_t> end = FindIpv4End(text, at);
  if (!end) return false;
  int first = 0;
  for (std::size_t i = at; IsAsciiDigit(text[i]); ++i) first = first * 10 + (text[i] - '0');
  constexpr int kLoopback = 127;
  constexpr int kFirstMulticast = 224;
  const bool isNobodys = first == 0 || first == kLoopback || first >= kFirstMulticast;
  if (!isNobodys && !IsVersion(text, at)) take(ValueKind::kIpv4, at, *end);
  return true;
}

bool ReadIpv6(std::string_view text, std::size_t at, const TakeValue& take) {
  if (at > 0 && text[at - 1] == ':') return false;
  std::size_t end = at;
  std::size_t groups = 0;
  std::size_t digits = 0;
  bool hasGap = false;
  bool hasDecimal = false;
  for (;;) {
    const std::size_t size = CountHexDigits(text, end);
    if (size > 4) return false;
    if (size > 0) {
      const std::optional<std::size_t> ipv4 = groups > 0 ? FindIpv4End(text, end) : std::nullopt;
      if (ipv4 && PeekAt(text, end + size) == '.') return false;  // it is found by itself
      ++groups;
      digits += size;
      hasDecimal = hasDecimal || std::any_of(text.begin() + static_cast<std::ptrdiff_t>(end),
                                             text.begin() + static_cast<std::ptrdiff_t>(end + size),
                                             &IsAsciiDigit);
      end += size;
    }
    if (PeekAt(text, end) != ':') break;
    if (PeekAt(text, end + 1) == ':') {
      if (hasGap) return false;
      hasGap = true;
      end += 2;
      if (!IsHexDigit(PeekAt(text, end))) break;
    } else if (IsHexDigit(PeekAt(text, end + 1)) && size > 0) {
      ++end;
    } else {
      break;
    }
  }
  constexpr std::size_t kGroups = 8;
  constexpr std::size_t kFewestDigits = 6;
  const bool isWhole = hasGap ? groups > 0 && groups < kGroups : groups == kGroups;
  if (!isWhole || IsAsciiLetterOrDigit(PeekAt(text, end)) ||
      (!hasDecimal && digits < kFewestDigits)) {
    return false;
  }
  const std::string_view address = text.substr(at, end - at);
  const bool isNobodys =
      address == "::1" || LowerCase(address).starts_with("ff0") || LowerCase(address) == "fe80::";
  if (!isNobodys) take(ValueKind::kIpv6, at, end);
  return true;
}

}  // namespace host
