// Bytes as Base64 (RFC 4648), with the padding at their end.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

std::string EncodeBase64(std::string_view bytes);

/// What EncodeBase64 has written, and nothing else: none for other characters, and for less.
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace host
