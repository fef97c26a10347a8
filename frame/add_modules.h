// The library's exported entry. PQMODULE_API comes from the build.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "frame/halyard/repository.h"

/// Appends one object of each module class to `modules`, after those that the host already holds.
/// Returns 0.
extern "C" PQMODULE_API int AddModules(
    std::vector<boost::shared_ptr<halyard::repository::RModule>>& modules);
