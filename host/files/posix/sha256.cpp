#include "host/files/sha256.h"

#include <nettle/sha2.h>

#include <array>
#include <cstdint>

#include "host/text/hex_text.h"

namespace host {

std::string ComputeSha256(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  std::array<char, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
  return HexText({digest.data(), digest.size()});
}

}  // namespace host
