// Why what could have told of an area told nothing of it.
#pragma once

#include <string>
#include <string_view>

#include "host/answers/parts/parts.h"
#include "host/collect/collection.h"

namespace host {

/// Why no log of the source was read; empty where one was.
std::string FindWhyNoLog(std::string_view source, const Collection& collection);

/// Nothing is known of the source, since nobody asked it.
bool WasNotAsked(const PartSource& source, const Collection& collection);

}  // namespace host
