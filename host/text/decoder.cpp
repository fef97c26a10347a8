#include "host/text/decoder.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "host/text/ascii.h"
#include "host/text/code_page.h"

namespace host {
namespace {

/// Lead bytes of two-byte characters.
struct LeadBytes {
  std::uint32_t codePage;
  unsigned char first;
  unsigned char last;
};
constexpr LeadBytes kLeadBytes[] = {
    {932, 0x81, 0x9F}, {932, 0xE0, 0xFC}, {936, 0x81, 0xFE}, {949, 0x81, 0xFE}, {950, 0x81, 0xFE},
};

bool IsLeadByte(std::uint32_t codePage, unsigned char byte) {
  for (const LeadBytes& range : kLeadBytes) {
    if (range.codePage == codePage && byte >= range.first && byte <= range.last) return true;
  }
  return false;
}

/// How many characters of ASCII `bytes` begin with.
std::size_t CountAscii(std::string_view bytes) {
  const auto isOther = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
  return static_cast<std::size_t>(std::find_if(bytes.begin(), bytes.end(), isOther) -
                                  bytes.begin());
}

bool IsSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

/// Systems fill the gaps of a code page with control or private-use characters; here a gap stays a
/// gap on every system.
bool FillsGap(char32_t c) { return (c >= 0x80 && c <= 0x9F) || (c >= 0xE000 && c <= 0xF8FF); }

/// The character for a byte that systems disagree on.
std::optional<char32_t> FindDisputed(std::uint32_t codePage, unsigned char byte) {
  if (codePage == 936 && byte == 0x80) return U'\u20AC';
  return std::nullopt;
}

}  // namespace

std::string_view KeepEnd(std::string_view text, std::size_t most) {
  if (text.size() <= most) return text;
  text.remove_prefix(text.size() - most);
  while (!text.empty() && (text.front() & 0xC0) == 0x80) text.remove_prefix(1);
  return text;
}

std::string CleanUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    // Most texts are mostly of these, which are taken together.
    const std::string_view plain = bytes.substr(0, CountAscii(bytes));
    text += plain;
    bytes.remove_prefix(plain.size());
    if (!bytes.empty()) AppendUtf8(text, TakeUtf8(bytes));
  }
  return text;
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto c = static_cast<std::uint32_t>(character);
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
  if (c < 0x80) {
    text += static_cast<char>(c);
  } else if (c < 0x800) {
    text += static_cast<char>(0xC0 | (c >> 6));
    tail(0);
  } else if (c < 0x10000) {
    text += static_cast<char>(0xE0 | (c >> 12));
    tail(6);
    tail(0);
  } else {
    text += static_cast<char>(0xF0 | (c >> 18));
    tail(12);
    tail(6);
    tail(0);
  }
}

char32_t TakeUtf8(std::string_view& text) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byteAt(0);
  std::size_t length = 1;
  char32_t character = lead;
  char32_t smallest = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    character = lead & 0x1F;
    smallest = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    character = lead & 0x0F;
    smallest = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    character = lead & 0x07;
    smallest = 0x10000;
  } else if (lead >= 0x80) {
    character = kReplacementCharacter;
  }
  std::size_t taken = 1;
  for (; taken < length && taken < text.size() && (byteAt(taken) & 0xC0) == 0x80; ++taken) {
    character = character << 6 | (byteAt(taken) & 0x3F);
  }
  const bool whole = taken == length;
  text.remove_prefix(taken);
  const bool valid =
      whole && character >= smallest && character <= 0x10FFFF && !IsSurrogate(character);
  return valid ? character : kReplacementCharacter;
}

struct TextDecoder::Characters {
  using Row = std::array<char32_t, 256>;

  std::uint32_t number = 0;
  std::unique_ptr<CodePage> codePage;  ///< null for UTF-8, and when the system does not know it
  std::optional<Row> singles;          ///< filled on first use: most output is ASCII
  std::map<unsigned char, Row> pairs;  ///< by lead byte, filled on first use

  char32_t Decode(std::string_view bytes) {
    const std::optional<char32_t> c = codePage ? codePage->Decode(bytes) : std::nullopt;
    return c && !FillsGap(*c) && !IsSurrogate(*c) ? *c : kReplacementCharacter;
  }

  char32_t DecodeSingle(unsigned char single) {
    if (!singles) {
      singles.emplace();
      for (unsigned i = 0; i < singles->size(); ++i) {
        const char byte = static_cast<char>(i);
        const auto disputed = FindDisputed(number, static_cast<unsigned char>(i));
        (*singles)[i] = i < 0x80 ? i : disputed ? *disputed : Decode({&byte, 1});
      }
    }
    return (*singles)[single];
  }

  char32_t DecodePair(unsigned char lead, unsigned char trail) {
    const auto [row, isNew] = pairs.try_emplace(lead);
    if (isNew) {
      for (unsigned i = 0; i < row->second.size(); ++i) {
        const char bytes[] = {static_cast<char>(lead), static_cast<char>(i)};
        row->second[i] = Decode({bytes, 2});
      }
    }
    return row->second[trail];
  }
};

TextDecoder::TextDecoder(std::uint32_t codePage) : characters(std::make_unique<Characters>()) {
  characters->number = codePage;
  if (codePage == kUtf8CodePage) return;
  characters->codePage = OpenCodePage(codePage);
}

TextDecoder::~TextDecoder() = default;

DecodedText TextDecoder::Decode(std::string_view bytes) const {
  if (IsAscii(bytes)) return DecodedText(bytes);
  return DecodedText((*this)(bytes));
}

std::string TextDecoder::operator()(std::string_view bytes) const {
  if (characters->number == kUtf8CodePage) return CleanUtf8(bytes);
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (byte < 0x80) {
      text += bytes[i];
    } else if (!IsLeadByte(characters->number, byte)) {
      AppendUtf8(text, characters->DecodeSingle(byte));
    } else if (i + 1 == bytes.size()) {
      AppendUtf8(text, kReplacementCharacter);
    } else {
      const auto trail = static_cast<unsigned char>(bytes[i + 1]);
      const char32_t c = characters->DecodePair(byte, trail);
      AppendUtf8(text, c);
      if (c != kReplacementCharacter || trail >= 0x80) ++i;
    }
  }
  return text;
}

std::string_view SkipByteOrderMark(std::string_view bytes) {
  constexpr std::string_view kMark = "\xef\xbb\xbf";
  if (bytes.starts_with(kMark)) bytes.remove_prefix(kMark.size());
  return bytes;
}

}  // namespace host
