// Text for a screen: how wide it is, where it wraps, and how to keep a terminal from obeying it.
// All texts are valid UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Columns that `text` takes: two for wide East Asian characters, none for combining ones.
std::size_t MeasureWidth(std::string_view text);

/// From `first` to `last`.
struct CharacterRange {
  char32_t first;
  char32_t last;
};

/// Whether a terminal obeys `c` instead of showing it: control characters, and those that turn a
/// line's direction or end it.
bool IsObeyed(char32_t c);

/// The characters besides control characters that turn or hide text, in no order.
std::vector<CharacterRange> ListUnseenCharacters();

/// `text` without anything that a terminal would obey or nobody would see: control characters
/// become \n, \t or \x1b, characters that turn or hide text \u202e or \u{e0041}.
std::string EscapeControls(std::string_view text);

/// As EscapeControls, except that line feeds stay.
std::string EscapeControlsButLineFeeds(std::string_view text);

/// `text` without blanks, tabs and line ends at its end and without blanks and tabs at its start.
std::string_view TrimForDisplay(std::string_view text);

/// `text` in pieces of at most `width` columns (at least 2), broken at blanks where possible. There
/// is at least one piece.
std::vector<std::string> WrapText(std::string_view text, std::size_t width);

/// `text` cut to `width` columns (at least 1); a cut one ends with an ellipsis.
std::string CutText(std::string_view text, std::size_t width);

/// `text`, filled up with blanks to `width` columns.
std::string PadText(std::string text, std::size_t width);

}  // namespace host
