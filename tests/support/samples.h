// The recordings that come with the product, and a whole collection as one text.
#pragma once

#include <map>
#include <string>

#include "host/recorded/recording.h"

namespace test {

/// All of them by name.
std::map<std::string, host::Recording> LoadSamples();

/// The trace of a collection of every module and table.
std::string CollectTrace(const host::Recording& recording);

}  // namespace test
