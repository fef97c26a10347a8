// SHA-256 by the system's own cryptography.

#include <windows.h>
// After windows.h, which it needs.
#include <bcrypt.h>

#include <array>
#include <stdexcept>
#include <string>

#include "host/files/sha256.h"
#include "host/text/hex_text.h"

namespace host {

std::string ComputeSha256(std::string_view bytes) {
  std::array<UCHAR, 32> digest{};
  BCRYPT_ALG_HANDLE algorithm = nullptr;
  BCRYPT_HASH_HANDLE hash = nullptr;
  NTSTATUS status = BCryptOpenAlgorithmProvider(&algorithm, BCRYPT_SHA256_ALGORITHM, nullptr, 0);
  if (status >= 0) status = BCryptCreateHash(algorithm, &hash, nullptr, 0, nullptr, 0, 0);
  // A length of it has 32 bits, a report can have more.
  constexpr std::size_t kPiece = std::size_t{1} << 30;
  while (status >= 0 && !bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kPiece);
    // It only reads, whatever its declaration says.
    auto* data = reinterpret_cast<PUCHAR>(const_cast<char*>(piece.data()));
    status = BCryptHashData(hash, data, static_cast<ULONG>(piece.size()), 0);
    bytes.remove_prefix(piece.size());
  }
  if (status >= 0) status = BCryptFinishHash(hash, digest.data(), digest.size(), 0);
  if (hash != nullptr) BCryptDestroyHash(hash);
  if (algorithm != nullptr) BCryptCloseAlgorithmProvider(algorithm, 0);
  if (status < 0) {
    throw std::runtime_error("the system cannot compute SHA-256: status " +
                             std::to_string(static_cast<std::uint32_t>(status)));
  }
  return HexText({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

}  // namespace host
