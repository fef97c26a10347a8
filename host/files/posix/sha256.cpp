#include "host/files/sha256.h"

#include <nettle/sha2.h>

#include <cstdint>

namespace host {

Sha256Digest ComputeSha256Digest(std::string_view bytes) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, bytes.size(), reinterpret_cast<const std::uint8_t*>(bytes.data()));
  Sha256Digest digest{};
  sha256_digest(&context, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
  return digest;
}

}  // namespace host
