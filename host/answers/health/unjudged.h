// The verdict on a machine that no rule was asked about.
#pragma once

#include <string>

#include "host/answers/health/health.h"

namespace host {

/// Unknown, for a reason in one line of UTF-8. It is as of no time.
Health MakeUnjudged(const std::string& reason);

}  // namespace host
