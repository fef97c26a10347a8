// What a database does not hold all of, since SQLite would not give it back.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/collect/collection.h"
#include "host/repository/store.h"

namespace host {

/// Bytes of each value of `row` that a database holds, of its end; kMostRowBytes: all.
std::size_t FindMostValueBytes(const Row& row);

/// A line of UTF-8 for each table of which a database does not hold all: of values that are too
/// large together, the end is kept.
std::vector<std::string> DescribeDatabaseCuts(const Collection& collection);

}  // namespace host
