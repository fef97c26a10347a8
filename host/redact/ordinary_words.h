// Words that texts of every machine have. A name that is one of them is replaced only where it is
// known to be a name: elsewhere it would take the reports' own words with it.
#pragma once

#include <set>
#include <string>

namespace host {

/// In small letters: what the modules say about their tables and tools, and accounts that every
/// system has.
std::set<std::string> ListOrdinaryWords();

/// Names, with and without their endings, of files that the modules' tools leave.
std::set<std::string> ListToolFiles();

}  // namespace host
