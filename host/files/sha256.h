// SHA-256, by a cryptography library.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "host/text/hex_text.h"

namespace host {

using Sha256Digest = std::array<char, 32>;

/// SHA-256 of `bytes`. Throws std::runtime_error when the system cannot compute it.
Sha256Digest ComputeSha256Digest(std::string_view bytes);

/// The same as 64 hexadecimal digits in lower case.
inline std::string ComputeSha256(std::string_view bytes) {
  const Sha256Digest digest = ComputeSha256Digest(bytes);
  return HexText({digest.data(), digest.size()});
}

}  // namespace host
