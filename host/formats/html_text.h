// HTML on its way to a stream. Markup is what this program's source says; all else is text.
#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

namespace host {

/// Markup, which only a literal can be: no text of a tool ever becomes some.
class Markup {
 public:
  template <std::size_t size>
  // Literals are meant to be given as they are.
  consteval Markup(const char (&literal)[size])  // NOLINT(google-explicit-constructor)
      : text(literal, size - 1) {}

  std::string_view Get() const { return text; }

 private:
  std::string_view text;
};

class HtmlWriter {
 public:
  explicit HtmlWriter(std::ostream& out) : out(out) {}

  HtmlWriter& Add(Markup markup) {
    Write(markup.Get());
    return *this;
  }
  /// UTF-8, in an element or a quoted attribute. White space at its ends is left out; what turns or
  /// hides text, and what a terminal would obey, is written as EscapeControls has it.
  HtmlWriter& Text(std::string_view text);
  /// The same, no wider than `columns`; an ellipsis says that it was cut.
  HtmlWriter& ShortText(std::string_view text, std::size_t columns);
  HtmlWriter& Number(std::size_t number);
  /// With a point, whatever the locale.
  HtmlWriter& Real(double number);

  std::size_t CountBytes() const { return bytes; }

 private:
  void Write(std::string_view text);

  std::ostream& out;
  std::size_t bytes = 0;
};

/// `text` as a part of a fragment of an address: all but letters, digits, - . and _ as %41.
std::string EncodeForAddress(std::string_view text);

}  // namespace host
