// HMAC with SHA-256 (RFC 2104).
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The 32 bytes of the code for `text` under `key`. Throws std::runtime_error when the system
/// cannot compute it.
std::string ComputeHmacSha256(std::string_view key, std::string_view text);

}  // namespace host
