// A screen for people: lines that fit it, in styles if it has colours.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "host/text/screen.h"

namespace host {

inline constexpr char kBold[] = "\x1b[1m";
inline constexpr char kHeadStyle[] = "\x1b[1;36m";
inline constexpr char kDim[] = "\x1b[2m";
inline constexpr char kRedStyle[] = "\x1b[31m";

class StyledScreen {
 public:
  StyledScreen(const Screen& screen, std::ostream& out);

  /// In columns. Lines wrap on a narrower screen than this can be.
  unsigned Width() const { return width; }
  bool HasColors() const { return colors; }
  /// For what has no style.
  std::ostream& Out() { return out; }

  /// `style`: null for none.
  void Write(const char* style, std::string_view text);
  /// The same and the line's end.
  void WriteLine(const char* style, std::string_view text);
  void WriteHead(std::string_view text);
  /// Lines of at most the screen's width; those after the first are `indent` columns in.
  void WriteParagraph(const std::string& text, std::size_t indent);

 private:
  unsigned width;
  bool colors;
  std::ostream& out;
};

}  // namespace host
