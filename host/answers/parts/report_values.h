// Numbers, sizes and times as the tools print them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/answers/parts/parts.h"

namespace host {

/// A decimal number, with blanks around it at most; none for anything else, such as "N/A".
Integer ReadInteger(std::string_view text);

/// The number in the first line of `text` that is `label`, `separator` and a value, also behind a
/// mark of UTF-8; none without such a line or number.
Integer FindInteger(std::string_view text, std::string_view label, char separator);

/// A hexadecimal number, with or without "0x", with blanks around it at most.
Integer ReadHex(std::string_view text);

/// A hexadecimal number of so many digits and nothing else.
Integer ReadHexDigits(std::string_view text, std::size_t least, std::size_t most);

/// The number that `text` begins with after blanks: 22 of "22C (71.60 F)".
Real ReadLeadingReal(std::string_view text);
Integer ReadLeadingInteger(std::string_view text);

/// `text` is a unit of sizes: B, KB, MB, GB, TB, PB, or KiB and so on, in any case.
bool IsSizeUnit(std::string_view text);

/// Bytes of "1.745 TB", "512B" or "4 KiB", rounded. The tools' KB is 2^10 bytes like their KiB.
/// Words after the unit do not matter; without a number and a unit there is no size.
Integer ReadSize(std::string_view text);

/// A date with a time of day as in "2026-11-14T06:08:26"; empty when `text` is none of
///   Tue Jun  2 18:02:08 2015
///   06/02/2015, 18:03:22  or  06/02/15 18:03:22  (month first)
///   2026/08/14 18:20:59  or  2026-08-14 18:20:59
/// Text after it does not matter. A year of two digits is one from 1970 to 2069.
std::string ReadTime(std::string_view text);

}  // namespace host
