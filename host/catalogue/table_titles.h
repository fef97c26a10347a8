// What tables hold, in words.
#pragma once

#include <string>

namespace host {

/// The title of the table class; the class name itself for one that is not known here.
std::string TitleOf(const std::string& className);

}  // namespace host
