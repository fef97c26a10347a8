#include "host/secrets/secret_forms.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "host/text/ascii.h"

namespace host {
namespace {

constexpr std::size_t kByteBits = 8;
constexpr std::size_t kSextetBits = 6;
/// Of a place within four Base64 characters, which hold three bytes.
constexpr std::size_t kBase64Phases = 3;

/// The value of a hexadecimal digit; -1: it is none.
int ReadHexDigit(char c) {
  c = LowerCase(c);
  if (c >= '0' && c <= '9') return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

/// The value of a Base64 character of either alphabet; -1: it is none.
int ReadBase64(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  if (c >= 'a' && c <= 'z') return c - 'a' + 26;
  if (c >= '0' && c <= '9') return c - '0' + 52;
  if (c == '+' || c == '-') return 62;
  return c == '/' || c == '_' ? 63 : -1;
}

/// The byte that "%XX" at the end of `text` stands for; -1: there is none.
int ReadPercentAtEnd(std::string_view text) {
  if (text.size() < 3 || text[text.size() - 3] != '%') return -1;
  const int high = ReadHexDigit(text[text.size() - 2]);
  const int low = ReadHexDigit(text[text.size() - 1]);
  return high < 0 || low < 0 ? -1 : high * 16 + low;
}

// Each says how many bytes at the end of `text` are the character `c`, in lower case; 0: it ends
// with another.

std::size_t CountPlain(std::string_view text, char c) {
  return !text.empty() && LowerCase(text.back()) == c ? 1 : 0;
}

std::size_t CountPercent(std::string_view text, char c) {
  const int byte = ReadPercentAtEnd(text);
  return byte >= 0 && LowerCase(static_cast<char>(byte)) == c ? 3 : CountPlain(text, c);
}

bool IsBeyondAscii(char c) { return (c & 0x80) != 0; }

/// Beyond ASCII, the character depends on a code page: any will do that an alphabet of Europe or
/// its neighbours has. A high half that ends a line is none of theirs: no secret reaches over it.
bool IsUtf16(char low, char high, char c) {
  constexpr unsigned char kBehindAlphabets = 0x20;
  if (!IsBeyondAscii(c)) return high == 0 && LowerCase(low) == c;
  if (high == 0) return IsBeyondAscii(low);
  return static_cast<unsigned char>(high) < kBehindAlphabets && high != '\r' && high != '\n';
}

std::size_t CountLittleEndian(std::string_view text, char c) {
  const std::size_t size = text.size();
  return size >= 2 && IsUtf16(text[size - 2], text[size - 1], c) ? 2 : 0;
}

std::size_t CountBigEndian(std::string_view text, char c) {
  const std::size_t size = text.size();
  return size >= 2 && IsUtf16(text[size - 1], text[size - 2], c) ? 2 : 0;
}

// Whichever half of UTF-16 comes first, an ASCII character's NUL at the outer ends is not needed,
// so that both are found at the same place.

std::size_t CountFirstBigEndian(std::string_view text, char c) {
  return IsBeyondAscii(c) ? CountBigEndian(text, c) : CountPlain(text, c);
}

std::size_t CountLastLittleEndian(std::string_view text, char c) {
  return IsBeyondAscii(c) ? CountLittleEndian(text, c) : CountPlain(text, c);
}

using CountCharacter = std::size_t (*)(std::string_view text, char c);

/// How the secret's first character is found, its last, and those between.
struct Form {
  CountCharacter first;
  CountCharacter middle;
  CountCharacter last;
  bool isWide;
};
constexpr Form kForms[] = {
    {&CountPlain, &CountPlain, &CountPlain, false},
    {&CountPercent, &CountPercent, &CountPercent, false},
    {&CountLittleEndian, &CountLittleEndian, &CountLastLittleEndian, true},
    {&CountFirstBigEndian, &CountBigEndian, &CountBigEndian, true},
};

/// The bytes at the end of `text` that are the secret in this form; 0: it does not end with it.
std::size_t CountForm(std::string_view text, std::string_view secret, const Form& form) {
  const std::size_t size = text.size();
  for (std::size_t i = secret.size(); i > 0; --i) {
    const CountCharacter count = i == secret.size() ? form.last : i == 1 ? form.first : form.middle;
    const std::size_t bytes = count(text, secret[i - 1]);
    if (bytes == 0) return 0;
    text.remove_suffix(bytes);
  }
  return size - text.size();
}

/// Whether `c` has those of the six `bits` that are in `mask`.
bool IsBase64(char c, char bits, char mask) {
  const int value = ReadBase64(c);
  return value >= 0 && (value & mask) == bits;
}

std::size_t CountBase64(std::string_view text, std::string_view bits, std::string_view masks) {
  if (text.size() < bits.size()) return 0;
  text.remove_prefix(text.size() - bits.size());
  for (std::size_t i = bits.size(); i > 0; --i) {
    if (!IsBase64(text[i - 1], bits[i - 1], masks[i - 1])) return 0;
  }
  return bits.size();
}

}  // namespace

SecretForms::SecretForms(std::string_view given) : secret(LowerCase(given)) {
  AddBase64(given);
  Secret wide;
  for (const char c : given) {
    const char unit[] = {c, '\0'};
    wide.Append({unit, sizeof(unit)});
  }
  AddBase64(wide.View());
  FindLastBytes();
}

/// The secret may begin at any place within four characters.
void SecretForms::AddBase64(std::string_view bytes) {
  for (std::size_t phase = 0; phase < kBase64Phases; ++phase) {
    const std::size_t begin = phase * kByteBits;
    const std::size_t end = begin + bytes.size() * kByteBits;
    const std::size_t first = begin / kSextetBits;
    std::string bits((end + kSextetBits - 1) / kSextetBits - first, '\0');
    std::string masks = bits;
    for (std::size_t bit = begin; bit < end; ++bit) {
      const auto byte = static_cast<unsigned char>(bytes[(bit - begin) / kByteBits]);
      const bool isSet = (byte >> (kByteBits - 1 - bit % kByteBits) & 1) != 0;
      const int place = 1 << (kSextetBits - 1 - bit % kSextetBits);
      const std::size_t at = bit / kSextetBits - first;
      masks[at] = static_cast<char>(masks[at] | place);
      if (isSet) bits[at] = static_cast<char>(bits[at] | place);
    }
    base64.push_back({std::move(bits), std::move(masks)});
  }
}

// Most places of a text are passed by with a look at one byte.
void SecretForms::FindLastBytes() {
  const char last = secret.View().back();
  for (std::size_t byte = 0; byte < canBeLast.size(); ++byte) {
    const char c = static_cast<char>(byte);
    canBeLast[byte] = LowerCase(c) == last || ReadHexDigit(c) >= 0 || (last & 0x80) != 0 ||
                      std::any_of(base64.begin(), base64.end(), [c](const Base64Form& form) {
                        return IsBase64(c, form.bits.View().back(), form.masks.back());
                      });
  }
}

std::vector<SecretForms::Found> SecretForms::FindAtEnd(std::string_view text) const {
  std::vector<Found> all;
  if (text.empty() || !canBeLast[static_cast<unsigned char>(text.back())]) return all;
  const auto add = [&](std::size_t size, bool isWide) {
    if (size > 0) all.push_back({size, isWide});
  };
  for (const Form& form : kForms) add(CountForm(text, secret.View(), form), form.isWide);
  for (const Base64Form& form : base64) {
    add(CountBase64(text, form.bits.View(), form.masks), false);
  }
  std::ranges::stable_sort(all, std::ranges::greater(), &Found::size);
  return all;
}

}  // namespace host
