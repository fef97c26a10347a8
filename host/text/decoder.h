// The one place where bytes of a machine become UTF-8.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace host {

/// `bytes` without the mark of UTF-8 that some programs put before a text.
std::string_view SkipByteOrderMark(std::string_view bytes);

/// A text in UTF-8: one of its own, or a view of one that somebody else keeps.
class DecodedText {
 public:
  explicit DecodedText(std::string_view kept) : text(kept) {}
  explicit DecodedText(std::string own) : text(std::move(own)) {}

  std::string_view View() const {
    const auto* own = std::get_if<std::string>(&text);
    return own == nullptr ? std::get<std::string_view>(text) : std::string_view(*own);
  }
  operator std::string_view() const { return View(); }

 private:
  std::variant<std::string_view, std::string> text;
};

/// Reads texts of one code page. Single-byte code pages, 932, 936, 949, 950 and 65001, as far as
/// the system knows them.
class TextDecoder {
 public:
  explicit TextDecoder(std::uint32_t codePage);
  ~TextDecoder();

  /// `bytes` as UTF-8. Whatever is no character of the code page becomes U+FFFD; reading goes on
  /// after it, and an incomplete character never swallows the ASCII character that follows.
  std::string operator()(std::string_view bytes) const;

  /// The same without a copy where `bytes` are ASCII: the result is then a view of them.
  DecodedText Decode(std::string_view bytes) const;

 private:
  struct Characters;
  std::unique_ptr<Characters> characters;
};

inline constexpr std::uint32_t kUtf8CodePage = 65001;
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// `bytes` with U+FFFD for whatever is not valid UTF-8.
std::string CleanUtf8(std::string_view bytes);

/// The end of `text`, which is UTF-8: at most `most` bytes, from a whole character on.
std::string_view KeepEnd(std::string_view text, std::size_t most);

/// Appends `character` as UTF-8.
void AppendUtf8(std::string& text, char32_t character);

/// Takes the first character off `text`, which must not be empty. A byte that starts no character
/// counts as kReplacementCharacter.
char32_t TakeUtf8(std::string_view& text);

}  // namespace host
