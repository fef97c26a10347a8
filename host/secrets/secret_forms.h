// A secret as it may stand in another text: in other case, percent-encoded, in UTF-16, in Base64.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/secrets/secret.h"

namespace host {

class SecretForms {
 public:
  /// `secret` is not empty.
  explicit SecretForms(std::string_view secret);

  struct Found {
    std::size_t size = 0;  ///< bytes
    bool isWide = false;   ///< UTF-16, without a NUL before the first or behind the last character
  };
  /// The forms in which the secret is the end of `text`, longest first. Base64 may hold other bytes
  /// around the secret's; the characters that are partly the secret's count.
  std::vector<Found> FindAtEnd(std::string_view text) const;

 private:
  /// For each Base64 character its six bits, and which of them are the secret's.
  struct Base64Form {
    Secret bits;
    std::string masks;
  };

  void AddBase64(std::string_view bytes);
  void FindLastBytes();

  Secret secret;  ///< in lower case
  std::vector<Base64Form> base64;
  std::array<bool, 256> canBeLast{};  ///< by byte: whether a form can end with it
};

}  // namespace host
