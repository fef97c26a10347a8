#include "host/live/windows_name.h"

#include <charconv>

namespace host {
namespace {

constexpr std::string_view kWindows10 = "Windows 10";
constexpr int kFirstBuildOfWindows11 = 22000;

}  // namespace

std::string NameWindows(std::string_view product, std::string_view build) {
  int number = 0;
  std::from_chars(build.data(), build.data() + build.size(), number);
  std::string name(product.empty() ? "Windows" : product);
  if (number >= kFirstBuildOfWindows11 && name.starts_with(kWindows10)) {
    name.replace(0, kWindows10.size(), "Windows 11");
  }
  if (!build.empty()) name.append(", build ").append(build);
  return name;
}

}  // namespace host
