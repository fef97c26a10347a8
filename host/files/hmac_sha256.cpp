#include "host/files/hmac_sha256.h"

#include <algorithm>
#include <string>

namespace host {
namespace {

constexpr char kInnerPad = 0x36;
constexpr char kOuterPad = 0x5c;

}  // namespace

HmacSha256::HmacSha256(std::string_view key)
    : inner(PadKey(key, kInnerPad)), outer(PadKey(key, kOuterPad)) {}

HmacSha256::Block HmacSha256::PadKey(std::string_view key, char pad) {
  Block block{};
  if (key.size() > block.size()) {
    std::ranges::copy(ComputeSha256Digest(key), block.begin());
  } else {
    std::ranges::copy(key, block.begin());
  }
  for (char& c : block) c = static_cast<char>(c ^ pad);
  return block;
}

Sha256Digest HmacSha256::Compute(std::string_view text) const {
  std::string message;
  message.reserve(inner.size() + text.size());
  message.append(inner.data(), inner.size()).append(text);
  const Sha256Digest digest = ComputeSha256Digest(message);
  std::array<char, kBlockSize + sizeof(Sha256Digest)> whole;
  std::ranges::copy(digest, std::ranges::copy(outer, whole.begin()).out);
  return ComputeSha256Digest({whole.data(), whole.size()});
}

}  // namespace host
