// Values that are known by their shape, wherever they are: goes through a text once and tries the
// shapes that may be at each place.
#include "host/redact/value_shapes.h"

#include "host/redact/shape_characters.h"

namespace host {
namespace {

void ReadAddress(std::string_view text, std::size_t at, const TakeValue& take) {
  // A colon alone begins only an IPv6 address.
  if (text[at] == ':' && PeekAt(text, at + 1) != ':') return;
  // The first group tells which of them it may be.
  const std::size_t size = CountHexDigits(text, at);
  const char sign = PeekAt(text, at + size);
  if (size == 8 && sign == '-' && ReadGuid(text, at, take)) return;
  if (size == 2 && ReadPairs(text, at, take)) return;
  if (sign == '.' && (ReadDottedMac(text, at, take) || ReadIpv4(text, at, take))) return;
  if (sign == ':' && ReadIpv6(text, at, take)) return;
  ReadWwn(text, at, take);
}

}  // namespace

void FindByShape(std::string_view text, const TakeValue& take) {
  bool isInWord = false;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const CharacterUse use = UseOf(c);
    const bool beginsWord = !isInWord;
    isInWord = use.isWord;
    if (use.isWord) {
      if (!beginsWord) continue;
      ReadDomainName(text, at, take);
      if (use.isHexDigit) ReadAddress(text, at, take);
      continue;
    }
    if (c == '@') ReadMail(text, at, take);
    if (c == '\\') ReadPath(text, at, take);
    if (c == ':' && beginsWord) ReadAddress(text, at, take);
  }
}

}  // namespace host
