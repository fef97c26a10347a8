// The host tool's catalogue of error identifiers and messages. The plug-in reads no entry; it keeps
// the host's shared declarations valid in the library.
#pragma once

#include <map>
#include <string>

namespace pq {

/// Identifier to message.
using ErrorTable = std::map<int, std::string>;

/// The messages of category 0.
ErrorTable& GeneralErrors();
/// Category (1 and above) to its messages, keyed by the full identifier.
std::map<int, ErrorTable>& CategoryErrors();

/// Sets the message of `code` in `category` and returns the identifier: category * 65536 + code.
int RegisterError(int category, int code, const char* message);

}  // namespace pq
