#include "host/text/code_page.h"

#include <windows.h>

namespace host {
namespace {

class WindowsCodePage final : public CodePage {
 public:
  explicit WindowsCodePage(UINT number) : number(number) {}

  std::optional<char32_t> Decode(std::string_view bytes) override {
    wchar_t units[2] = {};
    const int count = MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, bytes.data(),
                                          static_cast<int>(bytes.size()), units, 2);
    if (count != 1) return std::nullopt;
    return static_cast<char32_t>(units[0]);
  }

 private:
  UINT number;
};

}  // namespace

std::unique_ptr<CodePage> OpenCodePage(std::uint32_t number) {
  if (!IsValidCodePage(number)) return nullptr;
  return std::make_unique<WindowsCodePage>(number);
}

}  // namespace host
