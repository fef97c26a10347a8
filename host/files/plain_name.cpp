#include "host/files/plain_name.h"

#include <algorithm>
#include <string>

#include "host/text/ascii.h"

namespace host {
namespace {

/// CON, NUL.txt, COM1: Windows takes them for devices in every folder.
bool IsDeviceName(std::string_view name) {
  const std::string stem = LowerCase(name.substr(0, std::min(name.find('.'), name.size())));
  const bool isPort = stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9' &&
                      (stem.starts_with("com") || stem.starts_with("lpt"));
  return isPort || stem == "con" || stem == "nul" || stem == "prn" || stem == "aux" ||
         stem == "conin$" || stem == "conout$";
}

}  // namespace

bool IsPlainName(std::string_view name) {
  constexpr std::string_view kRefused{"/\\:*?\"<>|\0", 10};
  const bool hasControl =
      std::any_of(name.begin(), name.end(), [](char c) { return c >= 0 && c < ' '; });
  // Windows drops dots and blanks at the end, so two names would be one.
  return !name.empty() && !name.ends_with('.') && !name.ends_with(' ') && !hasControl &&
         !IsDeviceName(name) && name.find_first_of(kRefused) == std::string_view::npos;
}

}  // namespace host
