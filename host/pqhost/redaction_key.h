// The key of the pseudonyms. Whoever has it can tell which value a pseudonym is of, so it stays
// with the sender.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace host {

/// Reads the key from `given`, otherwise from the user's settings; makes it, for its owner alone,
/// when it is not there yet. Throws UsageError when it cannot be read or made, when others may read
/// it, or when it is none.
std::string ObtainRedactionKey(const std::optional<std::filesystem::path>& given);

}  // namespace host
