// rules.sql as a text of the program.
#pragma once

#include <string_view>

namespace host {

extern const std::string_view kBuiltInRules;

}  // namespace host
