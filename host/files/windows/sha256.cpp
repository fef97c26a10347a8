// SHA-256, and HMAC with it, by the system's own cryptography.

#include <windows.h>
// After windows.h, which it needs.
#include <bcrypt.h>

#include <stdexcept>
#include <string>

#include "host/files/hmac_sha256.h"
#include "host/files/sha256.h"
#include "host/files/windows/library_function.h"

namespace host {
namespace {

/// The functions of bcrypt.dll used here. An import would look for the library beside the program
/// first, as bcrypt.dll is none of those that Windows always takes from its own folder.
struct Cryptography {
  decltype(&BCryptOpenAlgorithmProvider) openAlgorithm = nullptr;
  decltype(&BCryptCreateHash) createHash = nullptr;
  decltype(&BCryptHashData) hashData = nullptr;
  decltype(&BCryptFinishHash) finishHash = nullptr;
  decltype(&BCryptDestroyHash) destroyHash = nullptr;
  // To open one takes longer than to hash a short text.
  BCRYPT_ALG_HANDLE sha256 = nullptr;
  BCRYPT_ALG_HANDLE hmacSha256 = nullptr;
};

/// Throws std::runtime_error for a failure.
void CheckStatus(NTSTATUS status) {
  if (status >= 0) return;
  throw std::runtime_error("the system cannot compute SHA-256: status " +
                           std::to_string(static_cast<std::uint32_t>(status)));
}

/// Throws std::runtime_error.
Cryptography LoadCryptography() {
  // It stays loaded: the next report needs it, too.
  HMODULE library = LoadLibraryExW(L"bcrypt.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  Cryptography system;
  if (library == nullptr ||
      !FindFunction(library, "BCryptOpenAlgorithmProvider", system.openAlgorithm) ||
      !FindFunction(library, "BCryptCreateHash", system.createHash) ||
      !FindFunction(library, "BCryptHashData", system.hashData) ||
      !FindFunction(library, "BCryptFinishHash", system.finishHash) ||
      !FindFunction(library, "BCryptDestroyHash", system.destroyHash)) {
    throw std::runtime_error("the system's bcrypt.dll cannot be loaded: error " +
                             std::to_string(GetLastError()));
  }
  CheckStatus(system.openAlgorithm(&system.sha256, BCRYPT_SHA256_ALGORITHM, nullptr, 0));
  CheckStatus(system.openAlgorithm(&system.hmacSha256, BCRYPT_SHA256_ALGORITHM, nullptr,
                                   BCRYPT_ALG_HANDLE_HMAC_FLAG));
  return system;
}

const Cryptography& GetCryptography() {
  static const Cryptography kSystem = LoadCryptography();
  return kSystem;
}

/// It only reads, whatever its declaration says.
PUCHAR ToBytes(std::string_view text) {
  return reinterpret_cast<PUCHAR>(const_cast<char*>(text.data()));
}

Sha256Digest Compute(BCRYPT_ALG_HANDLE algorithm, std::string_view key, std::string_view bytes) {
  const Cryptography& system = GetCryptography();
  Sha256Digest digest{};
  BCRYPT_HASH_HANDLE hash = nullptr;
  NTSTATUS status = system.createHash(algorithm, &hash, nullptr, 0, ToBytes(key),
                                      static_cast<ULONG>(key.size()), 0);
  // A length of it has 32 bits, a report can have more.
  constexpr std::size_t kPiece = std::size_t{1} << 30;
  while (status >= 0 && !bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kPiece);
    status = system.hashData(hash, ToBytes(piece), static_cast<ULONG>(piece.size()), 0);
    bytes.remove_prefix(piece.size());
  }
  if (status >= 0)
    status = system.finishHash(hash, reinterpret_cast<PUCHAR>(digest.data()), digest.size(), 0);
  if (hash != nullptr) system.destroyHash(hash);
  CheckStatus(status);
  return digest;
}

}  // namespace

Sha256Digest ComputeSha256Digest(std::string_view bytes) {
  return Compute(GetCryptography().sha256, {}, bytes);
}

struct HmacSha256::Key {
  std::string text;
};

HmacSha256::HmacSha256(std::string_view given)
    : key(std::make_shared<const Key>(Key{std::string(given)})) {}

Sha256Digest HmacSha256::Compute(std::string_view text) const {
  return host::Compute(GetCryptography().hmacSha256, key->text, text);
}

}  // namespace host
