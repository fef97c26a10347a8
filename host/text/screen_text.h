// Text as it stands on a screen: how wide it is, where it wraps, and nothing in it that a terminal
// would obey. All texts are valid UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Columns that `text` takes: two for wide East Asian characters, none for combining ones.
std::size_t MeasureWidth(std::string_view text);

/// `text` with what a terminal would obey written out: control characters as \n, \t, \x1b, those
/// that turn or hide text as \u202e.
std::string EscapeControls(std::string_view text);

/// As EscapeControls, but line feeds stay.
std::string EscapeControlsButLineFeeds(std::string_view text);

/// `text` without blanks, tabs and line ends at its end, and without blanks and tabs at its start.
std::string_view TrimForDisplay(std::string_view text);

/// `text` in pieces of at most `width` columns (at least 2), broken at blanks where there are any.
/// At least one piece.
std::vector<std::string> WrapText(std::string_view text, std::size_t width);

/// `text` cut to `width` columns (at least 1); a cut one ends with an ellipsis.
std::string CutText(std::string_view text, std::size_t width);

/// `text` and as many blanks as are missing to `width` columns.
std::string PadText(std::string text, std::size_t width);

}  // namespace host
