#include "host/text/base64.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace host {
namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned kBits = 6;
constexpr std::size_t kBytes = 3;       // that become
constexpr std::size_t kCharacters = 4;  // of these
constexpr std::uint8_t kNone = 64;

constexpr std::array<std::uint8_t, 256> kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNone);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}();

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + kBytes - 1) / kBytes * kCharacters);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kBytes, bytes.size()))) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < kBytes; ++i) {
      group = group << 8U | (i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U);
    }
    for (std::size_t i = 0; i < kCharacters; ++i) {
      const std::uint32_t value = group >> kBits * (kCharacters - 1 - i) & (kNone - 1U);
      text += i <= bytes.size() ? kAlphabet[value] : '=';
    }
  }
  return text;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  if (text.size() % kCharacters != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / kCharacters * kBytes);
  for (; !text.empty(); text.remove_prefix(kCharacters)) {
    const std::string_view four = text.substr(0, kCharacters);
    const bool isLast = text.size() == kCharacters;
    const std::size_t padding = !isLast                ? 0
                                : four.ends_with("==") ? 2
                                : four.ends_with('=')  ? 1
                                                       : 0;
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < kCharacters; ++i) {
      const std::uint8_t value =
          i < kCharacters - padding ? kValues[static_cast<unsigned char>(four[i])] : 0;
      if (value == kNone) return std::nullopt;
      group = group << kBits | value;
    }
    for (std::size_t i = 0; i < kBytes - padding; ++i) {
      bytes += static_cast<char>(group >> 8 * (kBytes - 1 - i) & 0xFFU);
    }
  }
  return bytes;
}

}  // namespace host
