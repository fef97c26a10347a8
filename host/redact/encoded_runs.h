// Bytes that a text holds in Base64, or as pairs of hexadecimal digits such as those of a dump.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "host/redact/value_matcher.h"

namespace host {

/// Changes bytes without changing their number; returns whether it did.
using ChangeBytes = std::function<bool(std::string& bytes)>;

/// Calls `change` for all that `text` may hold in these encodings, wherever the encoded bytes
/// begin, and writes back what it changed; the text keeps its length and its layout. Of Base64,
/// only for bytes of which some are among `beginnings`.
void ChangeEncodedBytes(std::string& text, const Beginnings& beginnings, const ChangeBytes& change);

using TakeBytes = std::function<void(std::string_view bytes)>;

/// Calls `take` for the same bytes.
void ReadEncodedBytes(std::string_view text, const Beginnings& beginnings, const TakeBytes& take);

}  // namespace host
