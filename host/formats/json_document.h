// The whole of a collection as one JSON object (docs/json.md), for who has assessed it already.
#pragma once

#include <ostream>

#include "host/answers/assessment.h"
#include "host/collect/collection.h"
#include "host/text/screen.h"

namespace host {

/// `assessment` is that of `collection`; null when its machine is not known.
void WriteJson(const Collection& collection, const Assessment* assessment, const Screen& screen,
               std::ostream& out);

}  // namespace host
