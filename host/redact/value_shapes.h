// The shapes of values, each tried at one place of a text that one of its kind may be at. What is
// of a shape is taken, unless it is nobody's: a multicast address or a version.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/redact/value_finder.h"

namespace host {

// Those below begin at `at`, where a word does. True: what is there is of this shape, and needs no
// other one to be tried.

bool ReadGuid(std::string_view text, std::size_t at, const TakeValue& take);
/// Six or eight pairs with the same sign between them: a MAC address or a world-wide name.
bool ReadPairs(std::string_view text, std::size_t at, const TakeValue& take);
/// Three groups of four digits, as in 0a1b.2c3d.4e5f.
bool ReadDottedMac(std::string_view text, std::size_t at, const TakeValue& take);
bool ReadIpv4(std::string_view text, std::size_t at, const TakeValue& take);
/// May begin with a colon instead of a word.
bool ReadIpv6(std::string_view text, std::size_t at, const TakeValue& take);
/// 16 or 32 digits in a row.
void ReadWwn(std::string_view text, std::size_t at, const TakeValue& take);
/// Names with dots whose last part is a domain that machines are in, part by part.
void ReadDomainName(std::string_view text, std::size_t at, const TakeValue& take);

/// Around the @ that is at `at`.
void ReadMail(std::string_view text, std::size_t at, const TakeValue& take);
/// After the drive or the server whose backslash, the first one, is at `at`; name by name.
void ReadPath(std::string_view text, std::size_t at, const TakeValue& take);

}  // namespace host
