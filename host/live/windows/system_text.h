// Texts between the system's wide characters, the machine's code pages and UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

/// `text` in UTF-8; invalid parts become U+FFFD.
std::string ToUtf8(std::wstring_view text);
/// `text` in `codePage`, or nothing when a character has no form there.
std::optional<std::string> ToCodePage(std::wstring_view text, std::uint32_t codePage);
/// The system's words for one of its errors, UTF-8, without line end.
std::string DescribeSystemError(std::uint32_t error);

}  // namespace host
