#include "host/files/hmac_sha256.h"

#include <cstddef>

#include "host/files/sha256.h"

namespace host {
namespace {

constexpr std::size_t kBlockSize = 64;
constexpr char kInnerPad = 0x36;
constexpr char kOuterPad = 0x5c;

std::string ComputeRawSha256(std::string_view bytes) {
  const Sha256Digest digest = ComputeSha256Digest(bytes);
  return {digest.data(), digest.size()};
}

std::string PadKey(std::string key, char pad) {
  key.resize(kBlockSize, '\0');
  for (char& c : key) c = static_cast<char>(c ^ pad);
  return key;
}

}  // namespace

std::string ComputeHmacSha256(std::string_view key, std::string_view text) {
  const std::string shortKey = key.size() > kBlockSize ? ComputeRawSha256(key) : std::string(key);
  const std::string inner = ComputeRawSha256(PadKey(shortKey, kInnerPad).append(text));
  return ComputeRawSha256(PadKey(shortKey, kOuterPad) + inner);
}

}  // namespace host
