// A folder that no other user of the machine reads or prepares.
#pragma once

#include <cstdint>
#include <filesystem>

namespace host {

/// Creates the folder, whose parent exists, for administrators and this process's user alone; one
/// that is there is left as it is. Returns the system error; 0: the folder is there.
std::uint32_t CreateOwnFolder(const std::filesystem::path& folder);

/// Whether there is a folder, not a link to one, that belongs to this process's user, the
/// administrators or the system.
bool IsOwnFolder(const std::filesystem::path& folder);

}  // namespace host
