// Pseudonyms of the same length and shape: digits become digits, letters letters, all else stays.
// Whoever has the key gets the same ones for the same values, on every machine and every night;
// without it nobody gets back to the values. Each is a permutation of all texts of one shape, so
// that two values never share a pseudonym and none is its own.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/files/hmac_sha256.h"
#include "host/redact/kinds.h"

namespace host {

/// Random numbers of the octets that may follow others.
using OctetNumbers = std::array<std::uint16_t, 256>;

class Pseudonyms {
 public:
  /// `key` is any secret text; 32 random bytes are enough.
  explicit Pseudonyms(std::string_view key) : code(key) {}

  /// For `value`, which is UTF-8 without capitals of ASCII, of kMac, kWwn and kGuid the hexadecimal
  /// digits alone. The result is ASCII and has one character for each of the value's. `attempt`
  /// other than 0 gives others, for the rare values beyond ASCII that would share one.
  std::string Make(ValueKind kind, std::string_view value, int attempt = 0) const;

 private:
  std::string MakeIpv4(std::string_view value) const;
  std::string MakeIpv6(std::string_view value) const;

  const OctetNumbers& NumberOctets(const std::string& network) const;

  HmacSha256 code;
  /// Those of the networks that came last: to make them takes longer than all else.
  mutable std::unordered_map<std::string, OctetNumbers> octetNumbers;
};

}  // namespace host
