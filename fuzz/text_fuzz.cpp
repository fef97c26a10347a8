// What tools print, on its way to a screen. The first byte chooses the code page, the second the
// width of the screen; the rest is the text.
//
// Whatever the bytes are, they become well-formed UTF-8 that keeps the ASCII characters; a terminal
// obeys nothing in it; and pieces of it are no wider than they may be.
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/checks.h"
#include "host/text/decoder.h"
#include "host/text/screen_text.h"

namespace {

using fuzz::Require;

/// The last one exists nowhere.
constexpr std::array<std::uint32_t, 12> kCodePages = {65001, 437,  850, 866, 1250, 1252,
                                                      1253,  1255, 932, 936, 949,  9};

std::string KeepAscii(std::string_view text) {
  std::string ascii(text);
  std::erase_if(ascii, [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
  return ascii;
}

/// Whether `text` has the characters of `part` in this order.
bool IsWithin(std::string_view part, std::string_view text) {
  for (const char c : text) {
    if (!part.empty() && part.front() == c) part.remove_prefix(1);
  }
  return part.empty();
}

bool HasTwoByteCharacters(std::uint32_t codePage) {
  return codePage == 932 || codePage == 936 || codePage == 949;
}

void CheckDecoder(std::uint32_t codePage, std::string_view bytes, std::string_view text) {
  fuzz::ReadUtf8(text);
  const std::string ascii = KeepAscii(text);
  if (!HasTwoByteCharacters(codePage)) {
    Require(ascii == KeepAscii(bytes));
    return;
  }
  // Only what can be the second byte of a character is ever lost.
  std::string sure;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const bool followsAscii = i == 0 || static_cast<unsigned char>(bytes[i - 1]) < 0x80;
    if (followsAscii && static_cast<unsigned char>(bytes[i]) < 0x80) sure += bytes[i];
  }
  Require(IsWithin(sure, ascii) && IsWithin(ascii, KeepAscii(bytes)));
}

std::string WithoutBlanks(std::string text) {
  std::erase(text, ' ');
  return text;
}

void CheckScreenText(std::string_view text, std::size_t width) {
  const std::string escaped = host::EscapeControls(text);
  fuzz::RequireForTerminal(escaped);
  Require(host::EscapeControls(escaped) == escaped);
  const std::string lines = host::EscapeControlsButLineFeeds(text);
  fuzz::RequireForTerminal(lines, U"\n");
  Require(std::count(lines.begin(), lines.end(), '\n') ==
          std::count(text.begin(), text.end(), '\n'));

  Require(text.find(host::TrimForDisplay(text)) != std::string_view::npos);
  const std::string cut = host::CutText(escaped, width);
  fuzz::ReadUtf8(cut);
  Require(host::MeasureWidth(cut) <= width);
  Require(host::MeasureWidth(host::PadText(cut, width)) >= width);

  std::string joined;
  for (const std::string& piece : host::WrapText(escaped, width)) {
    fuzz::ReadUtf8(piece);
    Require(host::MeasureWidth(piece) <= width);
    joined += piece;
  }
  Require(WithoutBlanks(joined) == WithoutBlanks(escaped));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::uint32_t codePage = kCodePages[data[0] % kCodePages.size()];
  const std::size_t width = 2 + data[1] % 100;
  const std::string_view bytes = fuzz::InputText(data + 2, size - 2);
  const host::TextDecoder decode(codePage);
  const std::string text = decode(bytes);
  Require(decode.Decode(bytes).View() == text);
  CheckDecoder(codePage, bytes, text);
  CheckScreenText(text, width);
  return 0;
}
