// Whether a text is one that values can be found in.
#pragma once

#include <cstdint>
#include <string_view>

namespace host {

/// False for packed and other binary files, and for characters that are neither of the machine's
/// code page nor UTF-16 of Latin letters: a value could be in there and not be seen.
bool IsSearchable(std::string_view bytes, std::uint32_t codePage);

}  // namespace host
