#include "host/formats/html_text.h"

#include <fmt/format.h>

#include "host/text/screen_text.h"

namespace host {

HtmlWriter& HtmlWriter::Text(std::string_view text) {
  const std::string shown = EscapeControls(TrimForDisplay(text));
  std::string_view rest = shown;
  for (std::size_t at = 0; (at = rest.find_first_of("<>&\"'")) != std::string_view::npos;) {
    Write(rest.substr(0, at));
    switch (rest[at]) {
      case '<':
        Write("&lt;");
        break;
      case '>':
        Write("&gt;");
        break;
      case '&':
        Write("&amp;");
        break;
      case '"':
        Write("&quot;");
        break;
      default:
        Write("&#39;");
    }
    rest.remove_prefix(at + 1);
  }
  Write(rest);
  return *this;
}

HtmlWriter& HtmlWriter::ShortText(std::string_view text, std::size_t columns) {
  return Text(CutText(EscapeControls(TrimForDisplay(text)), columns));
}

HtmlWriter& HtmlWriter::Number(std::size_t number) {
  Write(fmt::format("{}", number));
  return *this;
}

HtmlWriter& HtmlWriter::Real(double number) {
  Write(fmt::format("{:.1f}", number));
  return *this;
}

void HtmlWriter::Write(std::string_view text) {
  out << text;
  bytes += text.size();
}

std::string EncodeForAddress(std::string_view text) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._";
  std::string encoded;
  for (const char c : text) {
    if (kPlain.find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      encoded += fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
  }
  return encoded;
}

}  // namespace host
