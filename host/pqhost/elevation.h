// An administrator's rights for a collection that somebody started without them.
#pragma once

#include <functional>

#include "host/program/console.h"

namespace host {

/// Offers to start the program again as administrator, where somebody can be asked, and otherwise
/// says what will be missing. `read` gives what he types, character by character, then EOF; null:
/// nobody is asked. True when another window goes on with the work.
bool OfferElevation(const Console& console, const std::function<int()>& read);

}  // namespace host
