// What a recording says of its machine beside its answers.
#pragma once

#include "host/collect/collection.h"
#include "host/recorded/submission.h"

namespace host {

/// What the collection, from which a recording was made, tells of the machine.
Submission DescribeSubmission(const Collection& collection);

}  // namespace host
