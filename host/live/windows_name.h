// What a Windows calls itself, for people.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// As in "Windows Server 2022 Standard, build 20348", from the product's name and the number of its
/// build as the registry has them; either may be empty. Windows 11 is called Windows 10 there.
std::string NameWindows(std::string_view product, std::string_view build);

}  // namespace host
