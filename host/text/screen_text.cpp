#include "host/text/screen_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

#include "host/text/decoder.h"

namespace host {
namespace {

using Range = CharacterRange;

/// Characters that terminals show two columns wide.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},
    {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},
    {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},
    {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x3247},   {0x3250, 0x4DBF},   {0x4E00, 0xA4CF},   {0xA960, 0xA97C},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},   {0xFE30, 0xFE6F},
    {0xFF01, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x18CFF}, {0x1AFF0, 0x1B2FF},
    {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF}, {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A},
    {0x1F200, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
    {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4},
    {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D},
    {0x1F54B, 0x1F567}, {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596}, {0x1F5A4, 0x1F5A4},
    {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6CC, 0x1F6CC}, {0x1F6D0, 0x1F6DF},
    {0x1F6EB, 0x1F6FC}, {0x1F7E0, 0x1F7F0}, {0x1F90C, 0x1FAFF}, {0x20000, 0x3FFFD},
};

/// Characters that combine with the one before them and take no column of their own.
constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x05BF, 0x05BF}, {0x05C1, 0x05C2},
    {0x05C4, 0x05C5}, {0x05C7, 0x05C7}, {0x0610, 0x061A}, {0x064B, 0x065F}, {0x0670, 0x0670},
    {0x06D6, 0x06DC}, {0x06DF, 0x06E4}, {0x06E7, 0x06E8}, {0x06EA, 0x06ED}, {0x0900, 0x0902},
    {0x093A, 0x093A}, {0x093C, 0x093C}, {0x0941, 0x0948}, {0x094D, 0x094D}, {0x0E31, 0x0E31},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200D},
    {0x20D0, 0x20F0}, {0x302A, 0x302D}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F},
};

/// Characters that turn a line's direction, or end it.
constexpr Range kTurning[] = {
    {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};

/// Other characters that nobody sees, and that hide in a name or let two look alike.
constexpr Range kHidden[] = {
    {0x00AD, 0x00AD}, {0x200B, 0x200B}, {0x2060, 0x2065}, {0x206A, 0x206F},   {0x2800, 0x2800},
    {0x3164, 0x3164}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE007F},
};

template <std::size_t kCount>
bool IsIn(const Range (&ranges)[kCount], char32_t c) {
  const Range* at = std::lower_bound(std::begin(ranges), std::end(ranges), c,
                                     [](const Range& range, char32_t v) { return range.last < v; });
  return at != std::end(ranges) && c >= at->first;
}

bool IsControl(char32_t c) { return c < 0x20 || (c >= 0x7F && c <= 0x9F); }

std::size_t MeasureCharacter(char32_t c) {
  if (c < 0x300) return 1;
  return IsIn(kCombining, c) ? 0 : IsIn(kWide, c) ? 2 : 1;
}

void AppendEscaped(std::string& text, char32_t c) {
  const auto code = static_cast<std::uint32_t>(c);
  switch (c) {
    case U'\n':
      text += "\\n";
      return;
    case U'\r':
      text += "\\r";
      return;
    case U'\t':
      text += "\\t";
      return;
    default:
      break;
  }
  if (IsControl(c)) {
    text += fmt::format("\\x{:02x}", code);
  } else if (c > 0xFFFF && IsIn(kHidden, c)) {
    text += fmt::format("\\u{{{:x}}}", code);
  } else if (IsIn(kTurning, c) || IsIn(kHidden, c)) {
    text += fmt::format("\\u{:04x}", code);
  } else {
    AppendUtf8(text, c);
  }
}

std::string Escape(std::string_view text, bool keepLineFeeds) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const char32_t c = TakeUtf8(text);
    if (c == U'\n' && keepLineFeeds) {
      escaped += '\n';
    } else {
      AppendEscaped(escaped, c);
    }
  }
  return escaped;
}

/// How many bytes of `text` fit into `width` columns; at least one character, so that wrapping
/// always gets further.
std::size_t CountFittingBytes(std::string_view text, std::size_t width) {
  std::string_view rest = text;
  std::size_t used = 0;
  std::size_t fitting = 0;
  while (!rest.empty()) {
    used += MeasureCharacter(TakeUtf8(rest));
    if (used > width && fitting > 0) break;
    fitting = text.size() - rest.size();
  }
  return fitting;
}

}  // namespace

std::size_t MeasureWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) width += MeasureCharacter(TakeUtf8(text));
  return width;
}

bool IsObeyed(char32_t c) { return IsControl(c) || IsIn(kTurning, c); }

std::vector<CharacterRange> ListUnseenCharacters() {
  std::vector<CharacterRange> unseen(std::begin(kTurning), std::end(kTurning));
  unseen.insert(unseen.end(), std::begin(kHidden), std::end(kHidden));
  return unseen;
}

std::string EscapeControls(std::string_view text) { return Escape(text, false); }

std::string EscapeControlsButLineFeeds(std::string_view text) { return Escape(text, true); }

std::string_view TrimForDisplay(std::string_view text) {
  const std::size_t last = text.find_last_not_of(" \t\r\n");
  if (last == std::string_view::npos) return {};
  text = text.substr(0, last + 1);
  return text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
}

std::vector<std::string> WrapText(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  while (true) {
    std::size_t count = CountFittingBytes(text, width);
    if (count == text.size()) break;
    std::size_t next = count;
    const std::size_t blank = text.substr(0, count + 1).find_last_of(' ');
    if (blank != std::string_view::npos && blank > 0) {
      count = blank;
      next = blank + 1;
    }
    lines.emplace_back(text.substr(0, count));
    text.remove_prefix(next);
  }
  lines.emplace_back(text);
  return lines;
}

std::string CutText(std::string_view text, std::size_t width) {
  if (MeasureWidth(text) <= width) return std::string(text);
  const std::string_view cut = text.substr(0, CountFittingBytes(text, width - 1));
  // A first character too wide for its place goes, too.
  return std::string(MeasureWidth(cut) < width ? cut : "") + "…";
}

std::string PadText(std::string text, std::size_t width) {
  const std::size_t used = MeasureWidth(text);
  if (used < width) text.append(width - used, ' ');
  return text;
}

}  // namespace host
