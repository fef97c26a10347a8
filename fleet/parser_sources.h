// What tells the readers of two builds apart. Made by the build.
#pragma once

#include <string_view>

namespace host {

/// A digest of the sources that decide which rows a recording gives.
extern const std::string_view kParserSources;

}  // namespace host
