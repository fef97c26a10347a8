// Keeps a query of a fuzzer within the time and the memory of one input. The host's own limits come
// on top of these.
#pragma once

namespace fuzz {

/// From now on, a connection ends a statement with an error after so many of SQLite's steps, and
/// all of them share so many bytes. Called once.
void BoundSqlite(int steps, long long bytes);

}  // namespace fuzz
