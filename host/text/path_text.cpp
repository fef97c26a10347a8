#include "host/text/path_text.h"

#include "host/text/decoder.h"

namespace host {
namespace {

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    if (TakeUtf8(text) == kReplacementCharacter) return false;
  }
  return true;
}

}  // namespace

std::string PathText(const std::filesystem::path& path) {
  const std::u8string utf8 = path.u8string();
  std::string text(utf8.begin(), utf8.end());
  const bool isUtf8 = IsUtf8(text);
  for (char& c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !isUtf8)) c = '?';
  }
  return text;
}

std::filesystem::path PathFromText(std::string_view utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace host
