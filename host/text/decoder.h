// The one place where bytes of a machine become UTF-8.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace host {

/// Reads texts of one code page. Single-byte code pages, 932, 936, 949, 950 and 65001, as far as
/// the system knows them.
class TextDecoder {
 public:
  explicit TextDecoder(std::uint32_t codePage);
  ~TextDecoder();

  /// `bytes` as UTF-8. What is no character of the code page becomes U+FFFD; reading goes on behind
  /// it, and an ASCII character is never swallowed by an incomplete one before it.
  std::string operator()(std::string_view bytes) const;

 private:
  struct Characters;
  std::unique_ptr<Characters> characters;
};

inline constexpr std::uint32_t kUtf8CodePage = 65001;
inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Appends `character` as UTF-8.
void AppendUtf8(std::string& text, char32_t character);

/// Takes the first character off `text`, which is not empty. A byte that begins no character counts
/// as kReplacementCharacter.
char32_t TakeUtf8(std::string_view& text);

}  // namespace host
