// The host's error identifiers. Every source file that includes this registers all of them again
// when the library is loaded.
#pragma once

#include "frame/error_catalogue.h"

namespace pq {

[[maybe_unused]] static const int kSucceed = RegisterError(0, 0, "Succeed.");

}  // namespace pq
