// Single characters of a code page, as the operating system decodes them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace host {

class CodePage {
 public:
  virtual ~CodePage() = default;
  /// The one character that `bytes` (one or two of them) encode; none if they encode no single one.
  virtual std::optional<char32_t> Decode(std::string_view bytes) = 0;
};

/// Null when the system does not know the code page.
std::unique_ptr<CodePage> OpenCodePage(std::uint32_t number);

}  // namespace host
