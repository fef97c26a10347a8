// Bytes that a text holds in Base64, or as pairs of hexadecimal digits such as those of a dump.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace host {

/// Changes bytes without changing their number; returns whether it did.
using ChangeBytes = std::function<bool(std::string& bytes)>;

/// A stretch of a text, in bytes.
struct Stretch {
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Calls `change` for all that `text` may hold in these encodings, wherever the encoded bytes
/// begin, and writes back what it changed; the text keeps its length and its layout. `noteChange`
/// is told where that was.
void ChangeEncodedBytes(std::string& text, const ChangeBytes& change,
                        const std::function<void(const Stretch&)>& noteChange);

}  // namespace host
