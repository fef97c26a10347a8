#include "host/files/hmac_sha256.h"

#include <nettle/hmac.h>

#include <cstdint>

namespace host {

/// Has taken the key in: a copy goes on with a text.
struct HmacSha256::Key {
  hmac_sha256_ctx context{};
};

HmacSha256::HmacSha256(std::string_view given) {
  Key made;
  hmac_sha256_set_key(&made.context, given.size(),
                      reinterpret_cast<const std::uint8_t*>(given.data()));
  key = std::make_shared<const Key>(made);
}

Sha256Digest HmacSha256::Compute(std::string_view text) const {
  hmac_sha256_ctx context = key->context;
  hmac_sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  Sha256Digest digest{};
  hmac_sha256_digest(&context, digest.size(), reinterpret_cast<std::uint8_t*>(digest.data()));
  return digest;
}

}  // namespace host
