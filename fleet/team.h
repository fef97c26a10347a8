// Several processes that do the same work beside each other.
#pragma once

#include <cstddef>
#include <functional>

#include "fleet/end_request.h"

namespace fleet {

/// Runs `work(number)`, from 0 to `count` - 1, each in a forked process, and waits for all of them.
/// `work` returns the process' exit code. One that a signal ends is started again, as long as
/// nobody asks for an end, which all of them are then told. With this process all of them are asked
/// to end. Returns the highest exit code.
int RunTeam(std::size_t count, const std::function<int(std::size_t number)>& work,
            EndRequest& endRequest);

}  // namespace fleet
