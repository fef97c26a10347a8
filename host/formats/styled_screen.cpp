#include "host/formats/styled_screen.h"

#include <algorithm>

#include "host/text/screen_text.h"

namespace host {
namespace {

constexpr unsigned kNarrowestScreen = 20;
constexpr char kPlain[] = "\x1b[0m";

}  // namespace

StyledScreen::StyledScreen(const Screen& screen, std::ostream& out)
    : width(std::max(screen.width, kNarrowestScreen)), colors(screen.colors), out(out) {}

void StyledScreen::Write(const char* style, std::string_view text) {
  if (colors && style != nullptr) {
    out << style << text << kPlain;
  } else {
    out << text;
  }
}

void StyledScreen::WriteLine(const char* style, std::string_view text) {
  Write(style, text);
  out << '\n';
}

void StyledScreen::WriteHead(std::string_view text) {
  WriteLine(kHeadStyle, CutText(EscapeControls(text), width));
}

void StyledScreen::WriteParagraph(const std::string& text, std::size_t indent) {
  std::string before;
  for (const std::string& line : WrapText(text, width - indent)) {
    out << before << line << '\n';
    before.assign(indent, ' ');
  }
}

}  // namespace host
