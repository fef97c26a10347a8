#include "host/files/sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

#include "host/text/hex_text.h"

namespace host {

std::string ComputeSha256(std::string_view bytes) {
  std::array<char, EVP_MAX_MD_SIZE> digest{};
  unsigned size = 0;
  const int isDone =
      EVP_Digest(bytes.data(), bytes.size(), reinterpret_cast<unsigned char*>(digest.data()), &size,
                 EVP_sha256(), nullptr);
  if (isDone != 1) throw std::runtime_error("libcrypto cannot compute SHA-256");
  return HexText({digest.data(), size});
}

}  // namespace host
