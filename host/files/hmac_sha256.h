// HMAC with SHA-256 (RFC 2104), by a cryptography library.
#pragma once

#include <memory>
#include <string_view>

#include "host/files/sha256.h"

namespace host {

/// The codes of texts under one key.
class HmacSha256 {
 public:
  /// Throws std::runtime_error when the system cannot compute it; so does Compute().
  explicit HmacSha256(std::string_view key);

  Sha256Digest Compute(std::string_view text) const;

 private:
  struct Key;

  std::shared_ptr<const Key> key;
};

}  // namespace host
