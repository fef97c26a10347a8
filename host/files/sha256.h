// SHA-256, by a cryptography library.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// SHA-256 of `bytes` as 64 hexadecimal digits in lower case. Throws std::runtime_error when the
/// system cannot compute it.
std::string ComputeSha256(std::string_view bytes);

}  // namespace host
