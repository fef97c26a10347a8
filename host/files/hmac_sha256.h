// HMAC with SHA-256 (RFC 2104).
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "host/files/sha256.h"

namespace host {

/// The codes of texts under one key.
class HmacSha256 {
 public:
  /// Throws std::runtime_error when the system cannot compute SHA-256; so does Compute().
  explicit HmacSha256(std::string_view key);

  Sha256Digest Compute(std::string_view text) const;

 private:
  static constexpr std::size_t kBlockSize = 64;
  using Block = std::array<char, kBlockSize>;

  static Block PadKey(std::string_view key, char pad);

  Block inner;
  Block outer;
};

}  // namespace host
