#include "host/live/windows/system_text.h"

#include <windows.h>

namespace host {
namespace {

std::string Convert(std::wstring_view text, UINT codePage, DWORD flags, BOOL* lossy) {
  const int length = static_cast<int>(text.size());
  const int room =
      WideCharToMultiByte(codePage, flags, text.data(), length, nullptr, 0, nullptr, lossy);
  std::string converted(static_cast<std::size_t>(room), '\0');
  WideCharToMultiByte(codePage, flags, text.data(), length, converted.data(), room, nullptr, lossy);
  return converted;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) { return Convert(text, CP_UTF8, 0, nullptr); }

std::optional<std::string> ToCodePage(std::wstring_view text, std::uint32_t codePage) {
  // UTF-8 has a form for everything, and the system wants no question about it.
  if (codePage == CP_UTF8) return ToUtf8(text);
  BOOL lossy = FALSE;
  std::string converted = Convert(text, codePage, WC_NO_BEST_FIT_CHARS, &lossy);
  // A code page that cannot be asked gives nothing at all.
  if (lossy || converted.empty() != text.empty()) return std::nullopt;
  return converted;
}

std::string DescribeSystemError(std::uint32_t error) {
  wchar_t* words = nullptr;
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                         FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                     nullptr, error, 0, reinterpret_cast<wchar_t*>(&words), 0, nullptr);
  std::string text = ToUtf8({words, length});
  LocalFree(words);
  while (text.ends_with(' ')) text.pop_back();
  const std::string number = "system error " + std::to_string(error);
  return text.empty() ? number : text + " (" + number + ")";
}

}  // namespace host
